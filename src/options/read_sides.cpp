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
    Warn_UVPreset(ctx, sideWord, uv, name, std::string());
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
  Warn_UVPreset(ctx, sideWord, uv, name, candidate);
  return 0;
}

}  // namespace

// 'Opt_ReadSides()' - The per-side keywords, front before back; each UV
// preset is followed by its file rule.  The black rendering keywords come
// last and are traced only when the PPD has them.
void Opt_ReadSides(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->frontRibbon = Opt_ReadKeyword(ctx, "frontRibbon");
  task->backRibbon = Opt_ReadKeyword(ctx, "backRibbon");
  task->frontResin = Opt_ReadKeyword(ctx, "frontResin");
  task->backResin = Opt_ReadKeyword(ctx, "backResin");
  task->frontUV = Opt_ReadKeyword(ctx, "frontUV");
  task->frontUV = Opt_UVFile(ctx, "frontUV", task->frontUV, &task->frontUVFile);
  task->backUV = Opt_ReadKeyword(ctx, "backUV");
  task->backUV = Opt_UVFile(ctx, "backUV", task->backUV, &task->backUVFile);
  task->frontUVMAC = Opt_ReadKeyword(ctx, "frontUVMAC");
  task->backUVMAC = Opt_ReadKeyword(ctx, "backUVMAC");
  task->frontPO = Opt_ReadKeyword(ctx, "frontPO");
  task->backPO = Opt_ReadKeyword(ctx, "backPO");
  task->cardLaminate = Opt_ReadKeyword(ctx, "cardLaminate");
  task->frontBlackMode = Opt_ReadAdded(ctx, "frontBlackMode");
  task->backBlackMode = Opt_ReadAdded(ctx, "backBlackMode");
}
