// Helpers of the settings store tests: file images and log capture.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "brellian_paths.h"
#include "log/log.h"
#include "options/settings.h"

namespace settings_test {


inline std::string U32(uint32_t v) {
  std::string s;
  for (int i = 0; i < 4; ++i) s.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
  return s;
}

inline std::string Entry(const std::string& text) { return U32(text.size() + 1) + text + '\0'; }

// A file image of the given version: flags 1..10, every entry empty except
// resin preset 1 include 1, the LUT and UV names and the plug-in.
inline std::string Image(uint32_t version, bool withTail = true) {
  std::string s = "ERAWTFOS" + U32(version);
  for (int i = 1; i <= 10; ++i) s.push_back(static_cast<char>(i));
  s += Entry("5mm 5mm 50mm 30mm");
  for (int i = 1; i < 120; ++i) s += Entry("");
  for (int i = 1; i <= 5; ++i) s += Entry("lut" + std::to_string(i));
  for (int i = 1; i <= 5; ++i) s += Entry("uv" + std::to_string(i) + ".png");
  if (version > 0x00010000) s += Entry("plugA");
  if (withTail && version > 0x00010001) s += U32(0) + U32(7);
  return s;
}

inline TBrellianSettings FromBytes(const std::string& bytes) {
  TBrellianSettings s;
  s.LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return s;
}

// Captures the log lines written while fn runs.
template <typename F>
std::string CaptureLog(F fn) {
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  fn();
  std::string out = testing::internal::GetCapturedStderr();
  Log_SetOutputMask(0);
  return out;
}

inline std::string SettingsFile(const std::string& name) {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/" + name;
}

}  // namespace settings_test
