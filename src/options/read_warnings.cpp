// Option reader: WARNING lines for options the job asked for and won't get.
// Copyright 2026 The rastertobrellian authors.
//
// Each check runs where the reader falls back, and only reads what the
// reader has already settled (the task's fields, the loaded settings, the
// PPD's marked choices); none of them writes to the log.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "driver/printing_task.h"
#include "driver/warning.h"
#include "options/area.h"
#include "options/mag.h"
#include "options/option_source.h"
#include "options/read_context.h"

namespace {

const char* const kSideWords[2] = {"front", "back"};

// 'Warn_AllEmpty()' - True when no area of the group is used.
bool Warn_AllEmpty(const TArea* group) {
  for (int32_t k = 0; k < AREAS_PER_GROUP; ++k)
    if (!Area_IsEmpty(&group[k])) return false;
  return true;
}

// 'Warn_AreaProblem()' - Why a non-empty area text reads as no area.
std::string Warn_AreaProblem(const std::string& text) {
  char tokens[4][AREA_TOKEN_MAX + 1];
  if (Area_SplitValues(text.c_str(), tokens) == 4) return "all four values are 0, which is no area";
  return "it is not four values left, top, width and height, each a number with a unit px, mm, cm, "
         "in or \" (e.g. 5mm+30mm+50mm+15mm)";
}

// 'Warn_PresetText()' - True when the preset holds any area text at all.
bool Warn_PresetText(const std::string (&preset)[SETTINGS_GROUPS][SETTINGS_AREAS], int32_t groups) {
  for (int32_t g = 0; g < groups; ++g)
    for (int32_t k = 0; k < SETTINGS_AREAS; ++k)
      if (!preset[g][k].empty()) return true;
  return false;
}

// 'Warn_PresetAreas()' - Warn about every area text of a preset that the
// reader took as no area; true when there was one.
bool Warn_PresetAreas(const std::string (&preset)[SETTINGS_GROUPS][SETTINGS_AREAS],
                      const TArea (&areas)[2][AREAS_PER_GROUP], const char* keyword,
                      const char* choice, const char* family, int32_t number,
                      const char* const groupKeys[2]) {
  bool any = false;
  for (int32_t g = 0; g < 2; ++g) {
    for (int32_t k = 0; k < SETTINGS_FILE_AREAS; ++k) {
      const std::string& text = preset[g][k];
      if (text.empty() || !Area_IsEmpty(&areas[g][k])) continue;
      Warn_Write("%s=%s: area %s.%d.%s.%d \"%s\" of the printer's settings is left out: %s",
                 keyword, choice, family, static_cast<int>(number), groupKeys[g],
                 static_cast<int>(k + 1), text.c_str(), Warn_AreaProblem(text).c_str());
      any = true;
    }
  }
  return any;
}

// 'Warn_CustomAreas()' - Warn about every custom area keyword of a side
// whose "Custom." text the reader took as no area.  *given counts the
// custom texts of group 0.  True when there was a bad one.
bool Warn_CustomAreas(const TOptionContext* ctx, const char* prefix, const char* const groupWords[2],
                      const TArea (&areas)[2][AREAS_PER_GROUP], int32_t* given) {
  bool any = false;
  *given = 0;
  for (int32_t g = 0; g < 2; ++g) {
    for (int32_t k = 0; k < AREAS_PER_GROUP; ++k) {
      char keyword[64];
      snprintf(keyword, sizeof keyword, "%s%s%d", prefix, groupWords[g], static_cast<int>(k + 1));
      std::string text;
      bool custom = false;
      if (!ctx->ppd || !ctx->ppd->Choice(keyword, &text, &custom) || !custom) continue;
      if (text.size() <= 7) continue;  // "Custom." alone clears the area
      if (g == 0) ++*given;
      if (!Area_IsEmpty(&areas[g][k])) continue;
      Warn_Write("%s=%s is left out: %s", keyword, text.c_str(), Warn_AreaProblem(text.substr(7)).c_str());
      any = true;
    }
  }
  return any;
}

// 'Warn_ResinSide()' - Resin of one side: areas left out, a preset with no
// areas, custom areas with none given, resin chosen without "ColorK".
void Warn_ResinSide(const TOptionContext* ctx, int32_t side) {
  static const char* const kGroupKeys[2] = {"include", "exclude"};
  static const char* const kGroupWords[2] = {"Include", "Exclude"};
  const TPrintingTask* task = ctx->task;
  int32_t resin = task->resin(side);
  if (resin < 1 || resin > 11) return;
  std::string keyword = std::string(kSideWords[side]) + "Resin";
  char choice[16];
  if (resin == 11) snprintf(choice, sizeof choice, "CustomAreas");
  else snprintf(choice, sizeof choice, "Preset%d", static_cast<int>(resin));
  if (task->ribbon(side) != 3) {
    Warn_Write("%s=%s is left out: resin areas are printed only with %sRibbon=ColorK", keyword.c_str(),
               choice, kSideWords[side]);
    return;
  }
  const TArea(&areas)[2][AREAS_PER_GROUP] = task->resinAreas[side];
  if (resin == 11) {
    int32_t given = 0;
    bool bad = Warn_CustomAreas(ctx, keyword.c_str(), kGroupWords, areas, &given);
    if (!bad && given == 0)
      Warn_Write("%s=CustomAreas: none of %sResinInclude1-5 gives an area, so resin goes on the black "
                 "dots of the whole side", keyword.c_str(), kSideWords[side]);
    return;
  }
  const auto& preset = ctx->settings.resinAreas[resin - 1];
  if (Warn_PresetAreas(preset, areas, keyword.c_str(), choice, "resin", resin, kGroupKeys)) return;
  if (!Warn_PresetText(preset, 2))
    Warn_Write("%s=%s has no areas: %s; resin goes on the black dots of the whole side", keyword.c_str(),
               choice, Opt_PresetReason(ctx, "resin preset " + std::to_string(resin)).c_str());
}

// 'Warn_POSide()' - Overlay areas of one side: areas left out, and an
// overlay preset or custom areas without any peel-off area.
void Warn_POSide(const TOptionContext* ctx, int32_t side) {
  static const char* const kGroupKeys[2] = {"peel-off", "keep"};
  static const char* const kGroupWords[2] = {"PeelOff", "NonPeelOff"};
  const TPrintingTask* task = ctx->task;
  int32_t po = task->po(side);
  if (po < 2 || po > 12) return;
  std::string keyword = std::string(kSideWords[side]) + "PO";
  const TArea(&areas)[2][AREAS_PER_GROUP] = task->poAreas[side];
  if (po == 12) {
    int32_t given = 0;
    bool bad = Warn_CustomAreas(ctx, kSideWords[side], kGroupWords, areas, &given);
    if (!bad && given == 0)
      Warn_Write("%s=CustomAreas gives no overlay: none of %sPeelOff1-5 gives an area", keyword.c_str(),
                 kSideWords[side]);
    return;
  }
  int32_t preset = po - 1;
  char choice[16];
  snprintf(choice, sizeof choice, "Preset%d", static_cast<int>(preset));
  const auto& texts = ctx->settings.poAreas[preset - 1];
  if (Warn_PresetAreas(texts, areas, keyword.c_str(), choice, "po", preset, kGroupKeys)) return;
  if (!Warn_AllEmpty(areas[0])) return;
  std::string reason = Warn_PresetText(texts, 2)
                           ? "overlay preset " + std::to_string(preset) + " has only keep areas"
                           : Opt_PresetReason(ctx, "overlay preset " + std::to_string(preset));
  Warn_Write("%s=%s gives no overlay: %s", keyword.c_str(), choice, reason.c_str());
}

}  // namespace

// 'Opt_PresetReason()' - Why a settings entry the job needs is empty: no
// serial number to find the file by, no readable file, or the entry unset.
std::string Opt_PresetReason(const TOptionContext* ctx, const std::string& entry) {
  if (ctx->task->serialNumber.empty())
    return "the device URI has no serial number (\"?serial=\"), so the printer's settings are not read";
  std::string path = ctx->settings.FilePath();
  if (!ctx->settingsRead) {
    if (access(path.c_str(), F_OK) != 0) return "there is no settings file " + path;
    return "the settings file " + path + " can't be read";
  }
  return entry + " is not set in the settings file " + path;
}

// 'Warn_Areas()' - The resin and overlay checks of both sides.
void Warn_Areas(const TOptionContext* ctx) {
  Warn_ResinSide(ctx, SIDE_FRONT);
  Warn_ResinSide(ctx, SIDE_BACK);
  Warn_POSide(ctx, SIDE_FRONT);
  Warn_POSide(ctx, SIDE_BACK);
}

// 'Warn_IgnoredValues()' - Text options of the job that libcups left
// unmarked because they lack the "Custom." prefix.
void Warn_IgnoredValues(const TOptionContext* ctx, const char* options) {
  if (!ctx->ppd) return;
  for (const auto& option : ctx->ppd->IgnoredTextValues(options))
    Warn_Write("%s=%s is left out: a text value is given as %s=Custom.<text> (blanks written as +, "
               "or the value quoted)", option.first.c_str(), option.second.c_str(), option.first.c_str());
}

// 'Warn_MagTrack()' - Track data that was given but won't be encoded: the
// format "None", or a format or data that the track refuses.
void Warn_MagTrack(int32_t track, const std::string& format, const std::string& data,
                   const TMagTrack& result) {
  int t = static_cast<int>(track);
  if (result.format == 0) {
    Warn_Write("magEncodeData%d is left out: magEncodeFormat%d is %s", t, t, format.c_str());
  } else if (result.format == MAG_STATUS_FORMAT) {
    Warn_Write("magEncodeData%d is not encoded: magEncodeFormat%d=%s is not a format of track %d", t, t,
               format.c_str(), t);
  } else if (result.format == MAG_STATUS_TOO_LONG) {
    Warn_Write("magEncodeData%d is not encoded: %zu characters, more than 127", t, data.size());
  } else if (result.format == MAG_STATUS_BAD_CHAR) {
    // The first character the format's set lacks: the longest prefix that
    // still encodes ends just before it.
    size_t bad = 0;
    TMagTrack probe;
    while (bad < data.size()) {
      Mag_EncodeTrack(track, format.c_str(), data.substr(0, bad + 1).c_str(), &probe);
      if (probe.format == MAG_STATUS_BAD_CHAR) break;
      ++bad;
    }
    Warn_Write("magEncodeData%d is not encoded: character %zu ('%c') is not in the character set of %s",
               t, bad + 1, bad < data.size() ? data[bad] : '?', format.c_str());
  }
}

// 'Warn_UVPreset()' - A UV preset cleared by the UV file rule: its name is
// not set (name empty) or its file is not there.
void Warn_UVPreset(const TOptionContext* ctx, const char* keyword, int32_t uv, const std::string& name,
                   const std::string& path) {
  int preset = static_cast<int>(uv - 1);
  std::string reason = name.empty() ? Opt_PresetReason(ctx, "uv." + std::to_string(preset))
                                    : "UV file " + path + " not found";
  Warn_Write("%s=Preset%d gives no UV: %s", keyword, preset, reason.c_str());
}

// 'Warn_LutTable()' - A lookup table choice that fell back to the
// printer's own table: rc -1 not found, else not usable (error says why).
void Warn_LutTable(const TOptionContext* ctx, const char* keyword, int32_t code, const std::string& name,
                   const std::string& path, int32_t rc, const TLutError& error) {
  std::string reason;
  if (name.empty()) reason = Opt_PresetReason(ctx, "lut." + std::to_string(code));
  else if (rc == -1) reason = "lookup table " + path + " not found";
  else if (error.line > 0)
    reason = "lookup table " + path + " is not usable (line " + std::to_string(error.line) + ": " +
             error.reason + ")";
  else reason = "lookup table " + path + " is not usable (" + std::string(error.reason) + ")";
  Warn_Write("%s=LUT%d is left out, the printer's own table is used: %s", keyword, static_cast<int>(code),
             reason.c_str());
}
