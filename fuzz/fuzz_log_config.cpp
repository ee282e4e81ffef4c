// Fuzz target: the log configuration reader.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "fuzz/fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  const char* text = reinterpret_cast<const char*>(data);
  int32_t level = Log_ReadLevelFromText(text, size, "rastertobrellian", -7);
  if (level != -7 && Log_LevelFromWord("none") != 0) abort();
  static const int32_t kLevels[] = {-7, 0, 2, 4, 8, 12, 16, 20, 24};
  bool known = false;
  for (int32_t l : kLevels) known = known || l == level;
  if (!known) abort();
  return 0;
}
