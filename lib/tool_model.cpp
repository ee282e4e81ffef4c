// Printer models and settings files as the preset tools name them.
// Copyright 2026 The rastertobrellian authors.
#include "lib/tool_model.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <strings.h>

#include "lib/atomic_file.h"
#include "brellian_paths.h"
#include "log/log.h"
#include "status/models.h"
#include "status/tables.h"
#include "util/safe_file.h"
#include "util/str.h"

// 'Tool_Init()' - Start-up tables built, trace log silent.
void Tool_Init() {
  Status_BuildTables();
  Log_SetOutputMask(0);
  Log_SetLevel(LOG_NONE);
}

// 'Tool_ParseModel()' - Match a model id or display name.
bool Tool_ParseModel(const std::string& text, uint32_t* model) {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  for (int32_t i = 0; i < count; ++i) {
    if (text == std::to_string(models[i].id) || strcasecmp(text.c_str(), models[i].name) == 0) {
      *model = models[i].id;
      return true;
    }
  }
  return false;
}

// 'Tool_ParsePreset()' - One digit, in range.
bool Tool_ParsePreset(const char* text, int most, int* preset, std::string* error) {
  if (text[0] >= '1' && text[0] < '1' + most && text[1] == '\0') {
    *preset = text[0] - '0';
    return true;
  }
  *error = std::string("--preset \"") + text + "\" is not 1 to " + std::to_string(most);
  return false;
}

// 'Tool_SettingsModelName()' - The name of the default model.
std::string Tool_SettingsModelName() { return Model_Default().name; }

// 'Tool_LoadSettingsFile()' - Missing (1), read (0) or unreadable (-1).
int32_t Tool_LoadSettingsFile(const std::string& path, TBrellianSettings* settings, std::string* error) {
  struct stat st;
  if (lstat(path.c_str(), &st) != 0 && errno == ENOENT) return 1;
  std::string bytes;
  if (File_ReadCapped(path.c_str(), SETTINGS_FILE_MAX, &bytes) != 0) {
    *error = "cannot read " + path + ": " + (errno == EFBIG ? "larger than 1 MiB" : strerror(errno));
    return -1;
  }
  settings->LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return 0;
}

// 'Tool_LoadPrinterSettings()' - Check the names, then Load their file.
int32_t Tool_LoadPrinterSettings(const std::string& model, const std::string& serial,
                                 TBrellianSettings* settings, std::string* error) {
  std::string m = model, s = serial;
  Str_ToLower(m);
  Str_ToLower(s);
  for (const std::string* name : {&m, &s}) {
    if (!File_IsSafeName(name->c_str(), SETTINGS_NAME_MAX)) {
      *error = "\"" + *name + "\" can't name a settings file (1-64 bytes, no \"/\", no leading \".\", "
               "no control characters)";
      return -1;
    }
  }
  settings->modelName = m;
  settings->serialNumber = s;
  struct stat st;
  if (lstat(settings->FilePath().c_str(), &st) != 0 && errno == ENOENT) return 1;
  if (!settings->Load(m.c_str(), s.c_str())) {
    *error = "cannot read " + settings->FilePath();
    return -1;
  }
  return 0;
}

// 'Tool_SaveSettingsFile()' - The file image, written safely.
bool Tool_SaveSettingsFile(const std::string& path, const TBrellianSettings& settings, std::string* error) {
  return Tool_ReplaceFile(path, settings.SaveToBytes(), 0644, error);
}

// 'Tool_SetPresetName()' - Load the printer's file, set the entry.
int Tool_SetPresetName(const std::string& serial, const TSettingsKey& key, const std::string& name,
                       TBrellianSettings* settings, std::string* error) {
  if (Tool_LoadPrinterSettings(Tool_SettingsModelName(), serial, settings, error) < 0) return 3;
  return Settings_SetValue(settings, key, name, error) ? 0 : 1;
}

// 'Tool_SavePrinterSettings()' - The directories (mode 0755, owner-writable
// only, so that the filter trusts what is put in them), the file, the
// report.
bool Tool_SavePrinterSettings(const TBrellianSettings& settings, const TSettingsKey& key, std::string* error) {
  mkdir(BRELLIAN_CONF_DIR, TOOL_DIRECTORY_MODE);
  mkdir(BRELLIAN_SETTINGS_DIR, TOOL_DIRECTORY_MODE);
  if (!Tool_SaveSettingsFile(settings.FilePath(), settings, error)) return false;
  printf("set %s = %s in %s\n", Settings_KeyName(key).c_str(), Settings_GetValue(settings, key).c_str(),
         settings.FilePath().c_str());
  return true;
}
