// Shared set-up of the fuzz targets: start-up tables, a silent log, input
// split into text fields.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "log/log.h"
#include "status/tables.h"

// 'Fuzz_Init()' - Build the start-up tables once and route the log nowhere
// at the highest level, so that every line is still formatted and escaped.
inline void Fuzz_Init() {
  static bool done = false;
  if (done) return;
  done = true;
  Status_BuildTables();
  Log_SetFileName("rastertobrellian.log");
  Log_SetOutputMask(0);
  Log_SetLevel(LOG_ENTRYEXIT);
}

// 'Fuzz_Fields()' - Cut the input at zero bytes into exactly count texts
// (missing ones empty, the last one takes the rest with its zero bytes cut
// away), so that every target gets NUL-terminated strings of any length.
inline std::vector<std::string> Fuzz_Fields(const uint8_t* data, size_t size, size_t count) {
  std::vector<std::string> fields(count);
  size_t f = 0;
  for (size_t i = 0; i < size; ++i) {
    if (data[i] == 0) {
      if (f + 1 < count) ++f;
      continue;
    }
    fields[f].push_back(static_cast<char>(data[i]));
  }
  return fields;
}
