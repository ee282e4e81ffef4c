// Fuzz target: the device identification parser.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <string>

#include "fuzz/fuzz_common.h"
#include "status/device_id.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  std::string id(reinterpret_cast<const char*>(data), size);
  char *uri = nullptr, *makeModel = nullptr, *model = nullptr, *serial = nullptr;
  DeviceId_Parse(id.c_str(), &uri, &makeModel, &model, &serial);
  if (!uri || !makeModel || !model || !serial) abort();
  free(uri);
  free(makeModel);
  free(model);
  free(serial);
  // Only some of the results wanted.
  DeviceId_Parse(id.c_str(), nullptr, nullptr, &model, nullptr);
  free(model);
  free(DeviceId_GetValue("MDL:", id.c_str()));
  return 0;
}
