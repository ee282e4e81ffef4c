// Fuzz target: the settings file reader on a memory image.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include "fuzz/fuzz_common.h"
#include "options/settings.h"

namespace {

// 'Fuzz_CheckText()' - Every text read stays within the entry cap and holds
// no zero byte.
void Fuzz_CheckText(const std::string& s) {
  if (s.size() >= SETTINGS_STRING_MAX || memchr(s.data(), 0, s.size())) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  TBrellianSettings settings;
  settings.modelName = "model";
  settings.serialNumber = "serial";
  settings.LoadFromBytes(data, size);
  if (settings.modelName != "model" || settings.serialNumber != "serial") abort();
  for (auto& preset : settings.resinAreas)
    for (auto& group : preset)
      for (auto& area : group) Fuzz_CheckText(area);
  for (auto& preset : settings.poAreas)
    for (auto& group : preset)
      for (auto& area : group) Fuzz_CheckText(area);
  for (auto& name : settings.lutNames) Fuzz_CheckText(name);
  for (auto& name : settings.uvNames) Fuzz_CheckText(name);
  Fuzz_CheckText(settings.plugin);
  // What was read survives a round trip through the file image.
  std::string image = settings.SaveToBytes();
  TBrellianSettings again;
  again.LoadFromBytes(reinterpret_cast<const uint8_t*>(image.data()), image.size());
  if (again.SaveToBytes() != image) abort();
  return 0;
}
