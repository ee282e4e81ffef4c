// Fuzz target: the colour lookup table file reader.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include "fuzz/fuzz_common.h"
#include "options/lut_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  uint8_t table[3][LUT_ENTRIES];
  memset(table, 0x5A, sizeof table);
  TLutError error{0, nullptr};
  bool ok = Lut_Parse(reinterpret_cast<const char*>(data), size, table, &error);
  if (!ok) {
    // A refused text leaves the table untouched and says why.
    for (auto& channel : table)
      for (uint8_t v : channel)
        if (v != 0x5A) abort();
    if (!error.reason || error.line < 0) abort();
  }
  return 0;
}
