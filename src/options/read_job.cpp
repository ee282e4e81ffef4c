// Option reader: card handling switches, overlay mode over the stripe,
// magnetic tracks, plug-in, queue name and card eject.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>

#include "driver/printing_task.h"
#include "log/log.h"
#include "options/mag.h"
#include "options/option_source.h"
#include "options/read_context.h"
#include "util/str.h"

namespace {


// 'Opt_CustomValue()' - The value a text option carries: the custom text
// without its "Custom." prefix, else the choice itself.
std::string Opt_CustomValue(const std::string& text, bool custom) {
  return custom ? text.substr(7) : text;
}

}  // namespace

// 'Opt_ReadYesNo()' - "Yes" 1, anything else 0, in the reader's order.
void Opt_ReadYesNo(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->frontSecureErase = Opt_ReadKeyword(ctx, "frontSecureErase");
  task->backSecureErase = Opt_ReadKeyword(ctx, "backSecureErase");
  task->frontRotation = Opt_ReadKeyword(ctx, "frontRotation");
  task->backRotation = Opt_ReadKeyword(ctx, "backRotation");
  task->entryCardFlip = Opt_ReadKeyword(ctx, "entryCardFlip");
  task->magEncodeCardFlip = Opt_ReadKeyword(ctx, "magEncodeCardFlip");
}

// 'Opt_ReadMagPOMode()' - "Auto" 1, "Disabled" 2, "Enabled" 3; anything
// else takes the settings value: -1 gives 0, 0 gives 2, other numbers 3.
void Opt_ReadMagPOMode(TOptionContext* ctx) {
  int32_t fromSettings = ctx->settings.magPOMode == -1 ? 0 : ctx->settings.magPOMode == 0 ? 2 : 3;
  ctx->task->magPOMode = Opt_ReadKeyword(ctx, "magPOMode", fromSettings);
}

// 'Opt_ReadMagTracks()' - Tracks 1-3 with both a format and data marked.
// The data of a custom choice is its text; the placeholder choice "None"
// carries no data.  Any non-zero byte 0, error statuses included, marks the
// job for encoding.
void Opt_ReadMagTracks(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  for (int32_t t = 1; t <= 3; ++t) {
    char formatKey[32], dataKey[32];
    snprintf(formatKey, sizeof formatKey, "magEncodeFormat%d", static_cast<int>(t));
    snprintf(dataKey, sizeof dataKey, "magEncodeData%d", static_cast<int>(t));
    std::string format, data;
    bool custom = false;
    if (!ctx->ppd || !ctx->ppd->Choice(formatKey, &format, nullptr) ||
        !ctx->ppd->Choice(dataKey, &data, &custom))
      continue;
    Log_Write(LOG_LOG, "  magEncodeFormat%d::[%s]", static_cast<int>(t), format.c_str());
    Log_Write(LOG_LOG, "  magEncodeData%d::[%s]", static_cast<int>(t), data.c_str());
    std::string value = Opt_CustomValue(data, custom);
    if (!custom && Str_EqualNoCase(value.c_str(), "None")) value.clear();
    if (format.empty() || value.empty()) continue;
    Mag_EncodeTrack(t, format.c_str(), value.c_str(), &task->magTracks[t - 1]);
    Warn_MagTrack(t, format, value, task->magTracks[t - 1]);
    if (task->magTracks[t - 1].format != 0) task->magEncode = 1;
  }
}

// 'Opt_ReadPlugin()' - A choice other than "Default" names the plug-in
// (a custom choice its text); otherwise the settings' plug-in.
void Opt_ReadPlugin(TOptionContext* ctx) {
  std::string text;
  bool custom = false;
  bool marked = Opt_Choice(ctx, "printerPlugin", &text, &custom);
  if (marked && !Str_EqualNoCase(text.c_str(), "Default"))
    ctx->task->printerPlugin = Opt_CustomValue(text, custom);
  else
    ctx->task->printerPlugin = ctx->settings.plugin;
  Log_Write(LOG_LOG, "  printerPlugin::[%s]", ctx->task->printerPlugin.c_str());
}

// 'Opt_ReadPrinterName()' - The queue name from $PRINTER.
void Opt_ReadPrinterName(TOptionContext* ctx) {
  const char* name = getenv("PRINTER");
  ctx->task->printerName = name ? name : "";
  Log_Write(LOG_LOG, "  printerName::[%s]", ctx->task->printerName.c_str());
}

// 'Opt_ReadCardEject()' - "No" or "False" 0, anything else 1.
void Opt_ReadCardEject(TOptionContext* ctx) {
  ctx->task->cardEjectExisting = Opt_ReadKeyword(ctx, "cardEjectExisting");
}
