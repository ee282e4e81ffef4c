// Fuzz target: area strings at 300 and 600 dots per inch.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/fuzz_common.h"
#include "options/area.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  std::string text(reinterpret_cast<const char*>(data), size);
  const char* s = text.c_str();   // stops at the first zero byte, as a C string does
  char tokens[4][AREA_TOKEN_MAX + 1];
  int32_t count = Area_SplitValues(s, tokens);
  if (count < 0 || count > 4) abort();
  for (auto& token : tokens) {
    if (strnlen(token, sizeof token) > AREA_TOKEN_MAX) abort();
    Area_ValueToDots(token, 300);
    Area_ValueToDots(token, 600);
  }
  for (uint32_t dpi : {300u, 600u}) {
    TArea area;
    memset(&area, 0xA5, sizeof area);
    Area_Parse(&area, s, dpi);
    bool empty = Area_IsEmpty(&area);
    if (empty && Area_Contains(0, 0, &area)) abort();
    Area_Contains(static_cast<int32_t>(area.left), static_cast<int32_t>(area.top), &area);
  }
  return 0;
}
