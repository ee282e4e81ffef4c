// Option reader: per-side ribbon, resin, UV, UV mark, overlay; lamination.
// Copyright 2026 The rastertobrellian authors.
#include <unistd.h>

#include "brellian_paths.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "options/conf_file.h"
#include "options/read_context.h"
#include "util/safe_file.h"

namespace {

const TChoiceCode kRibbons[] = {{"Monochrome", 0}, {"Grayscale", 1}, {"ColorK", 3}};
const TChoiceCode kResins[] = {
    {"Page", 0},     {"Preset1", 1}, {"Preset2", 2}, {"Preset3", 3}, {"Preset4", 4},
    {"Preset5", 5},  {"Preset6", 6}, {"Preset7", 7}, {"Preset8", 8}, {"Preset9", 9},
    {"Preset10", 10}, {"CustomAreas", 11},
};
const TChoiceCode kUVs[] = {
    {"Page", 1}, {"Preset1", 2}, {"Preset2", 3}, {"Preset3", 4}, {"Preset4", 5}, {"Preset5", 6},
};
const TChoiceCode kUVMACs[] = {{"LowerLeft", 1}};
const TChoiceCode kPOs[] = {
    {"Page", 1},      {"Preset1", 2},  {"Preset2", 3}, {"Preset3", 4}, {"Preset4", 5},
    {"Preset5", 6},   {"Preset6", 7},  {"Preset7", 8}, {"Preset8", 9}, {"Preset9", 10},
    {"Preset10", 11}, {"CustomAreas", 12},
};
const TChoiceCode kYes[] = {{"Yes", 1}};

// 'Opt_UVFile()' - The UV file rule for UV preset code uv (2-6) of a side:
// the settings' UV file name of the preset, under BRELLIAN_CONF_DIR "/uv/".
// Returns the code to keep (0 when the preset is cleared); *path receives
// the file when it exists.  A name that is not a plain file name, a path
// that is not a regular file and a file another user could have planted
// (Conf_OpenFile) count as not found.
int32_t Opt_UVFile(const TOptionContext* ctx, const char* sideWord, int32_t uv, std::string* path) {
  if (uv < 2) return uv;
  const std::string& name = ctx->settings.uvNames[uv - 2];
  if (name.empty()) {
    Log_Write(LOG_LOG, "  %s: clear preset (file not defined)", sideWord);
    return 0;
  }
  std::string candidate = std::string(BRELLIAN_CONF_DIR) + "/uv/" + name;
  int fd = File_IsSafeName(name.c_str()) ? Conf_OpenFile(candidate.c_str()) : -1;
  if (fd >= 0) {
    close(fd);
    Log_Write(LOG_LOG, "  %s: filename(%s)", sideWord, candidate.c_str());
    *path = candidate;
    return uv;
  }
  Log_Write(LOG_LOG, "  %s: clear preset (file not found)(%s)", sideWord, candidate.c_str());
  return 0;
}

}  // namespace

// 'Opt_ReadSides()' - The per-side keywords, front before back; each UV
// preset is followed by its file rule.
void Opt_ReadSides(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->frontRibbon = Opt_ReadCode(ctx, "frontRibbon", kRibbons, 2);
  task->backRibbon = Opt_ReadCode(ctx, "backRibbon", kRibbons, 2);
  task->frontResin = Opt_ReadCode(ctx, "frontResin", kResins, 0);
  task->backResin = Opt_ReadCode(ctx, "backResin", kResins, 0);
  task->frontUV = Opt_ReadCode(ctx, "frontUV", kUVs, 0);
  task->frontUV = Opt_UVFile(ctx, "frontUV", task->frontUV, &task->frontUVFile);
  task->backUV = Opt_ReadCode(ctx, "backUV", kUVs, 0);
  task->backUV = Opt_UVFile(ctx, "backUV", task->backUV, &task->backUVFile);
  task->frontUVMAC = Opt_ReadCode(ctx, "frontUVMAC", kUVMACs, 0);
  task->backUVMAC = Opt_ReadCode(ctx, "backUVMAC", kUVMACs, 0);
  task->frontPO = Opt_ReadCode(ctx, "frontPO", kPOs, 0);
  task->backPO = Opt_ReadCode(ctx, "backPO", kPOs, 0);
  task->cardLaminate = Opt_ReadCode(ctx, "cardLaminate", kYes, 0);
}
