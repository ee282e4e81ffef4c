// Named values of a settings file: the key table, checks and conversions.
// Copyright 2026 The rastertobrellian authors.
#include "lib/settings_keys.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <strings.h>

#include "imaging/panel.h"
#include "options/area.h"
#include "util/safe_file.h"

namespace {

const char* const kResinGroups[2] = {"include", "exclude"};
const char* const kPOGroups[2] = {"peel-off", "keep"};

// Words of the two card-handling numbers; other numbers are written as such.
struct TNumberWord {
  const char* word;
  int32_t value;
};
const TNumberWord kThicknessWords[] = {{"unset", -1}, {"standard", 0}, {"thin", 1}};
const TNumberWord kMagPOWords[] = {{"unset", -1}, {"disabled", 0}, {"enabled", 1}};

// 'Settings_BuildKeys()' - Every key in the order of the file's entries.
std::vector<TSettingsKey> Settings_BuildKeys() {
  std::vector<TSettingsKey> keys;
  for (TSettingsKind kind : {SETKEY_RESIN_AREA, SETKEY_PO_AREA})
    for (int p = 0; p < SETTINGS_PRESETS; ++p)
      for (int g = 0; g < SETTINGS_GROUPS; ++g)
        for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) keys.push_back({kind, p, g, k});
  for (int n = 0; n < SETTINGS_NAMES; ++n) keys.push_back({SETKEY_LUT_NAME, 0, 0, n});
  for (int n = 0; n < SETTINGS_NAMES; ++n) keys.push_back({SETKEY_UV_NAME, 0, 0, n});
  for (int n = 0; n < SETTINGS_FLAGS; ++n) keys.push_back({SETKEY_FLAG, 0, 0, n});
  keys.push_back({SETKEY_PLUGIN, 0, 0, 0});
  keys.push_back({SETKEY_CARD_THICKNESS, 0, 0, 0});
  keys.push_back({SETKEY_MAG_PO_MODE, 0, 0, 0});
  return keys;
}

// 'Settings_StringField()' - The string a key names, or null for a number.
std::string* Settings_StringField(TBrellianSettings* s, const TSettingsKey& key) {
  switch (key.kind) {
    case SETKEY_RESIN_AREA: return &s->resinAreas[key.preset][key.group][key.index];
    case SETKEY_PO_AREA: return &s->poAreas[key.preset][key.group][key.index];
    case SETKEY_LUT_NAME: return &s->lutNames[key.index];
    case SETKEY_UV_NAME: return &s->uvNames[key.index];
    case SETKEY_PLUGIN: return &s->plugin;
    default: return nullptr;
  }
}

// 'Settings_ParseInt()' - A whole decimal number (optional '-') within
// [low, high]; false for anything else.
bool Settings_ParseInt(const std::string& text, long low, long high, long* value) {
  if (text.empty() || text.size() > 11) return false;
  for (size_t i = 0; i < text.size(); ++i)
    if (!(text[i] >= '0' && text[i] <= '9') && !(i == 0 && text[i] == '-' && text.size() > 1)) return false;
  errno = 0;
  long v = strtol(text.c_str(), nullptr, 10);
  if (errno != 0 || v < low || v > high) return false;
  *value = v;
  return true;
}

// 'Settings_ParseWordNumber()' - One of the words (any case) or an int32.
bool Settings_ParseWordNumber(const std::string& text, const TNumberWord (&words)[3], int32_t* value) {
  for (const TNumberWord& w : words)
    if (strcasecmp(text.c_str(), w.word) == 0) return *value = w.value, true;
  long v;
  if (!Settings_ParseInt(text, INT32_MIN, INT32_MAX, &v)) return false;
  *value = static_cast<int32_t>(v);
  return true;
}

// 'Settings_WordNumber()' - The word naming value, else value in decimal.
std::string Settings_WordNumber(int32_t value, const TNumberWord (&words)[3]) {
  for (const TNumberWord& w : words)
    if (w.value == value) return w.word;
  return std::to_string(value);
}

// 'Settings_HasControl()' - True when text holds a control character.
bool Settings_HasControl(const std::string& text) {
  for (unsigned char c : text)
    if (c < 0x20 || c == 0x7F) return true;
  return false;
}

// 'Settings_CheckString()' - Why value can't stand for key, or empty.
std::string Settings_CheckString(const TSettingsKey& key, const std::string& value) {
  if (value.empty()) return "";
  if (value.size() >= SETTINGS_STRING_MAX) return "is longer than " + std::to_string(SETTINGS_STRING_MAX - 1) + " bytes";
  switch (key.kind) {
    case SETKEY_RESIN_AREA:
    case SETKEY_PO_AREA: return Settings_CheckArea(value);
    case SETKEY_LUT_NAME:
    case SETKEY_UV_NAME:
      if (!File_IsSafeName(value.c_str()))
        return "is not a plain file name (no \"/\", no leading \".\", no control characters, at most 255 bytes)";
      if (key.kind == SETKEY_LUT_NAME && value.size() >= 4 &&
          strcasecmp(value.c_str() + value.size() - 4, ".csv") == 0)
        return "ends in \".csv\": give the table's name without it (the filter adds \".csv\")";
      return "";
    default:
      if (value.size() > SETTINGS_PLUGIN_MAX) return "is longer than 127 bytes";
      if (Settings_HasControl(value)) return "holds a control character";
      return "";
  }
}

}  // namespace

// 'Settings_AllKeys()' - The key table, built once, in file order.
const std::vector<TSettingsKey>& Settings_AllKeys() {
  static const std::vector<TSettingsKey> keys = Settings_BuildKeys();
  return keys;
}

// 'Settings_KeyName()' - "resin.1.include.2" and the like.
std::string Settings_KeyName(const TSettingsKey& key) {
  char text[64];
  switch (key.kind) {
    case SETKEY_RESIN_AREA:
      snprintf(text, sizeof text, "resin.%d.%s.%d", key.preset + 1, kResinGroups[key.group], key.index + 1);
      return text;
    case SETKEY_PO_AREA:
      snprintf(text, sizeof text, "po.%d.%s.%d", key.preset + 1, kPOGroups[key.group], key.index + 1);
      return text;
    case SETKEY_LUT_NAME: return "lut." + std::to_string(key.index + 1);
    case SETKEY_UV_NAME: return "uv." + std::to_string(key.index + 1);
    case SETKEY_FLAG: return "flag." + std::to_string(key.index + 1);
    case SETKEY_PLUGIN: return "plugin";
    case SETKEY_CARD_THICKNESS: return "card-thickness";
    case SETKEY_MAG_PO_MODE: return "mag-po-mode";
  }
  return "";
}

// 'Settings_FindKey()' - Look a key up by its exact name.
bool Settings_FindKey(const std::string& text, TSettingsKey* key) {
  for (const TSettingsKey& k : Settings_AllKeys()) {
    if (Settings_KeyName(k) == text) {
      *key = k;
      return true;
    }
  }
  return false;
}

// 'Settings_GetValue()' - A value as the text form writes it.
std::string Settings_GetValue(const TBrellianSettings& settings, const TSettingsKey& key) {
  TBrellianSettings* s = const_cast<TBrellianSettings*>(&settings);
  if (std::string* field = Settings_StringField(s, key)) return *field;
  switch (key.kind) {
    case SETKEY_FLAG: return std::to_string(settings.flags[key.index]);
    case SETKEY_CARD_THICKNESS: return Settings_WordNumber(settings.cardThickness, kThicknessWords);
    default: return Settings_WordNumber(settings.magPOMode, kMagPOWords);
  }
}

// 'Settings_SetValue()' - Check and store one value; settings untouched on refusal.
bool Settings_SetValue(TBrellianSettings* settings, const TSettingsKey& key, const std::string& value,
                       std::string* error) {
  std::string why;
  if (std::string* field = Settings_StringField(settings, key)) {
    why = Settings_CheckString(key, value);
    if (why.empty()) *field = value;
  } else if (key.kind == SETKEY_FLAG) {
    long v;
    if (Settings_ParseInt(value, 0, 255, &v)) settings->flags[key.index] = static_cast<uint8_t>(v);
    else why = "is not a number from 0 to 255";
  } else {
    bool thickness = key.kind == SETKEY_CARD_THICKNESS;
    int32_t v;
    if (!Settings_ParseWordNumber(value, thickness ? kThicknessWords : kMagPOWords, &v))
      why = thickness ? "is not \"unset\", \"standard\", \"thin\" or a whole number"
                      : "is not \"unset\", \"disabled\", \"enabled\" or a whole number";
    else if (thickness) settings->cardThickness = v;
    else settings->magPOMode = v;
  }
  if (why.empty()) return true;
  if (error) *error = Settings_KeyName(key) + ": \"" + value + "\" " + why;
  return false;
}

namespace {
// The model whose resolution areas are checked at; 0 for every model.
uint32_t g_settingsCheckModel = 0;
}  // namespace

// 'Settings_SetCheckModel()' - Remember the model for Settings_CheckArea.
void Settings_SetCheckModel(uint32_t model) { g_settingsCheckModel = model; }

// 'Settings_CheckArea()' - Split with the filter's reader, then parse at the
// checked resolutions: a string that gives no area there is refused.  An
// area of four zeros is no area to the filter (an include or peel-off area
// of zeros is as if not given), while a single 0 width or height reaches
// the panel's edge; the message says how to cover the whole card.
std::string Settings_CheckArea(const std::string& text) {
  if (text.empty()) return "";
  char tokens[4][AREA_TOKEN_MAX + 1];
  if (Area_SplitValues(text.c_str(), tokens) != 4)
    return "is not an area: it needs four values (left, top, width, height), each a number with a unit "
           "px, mm, cm, in or \", e.g. \"5mm 5mm 50mm 30mm\"";
  if (g_modelResolution.empty()) Panel_BuildTables();
  for (const auto& model : g_modelResolution) {
    if (g_settingsCheckModel != 0 && model.first != g_settingsCheckModel) continue;
    TArea area;
    Area_Parse(&area, text.c_str(), model.second);
    if (Area_IsEmpty(&area))
      return "is no area: all four values are 0 dots at " + std::to_string(model.second) +
             " dpi (a width or height of 0 reaches the card's edge, but four zeros mean no area; for the "
             "whole card give a height past its edge, e.g. \"0 0 0 3in\", and an empty value clears the entry)";
  }
  return "";
}

// 'Settings_AreaNote()' - The last value's unit: when it has none the
// filter reads it in inches.
std::string Settings_AreaNote(const std::string& text) {
  char tokens[4][AREA_TOKEN_MAX + 1];
  if (text.empty() || Area_SplitValues(text.c_str(), tokens) != 4) return "";
  std::string last = tokens[3];
  if (last.empty() || !(isdigit(static_cast<unsigned char>(last.back())) || last.back() == '.')) return "";
  if (strtod(last.c_str(), nullptr) == 0.0) return "";   // 0 is 0 in any unit
  return "the last value \"" + last + "\" has no unit, so the filter reads it as " + last +
         " inches (a value without a unit before it reads as dots); write \"" + last + "px\" for dots or give "
         "its unit";
}
