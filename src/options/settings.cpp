// TBrellianSettings: the per-printer presets file on disk.
// Copyright 2026 The rastertobrellian authors.
#include "options/settings.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "options/conf_file.h"
#include "util/safe_file.h"
#include "util/str.h"

namespace {

// 'Store_MakeDirs()' - Create the configuration and settings directories
// (mode FILE_DIRECTORY_MODE, 0777; errors ignored).  An existing directory
// keeps its mode.
void Store_MakeDirs() {
  mkdir(BRELLIAN_CONF_DIR, FILE_DIRECTORY_MODE);
  mkdir(BRELLIAN_SETTINGS_DIR, FILE_DIRECTORY_MODE);
}

// 'Store_NameError()' - 0 when name may stand in a settings file name,
// else the error number reported for it: ENAMETOOLONG for a name over
// SETTINGS_NAME_MAX bytes, EINVAL for an empty name or one holding "/",
// control characters or a leading ".".
int Store_NameError(const std::string& name) {
  if (name.size() > SETTINGS_NAME_MAX) return ENAMETOOLONG;
  if (name.size() != strlen(name.c_str())) return EINVAL;
  return File_IsSafeName(name.c_str(), SETTINGS_NAME_MAX) ? 0 : EINVAL;
}

}  // namespace

TBrellianSettings::TBrellianSettings() { Reset(); }

// 'Reset()' - All strings empty, all flag bytes 0, both numbers -1.
void TBrellianSettings::Reset() {
  modelName.clear();
  serialNumber.clear();
  for (auto& preset : resinAreas)
    for (auto& group : preset)
      for (auto& area : group) area.clear();
  for (auto& preset : poAreas)
    for (auto& group : preset)
      for (auto& area : group) area.clear();
  for (auto& name : lutNames) name.clear();
  for (auto& name : uvNames) name.clear();
  memset(flags, 0, sizeof flags);
  plugin.clear();
  cardThickness = -1;
  magPOMode = -1;
}

// 'FilePath()' - BRELLIAN_SETTINGS_DIR "/brellian_<model>_<serial>.dat"
// with the names as stored.
std::string TBrellianSettings::FilePath() const {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_" + modelName + "_" + serialNumber + ".dat";
}

// 'Load()' - Reset, store the lower-cased names and read their file.  A
// name that can't stand in a file name, an unopenable file, one another
// user could have planted (Conf_OpenFile) or one larger than
// SETTINGS_FILE_MAX leaves the reset state and returns false.
bool TBrellianSettings::Load(const char* model, const char* serial) {
  Reset();
  Store_MakeDirs();
  modelName = model ? model : "";
  serialNumber = serial ? serial : "";
  Str_ToLower(modelName);
  Str_ToLower(serialNumber);
  int error = Store_NameError(modelName);
  if (!error) error = Store_NameError(serialNumber);
  std::string bytes;
  if (!error && Conf_ReadFile(FilePath().c_str(), SETTINGS_FILE_MAX, &bytes) != 0) error = errno;
  if (error) {
    Log_Write(LOG_LOG, "TBrellianSettings::Load --> failed to open settings file (%d)", error);
    return false;
  }
  LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return true;
}

// 'Save()' - Write the file named by the stored names (truncating it).
bool TBrellianSettings::Save() {
  Store_MakeDirs();
  int error = Store_NameError(modelName);
  if (!error) error = Store_NameError(serialNumber);
  FILE* file = nullptr;
  if (!error) {
    file = File_FOpenRegular(FilePath().c_str(), "wb");
    if (!file) error = errno;
  }
  if (error) {
    Log_Write(LOG_LOG, "TBrellianSettings::Save --> failed to create settings file (%d)", error);
    return false;
  }
  std::string bytes = SaveToBytes();
  bool written = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return (fclose(file) == 0) && written;
}
