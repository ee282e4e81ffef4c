// Option reader: resin and overlay areas of both sides.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>

#include "driver/printing_task.h"
#include "log/log.h"
#include "options/read_context.h"

namespace {

constexpr int32_t kResinCustom = 11;
constexpr int32_t kPOCustom = 12;

const char* const kSideNames[2] = {"Front", "Back"};
const char* const kSideWords[2] = {"front", "back"};
const char* const kResinGroupNames[2] = {"include", "exclude"};
const char* const kResinGroupWords[2] = {"Include", "Exclude"};
const char* const kPOGroupNames[2] = {"peel-off", "keep"};
const char* const kPOGroupWords[2] = {"PeelOff", "NonPeelOff"};

// 'Opt_ReadCustomGroups()' - Custom areas of one side: for each group and
// k = 1..5 the keyword prefix + group word + k; a present keyword's text is
// parsed into the area.
void Opt_ReadCustomGroups(const TOptionContext* ctx, const char* prefix,
                          const char* const groupWords[2], TArea areas[2][AREAS_PER_GROUP]) {
  uint32_t dpi = Opt_Resolution(ctx);
  for (int g = 0; g < 2; ++g) {
    for (int k = 0; k < AREAS_PER_GROUP; ++k) {
      char keyword[64];
      snprintf(keyword, sizeof keyword, "%s%s%d", prefix, groupWords[g], k + 1);
      std::string text;
      if (Opt_Choice(ctx, keyword, &text)) Area_Parse(&areas[g][k], text.c_str(), dpi);
    }
  }
}

// 'Opt_ReadResinAreas()' - Resin areas of a side by its resin code: a
// preset takes the settings' strings and the flag byte of the side (not of
// the preset); custom areas come from the PPD and use flag 0.
void Opt_ReadResinAreas(TOptionContext* ctx, int32_t side, int32_t resin) {
  TPrintingTask* task = ctx->task;
  if (resin >= 1 && resin <= 10) {
    uint32_t dpi = Opt_Resolution(ctx);
    task->resinFlag[side] = ctx->settings.flags[side];
    for (int g = 0; g < 2; ++g) {
      for (int k = 0; k < AREAS_PER_GROUP; ++k) {
        const std::string& text = ctx->settings.resinAreas[resin - 1][g][k];
        Log_Write(LOG_LOG, "  %s resin: preset %d: (%s)(%s)(%d)", kSideNames[side],
                  static_cast<int>(resin), kResinGroupNames[g], text.c_str(),
                  static_cast<int>(task->resinFlag[side]));
        Area_Parse(&task->resinAreas[side][g][k], text.c_str(), dpi);
      }
    }
  } else if (resin == kResinCustom) {
    task->resinFlag[side] = 0;
    std::string prefix = std::string(kSideWords[side]) + "Resin";
    Opt_ReadCustomGroups(ctx, prefix.c_str(), kResinGroupWords, task->resinAreas[side]);
  }
}

// 'Opt_ReadPOAreas()' - Overlay areas of a side by its PO code: presets
// (codes 2-11 for presets 1-10) from the settings, custom areas from the PPD.
void Opt_ReadPOAreas(TOptionContext* ctx, int32_t side, int32_t po) {
  TPrintingTask* task = ctx->task;
  if (po >= 2 && po <= 11) {
    uint32_t dpi = Opt_Resolution(ctx);
    int32_t preset = po - 1;
    for (int g = 0; g < 2; ++g) {
      for (int k = 0; k < AREAS_PER_GROUP; ++k) {
        const std::string& text = ctx->settings.poAreas[preset - 1][g][k];
        Log_Write(LOG_LOG, "  %s peel-off: preset %d: (%s)(%s)", kSideNames[side],
                  static_cast<int>(preset), kPOGroupNames[g], text.c_str());
        Area_Parse(&task->poAreas[side][g][k], text.c_str(), dpi);
      }
    }
  } else if (po == kPOCustom) {
    Opt_ReadCustomGroups(ctx, kSideWords[side], kPOGroupWords, task->poAreas[side]);
  }
}

}  // namespace

// 'Opt_ReadAreas()' - Resin areas front then back, then overlay areas front
// then back, at the resolution of the settled model.
void Opt_ReadAreas(TOptionContext* ctx) {
  Opt_ReadResinAreas(ctx, SIDE_FRONT, ctx->task->frontResin);
  Opt_ReadResinAreas(ctx, SIDE_BACK, ctx->task->backResin);
  Opt_ReadPOAreas(ctx, SIDE_FRONT, ctx->task->frontPO);
  Opt_ReadPOAreas(ctx, SIDE_BACK, ctx->task->backPO);
  Warn_Areas(ctx);
}
