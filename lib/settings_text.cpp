// The editable text form of a settings file: writing and reading it.
// Copyright 2026 The rastertobrellian authors.
#include "lib/settings_text.h"

#include <cstdio>
#include <map>

#include "lib/settings_keys.h"

namespace {

const char kTextHeader[] =
    "# Brellian printer settings, text form of brellian-settings.\n"
    "# One \"key = value\" per line; an empty value clears the entry.\n"
    "# Areas: four values \"left top width height\", each with a unit px, mm, cm, in or \".\n"
    "# Names: lookup table file names without \".csv\", UV image file names.\n";

bool Settings_IsBlank(char c) { return c == ' ' || c == '\t'; }

// 'Settings_Trim()' - text without leading and trailing blanks.
std::string Settings_Trim(const std::string& text) {
  size_t b = 0, e = text.size();
  while (b < e && Settings_IsBlank(text[b])) ++b;
  while (e > b && Settings_IsBlank(text[e - 1])) --e;
  return text.substr(b, e - b);
}

// 'Settings_SectionComment()' - The comment line that opens the group of
// key, or null when key continues the group before it.
std::string Settings_SectionComment(const TSettingsKey& key) {
  bool first = key.group == 0 && key.index == 0;
  switch (key.kind) {
    case SETKEY_RESIN_AREA:
      return first ? "# Resin preset " + std::to_string(key.preset + 1) + " (frontResin/backResin = Preset" +
                         std::to_string(key.preset + 1) + ")\n"
                   : "";
    case SETKEY_PO_AREA:
      return first ? "# Overlay preset " + std::to_string(key.preset + 1) + " (frontPO/backPO = Preset" +
                         std::to_string(key.preset + 1) + ")\n"
                   : "";
    case SETKEY_LUT_NAME: return key.index == 0 ? "# Lookup tables LUT1-LUT5\n" : "";
    case SETKEY_UV_NAME: return key.index == 0 ? "# UV images of UV Preset1-Preset5\n" : "";
    case SETKEY_FLAG:
      return key.index == 0 ? "# Flag bytes: flag.1 is the front resin threshold, flag.2 the back's\n" : "";
    case SETKEY_PLUGIN: return "# Plug-in, card thickness (unset, standard, thin), overlay over the stripe "
                               "(unset, disabled, enabled)\n";
    default: return "";
  }
}

// 'Settings_Line()' - "key = value\n", or "key =\n" for an empty value.
std::string Settings_Line(const TSettingsKey& key, const std::string& value) {
  std::string quoted = Settings_QuoteValue(value);
  return Settings_KeyName(key) + (quoted.empty() ? " =\n" : " = " + quoted + "\n");
}

// 'Settings_HexDigit()' - The value of a hex digit, -1 for another character.
int Settings_HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

// 'Settings_QuoteValue()' - Quote and escape only when the value needs it.
std::string Settings_QuoteValue(const std::string& value) {
  bool quote = !value.empty() && (Settings_IsBlank(value.front()) || Settings_IsBlank(value.back()) ||
                                  value.front() == '"');
  for (unsigned char c : value) quote = quote || c < 0x20 || c == 0x7F;
  if (!quote) return value;
  std::string out = "\"";
  for (unsigned char c : value) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20 || c == 0x7F) {
      char hex[8];
      snprintf(hex, sizeof hex, "\\x%02X", c);
      out += hex;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

// 'Settings_UnquoteValue()' - Undo Settings_QuoteValue.
bool Settings_UnquoteValue(const std::string& text, std::string* value) {
  if (text.empty() || text[0] != '"') return *value = text, true;
  if (text.size() < 2 || text.back() != '"') return false;
  value->clear();
  for (size_t i = 1; i + 1 < text.size(); ++i) {
    char c = text[i];
    if (c == '"') return false;
    if (c != '\\') {
      *value += c;
      continue;
    }
    if (i + 2 >= text.size()) return false;
    char e = text[++i];
    if (e == '"' || e == '\\') {
      *value += e;
    } else if (e == 'x' && i + 3 < text.size() && Settings_HexDigit(text[i + 1]) >= 0 &&
               Settings_HexDigit(text[i + 2]) >= 0) {
      *value += static_cast<char>(Settings_HexDigit(text[i + 1]) * 16 + Settings_HexDigit(text[i + 2]));
      i += 2;
    } else {
      return false;
    }
  }
  return true;
}

// 'Settings_ToText()' - Header, then every key under its group comment.
std::string Settings_ToText(const TBrellianSettings& settings) {
  std::string out = kTextHeader;
  for (const TSettingsKey& key : Settings_AllKeys()) {
    std::string comment = Settings_SectionComment(key);
    if (!comment.empty()) out += "\n" + comment;
    out += Settings_Line(key, Settings_GetValue(settings, key));
  }
  return out;
}

// 'Settings_ShowText()' - The lines whose value differs from the reset state.
std::string Settings_ShowText(const TBrellianSettings& settings) {
  TBrellianSettings empty;
  std::string out;
  for (const TSettingsKey& key : Settings_AllKeys()) {
    std::string value = Settings_GetValue(settings, key);
    if (value != Settings_GetValue(empty, key)) out += Settings_Line(key, value);
  }
  return out.empty() ? "(no presets set)\n" : out;
}

// 'Settings_FromText()' - Reset, then read line by line; stop at the first bad line.
bool Settings_FromText(const std::string& text, TBrellianSettings* settings, std::string* error) {
  std::string model = settings->modelName, serial = settings->serialNumber;
  settings->Reset();
  settings->modelName = model;
  settings->serialNumber = serial;
  std::map<std::string, int> seen;
  size_t at = 0;
  for (int lineNo = 1; at < text.size(); ++lineNo) {
    size_t eol = text.find('\n', at);
    std::string line = text.substr(at, eol == std::string::npos ? std::string::npos : eol - at);
    at = eol == std::string::npos ? text.size() : eol + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::string trimmed = Settings_Trim(line);
    if (trimmed.empty() || trimmed[0] == '#') continue;
    std::string where = "line " + std::to_string(lineNo) + ": ";
    size_t eq = trimmed.find('=');
    if (eq == std::string::npos) return *error = where + "expected \"key = value\"", false;
    std::string name = Settings_Trim(trimmed.substr(0, eq));
    TSettingsKey key;
    if (!Settings_FindKey(name, &key)) return *error = where + "unknown key \"" + name + "\"", false;
    auto first = seen.find(name);
    if (first != seen.end())
      return *error = where + "\"" + name + "\" is given twice (first on line " + std::to_string(first->second) + ")",
             false;
    seen[name] = lineNo;
    std::string value;
    if (!Settings_UnquoteValue(Settings_Trim(trimmed.substr(eq + 1)), &value))
      return *error = where + name + ": broken quoted value", false;
    std::string why;
    if (!Settings_SetValue(settings, key, value, &why)) return *error = where + why, false;
  }
  return true;
}
