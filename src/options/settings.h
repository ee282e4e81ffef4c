// TBrellianSettings: the per-printer presets file.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

constexpr int32_t SETTINGS_PRESETS = 10;
constexpr int32_t SETTINGS_GROUPS = 2;
constexpr int32_t SETTINGS_AREAS = 5;         // room in memory
constexpr int32_t SETTINGS_FILE_AREAS = 3;    // areas kept in the file
constexpr int32_t SETTINGS_NAMES = 5;
constexpr int32_t SETTINGS_FLAGS = 10;
constexpr uint32_t SETTINGS_VERSION = 0x00010002;
// Reading limits: a larger file is not read at all; a longer entry is left
// empty.  Real files are a few kilobytes with entries of a few dozen bytes.
constexpr size_t SETTINGS_FILE_MAX = 1024 * 1024;
constexpr uint32_t SETTINGS_STRING_MAX = 4096;
// Longest model name or serial number that names a settings file.
constexpr size_t SETTINGS_NAME_MAX = 64;

class TBrellianSettings {
 public:
  TBrellianSettings();

  // 'Reset()' - All strings empty, flags 0, both numbers -1.
  void Reset();
  // 'Load()' - Read the file of modelName and serialNumber.  True when the
  // file was opened and read.
  bool Load(const char* modelName, const char* serialNumber);
  // 'Save()' - Write the file named by the stored names.  True on success.
  bool Save();
  // 'FilePath()' - The file name built from the stored names, as stored.
  std::string FilePath() const;

  // 'LoadFromBytes()'/'SaveToBytes()' - The file format on a memory image,
  // used by Load and Save and by tests and tools.  LoadFromBytes resets
  // everything but the two names and never reads outside the image; what
  // the image can't supply is left empty (numbers -1).
  void LoadFromBytes(const uint8_t* data, size_t size);
  std::string SaveToBytes() const;

  std::string modelName;
  std::string serialNumber;
  std::string resinAreas[SETTINGS_PRESETS][SETTINGS_GROUPS][SETTINGS_AREAS];
  std::string poAreas[SETTINGS_PRESETS][SETTINGS_GROUPS][SETTINGS_AREAS];
  std::string lutNames[SETTINGS_NAMES];
  std::string uvNames[SETTINGS_NAMES];
  uint8_t flags[SETTINGS_FLAGS];
  std::string plugin;
  int32_t cardThickness;
  int32_t magPOMode;
};
