// Changes to a printer's presets: settings values, UV images and lookup tables, through the tools' library.
// Copyright 2026 The rastertobrellian authors.
#include "app/presets_store.h"

#include <sys/stat.h>

#include <cerrno>
#include <mutex>
#include <vector>

#include "lib/atomic_file.h"
#include "brellian_paths.h"
#include "imaging/panel.h"
#include "options/lut_file.h"
#include "lib/png_io.h"
#include "lib/settings_keys.h"
#include "lib/tool_model.h"
#include "util/safe_file.h"
#include "lib/uv_image.h"

namespace {

// One change at a time: each is a read, a change and an atomic write.
std::mutex g_presetsLock;

// 'Presets_Dirs()' - The configuration directories, as the tools make them.
void Presets_Dirs() {
  mkdir(BRELLIAN_CONF_DIR, 0755);
  mkdir(BRELLIAN_SETTINGS_DIR, 0755);
  mkdir(BRELLIAN_CONF_DIR "/uv", 0755);
  mkdir(BRELLIAN_LUT_DIR, 0755);
}

// 'Presets_SetAndSave()' - One key set and the file written.
bool Presets_SetAndSave(TBrellianSettings* settings, const TSettingsKey& key, const std::string& value,
                        std::string* error) {
  if (!Settings_SetValue(settings, key, value, error)) return false;
  return Tool_SaveSettingsFile(settings->FilePath(), *settings, error);
}

}  // namespace

// 'Presets_Load()' - Read through the tools' loader.
bool Presets_Load(const std::string& serial, TBrellianSettings* settings, std::string* error) {
  return Tool_LoadPrinterSettings(Tool_SettingsModelName(), serial, settings, error) >= 0;
}

// 'Presets_ApplyValues()' - Check all, then write once.
bool Presets_ApplyValues(const std::string& serial, const std::map<std::string, std::string>& values,
                         std::string* error) {
  std::lock_guard<std::mutex> lock(g_presetsLock);
  Presets_Dirs();
  TBrellianSettings settings;
  if (!Presets_Load(serial, &settings, error)) return false;
  for (const TSettingsKey& key : Settings_AllKeys()) {
    auto it = values.find(Settings_KeyName(key));
    if (it == values.end() || it->second == Settings_GetValue(settings, key)) continue;
    if (!Settings_SetValue(&settings, key, it->second, error)) return false;
  }
  return Tool_SaveSettingsFile(settings.FilePath(), settings, error);
}

// 'Presets_InstallUv()' - PNG to UV file, then uv.N.
bool Presets_InstallUv(const std::string& serial, uint32_t model, int preset, const std::string& name,
                       const std::string& fit, const std::string& png, std::string* error) {
  TUvFit how;
  if (preset < 1 || preset > 5) return *error = "The UV preset must be 1 to 5.", false;
  if (!File_IsSafeName(name.c_str())) return *error = "\"" + name + "\" is not a plain file name.", false;
  if (!Uv_ParseFit(fit, &how)) return *error = "Unknown fit \"" + fit + "\".", false;
  TPngImage rgb;
  if (!Png_DecodeRGB(png, &rgb, error)) return *error = "Not a usable PNG picture: " + *error, false;
  TPanelGeometry g = g_panelGeometry[model];
  std::vector<uint8_t> panel;
  if (!Uv_FromImage(rgb, g.width, g.height, how, &panel, error)) return false;
  std::lock_guard<std::mutex> lock(g_presetsLock);
  Presets_Dirs();
  TBrellianSettings settings;
  if (!Presets_Load(serial, &settings, error)) return false;
  std::string path = std::string(BRELLIAN_CONF_DIR "/uv/") + name;
  if (!Tool_ReplaceFile(path, std::string(panel.begin(), panel.end()), 0644, error)) return false;
  return Presets_SetAndSave(&settings, TSettingsKey{SETKEY_UV_NAME, 0, 0, preset - 1}, name, error);
}

// 'Presets_InstallLut()' - CSV checked, then lut.N.
bool Presets_InstallLut(const std::string& serial, int table, const std::string& name, const std::string& bytes,
                        std::string* error) {
  if (table < 1 || table > 3) return *error = "The colour table must be 1 to 3.", false;
  if (!File_IsSafeName(name.c_str()) || name.find('.') != std::string::npos)
    return *error = "\"" + name + "\" is not a plain name (letters, digits, no \".\" or \"/\").", false;
  uint8_t table3[3][LUT_ENTRIES];
  TLutError lutError{0, ""};
  if (!Lut_Parse(bytes.data(), bytes.size(), table3, &lutError))
    return *error = "Not a usable colour table" +
                    (lutError.line > 0 ? " (line " + std::to_string(lutError.line) + ")" : std::string()) + ": " +
                    lutError.reason + ".",
           false;
  std::lock_guard<std::mutex> lock(g_presetsLock);
  Presets_Dirs();
  TBrellianSettings settings;
  if (!Presets_Load(serial, &settings, error)) return false;
  if (!Tool_ReplaceFile(std::string(BRELLIAN_LUT_DIR "/") + name + ".csv", bytes, 0644, error)) return false;
  return Presets_SetAndSave(&settings, TSettingsKey{SETKEY_LUT_NAME, 0, 0, table - 1}, name, error);
}
