// Changes to a printer's presets: settings values, UV images and lookup tables, through the tools' library.
// Copyright 2026 The rastertobrellian authors.
#include "app/presets_store.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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
#include "app/vendor_table.h"

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

// 'Presets_ListDir()' - Regular, not hidden files of dir ending in suffix,
// without the suffix, sorted.
std::vector<std::string> Presets_ListDir(const std::string& dir, const std::string& suffix) {
  std::vector<std::string> names;
  DIR* d = opendir(dir.c_str());
  if (!d) return names;
  while (struct dirent* e = readdir(d)) {
    std::string n = e->d_name;
    if (n.empty() || n[0] == '.' || n.size() <= suffix.size() ||
        n.compare(n.size() - suffix.size(), suffix.size(), suffix) != 0)
      continue;
    struct stat st;
    if (fstatat(dirfd(d), e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(st.st_mode)) continue;
    names.push_back(n.substr(0, n.size() - suffix.size()));
  }
  closedir(d);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

// 'Presets_ListUv()' - Every file of the uv folder.
std::vector<std::string> Presets_ListUv() { return Presets_ListDir(BRELLIAN_CONF_DIR "/uv", ""); }

// 'Presets_ListLut()' - Every NAME.csv of the lut folder.
std::vector<std::string> Presets_ListLut() { return Presets_ListDir(BRELLIAN_LUT_DIR, ".csv"); }

// 'Presets_CheckName()' - Plain and short enough.
bool Presets_CheckName(const std::string& name, std::string* error) {
  if (name.size() > PRESETS_MAX_NAME)
    return *error = "The name is " + std::to_string(name.size()) + " bytes long; at most " +
                    std::to_string(PRESETS_MAX_NAME) + " bytes are allowed.",
           false;
  if (!File_IsSafeName(name.c_str()))
    return *error = "\"" + name + "\" is not a plain file name (no \"/\", no leading \".\", no control characters).",
           false;
  return true;
}

// 'Presets_UvPreviewPng()' - Installed file, panel size of the model.
bool Presets_UvPreviewPng(const std::string& name, uint32_t model, std::string* png, std::string* error) {
  std::vector<std::string> names = Presets_ListUv();
  if (!File_IsSafeName(name.c_str()) || std::find(names.begin(), names.end(), name) == names.end())
    return *error = "No UV file of that name is installed.", false;
  TPanelGeometry g = g_panelGeometry[model];
  size_t size = static_cast<size_t>(g.width) * g.height;
  std::string raw;
  if (File_ReadCapped((std::string(BRELLIAN_CONF_DIR "/uv/") + name).c_str(), size, &raw) != 0 || raw.size() != size)
    return *error = "The UV file is not of this model's panel size.", false;
  std::vector<uint8_t> gray = Uv_ToGray(reinterpret_cast<const uint8_t*>(raw.data()), raw.size());
  return Png_EncodeGray(g.width, g.height, gray.data(), png) || (*error = "The preview could not be made.", false);
}

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
  if (preset < 1 || preset > SETTINGS_NAMES)
    return *error = "The UV preset must be 1 to " + std::to_string(SETTINGS_NAMES) + ".", false;
  if (!Presets_CheckName(name, error)) return false;
  if (!Uv_ParseFit(fit, &how)) return *error = "Unknown fit \"" + fit + "\".", false;
  TPngImage rgb;
  if (!Png_DecodeRGB(png, &rgb, error)) return *error = "Not a usable PNG picture: " + *error, false;
  TPanelGeometry g = Panel_ModelGeometry(model);
  std::vector<uint8_t> panel;
  if (!Uv_FromImage(rgb, g.width, g.height, how, &panel, error)) return false;
  std::lock_guard<std::mutex> lock(g_presetsLock);
  Presets_Dirs();
  TBrellianSettings settings;
  if (!Presets_Load(serial, &settings, error)) return false;
  std::vector<std::string> installed = Presets_ListUv();
  if (installed.size() >= PRESETS_MAX_UV_FILES && std::find(installed.begin(), installed.end(), name) == installed.end())
    return *error = "There are already " + std::to_string(installed.size()) + " UV files (at most " +
                    std::to_string(PRESETS_MAX_UV_FILES) + "): upload under the name of an installed file to replace it, or have an administrator remove one on the server.",
           false;
  std::string path = std::string(BRELLIAN_CONF_DIR "/uv/") + name;
  if (!Tool_ReplaceFile(path, std::string(panel.begin(), panel.end()), 0644, error)) return false;
  return Presets_SetAndSave(&settings, TSettingsKey{SETKEY_UV_NAME, 0, 0, preset - 1}, name, error);
}

// 'Presets_InstallLut()' - CSV checked, then lut.N.
bool Presets_InstallLut(const std::string& serial, int table, const std::string& name, const std::string& bytes,
                        std::string* error) {
  if (table < 1 || table > APP_COLOR_TABLES)
    return *error = "The colour table must be 1 to " + std::to_string(APP_COLOR_TABLES) + ".", false;
  if (!Presets_CheckName(name, error)) return false;
  if (name.find('.') != std::string::npos)
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
