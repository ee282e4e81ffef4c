// Fuzz target: magnetic track data, by format name and by format code.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "fuzz/fuzz_common.h"
#include "options/mag.h"

namespace {

// 'Fuzz_CheckTrack()' - A record is either accepted data (a format code with
// at most 127 codes, unused bytes 0) or a status with every other byte 0.
void Fuzz_CheckTrack(const TMagTrack& t) {
  if (t.length > 127) abort();
  for (int i = t.length; i < 128; ++i)
    if (t.codes[i] != 0) abort();
  if (t.format >= 1 && t.format <= 3 && t.length != 0) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  if (size < 2) return 0;
  int32_t track = data[0] % 5;   // 0 and 4 are tracks that do not exist
  int32_t code = data[1];
  std::vector<std::string> f = Fuzz_Fields(data + 2, size - 2, 2);
  TMagTrack record;
  Mag_EncodeTrack(track, f[0].c_str(), f[1].c_str(), &record);
  Fuzz_CheckTrack(record);
  Mag_EncodeByCode(code, f[1].c_str(), &record);
  Fuzz_CheckTrack(record);
  return 0;
}
