// Option reader: colour lookup tables of the two sides.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "brellian_paths.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "options/lut_file.h"
#include "options/read_context.h"
#include "status/models.h"
#include "options/lut_format.h"
#include "util/safe_file.h"

namespace {


// 'Opt_ReadSideLUT()' - keyword's table code for one side, its file loaded
// into table.  A missing file (or a settings name that is not a plain file
// name) and an unusable file both fall back to "Firmware" (0) with the
// identity table.
int32_t Opt_ReadSideLUT(const TOptionContext* ctx, const char* keyword, uint8_t table[3][256]) {
  int32_t code = Opt_ReadKeyword(ctx, keyword);
  if (code < 1) return code;
  const std::string& name = ctx->settings.lutNames[code - 1];
  std::string path = std::string(BRELLIAN_LUT_DIR) + "/" + name + ".csv";
  TLutError error{0, ""};
  int32_t rc = File_IsSafeName(name.c_str()) ? Lut_LoadConfig(path.c_str(), table, &error) : -1;
  if (rc == -1) {
    Log_Write(LOG_ERROR, "  LUT Table not found: (%s)", path.c_str());
    Warn_LutTable(ctx, keyword, code, name, path, rc, error);
    return 0;
  }
  if (rc != 0) {
    Log_Write(LOG_ERROR, "  LUT Table not usable: (%s)(line %d: %s)", path.c_str(),
              static_cast<int>(error.line), error.reason);
    Lut_MakeIdentity(table);
    Warn_LutTable(ctx, keyword, code, name, path, rc, error);
    return 0;
  }
  return code;
}

}  // namespace

// 'Opt_ReadLookupTables()' - Front, then back; a one-sided model has no back
// table, so its keyword is neither read nor traced there.
void Opt_ReadLookupTables(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->frontLUTTable = Opt_ReadSideLUT(ctx, "frontLUTTable", task->lutTable[SIDE_FRONT]);
  const TModelInfo* model = Model_Find(static_cast<uint32_t>(task->printerModel));
  if (!model || model->twoSided)
    task->backLUTTable = Opt_ReadSideLUT(ctx, "backLUTTable", task->lutTable[SIDE_BACK]);
}
