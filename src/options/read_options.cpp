// Job_ReadOptions: the PPD, the job's options and the settings file.
// Copyright 2026 The rastertobrellian authors.
#include "options/read_options.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "driver/printing_task.h"
#include "log/log.h"
#include "options/option_source.h"
#include "options/read_context.h"
#include "status/models.h"
#include "status/tables.h"

namespace {

// 'Opt_Copies()' - The copies argument in base 10, at least 1; an absent,
// empty or non-numeric argument gives 1.
int32_t Opt_Copies(const char* copies) {
  if (!copies || !*copies) return 1;
  errno = 0;
  long value = strtol(copies, nullptr, 10);
  if (errno == ERANGE || value > INT_MAX) value = value < 0 ? 1 : INT_MAX;
  return value < 1 ? 1 : static_cast<int32_t>(value);
}

// 'Opt_SerialFromUri()' - Everything behind "?serial=" in $DEVICE_URI.
std::string Opt_SerialFromUri() {
  const char* uri = getenv("DEVICE_URI");
  if (!uri || !*uri) return std::string();
  const char* serial = strstr(uri, "?serial=");
  return serial ? std::string(serial + strlen("?serial=")) : std::string();
}

// 'Opt_NoPPD()' - The installed options and model when no PPD opened.
void Opt_NoPPD(TPrintingTask* task) {
  task->ribbonType = 0;
  task->flipTurn = 0;
  task->laminator = 0;
  task->magEncoder = 0;
  task->icEncoder = 0;
  const TModelInfo& model = Model_Default();
  task->printerModel = static_cast<int32_t>(model.id);
  Log_Write(LOG_LOG, "  printerModel::[PPD]::[NULL][%d]", task->printerModel);
  task->flipTurn = 1;
  task->modelName = Status_ModelName(model.id);
}

}  // namespace

// 'Job_ReadOptions()' - Fill the task's job option record, tracing every
// decision to the log.  Every missing or unknown value takes its default.
int32_t Job_ReadOptions(TPrintingTask* task, const char* options, const char* copies) {
  Log_Write(LOG_LOG, ">>>> PPD OPTIONS");
  task->copies = Opt_Copies(copies);

  task->serialNumber = Opt_SerialFromUri();
  Log_Write(LOG_LOG, "serialNumber::[%s]", task->serialNumber.c_str());

  // The settings file is the one of the record's default model name: the
  // model is settled only by the PPD below.
  TOptionContext ctx;
  ctx.task = task;
  ctx.ppd = nullptr;
  if (!task->modelName.empty() && !task->serialNumber.empty())
    ctx.settingsRead = ctx.settings.Load(task->modelName.c_str(), task->serialNumber.c_str());

  const char* ppdPath = getenv("PPD");
  Log_Write(LOG_LOG, "PPD::[%s]", ppdPath && *ppdPath ? ppdPath : "NULL");
  TOptionSource source;
  if (source.Open(ppdPath)) {
    source.MarkOptions(options);
    ctx.ppd = &source;
  }
  Log_Write(LOG_LOG, "Marked PPD options");

  if (ctx.ppd)
    Opt_ReadInstalled(&ctx);
  else
    Opt_NoPPD(task);
  Opt_ReadCardThickness(&ctx);
  Opt_ReadSides(&ctx);
  Opt_ReadLookupTables(&ctx);
  Opt_ReadYesNo(&ctx);
  Opt_ReadAreas(&ctx);
  Opt_ReadMagPOMode(&ctx);
  if (ctx.ppd) Opt_ReadMagTracks(&ctx);
  Opt_ReadPlugin(&ctx);
  Opt_ReadPrinterName(&ctx);
  Opt_ReadCardEject(&ctx);
  Warn_IgnoredValues(&ctx, options);
  Warn_Constraints(&ctx);

  source.Close();
  Log_Write(LOG_LOG, "<<<< PPD OPTIONS");
  return 0;
}
