// The model table and its lookups.
// Copyright 2026 The rastertobrellian authors.
#include "status/models.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>

#include "status/device_id.h"

namespace {

// Adding a model is one line here plus its section of ppd/brellian.drv.
// Display names become part of settings file names: no blanks, no slashes.
const TModelInfo kModels[] = {
    {1030, "BR-1030", 1036, 664, 300, false, "br1030.ppd", "brellian_1030"},
    {1035, "BR-1035", 1036, 664, 300, true, "br1035.ppd", "brellian_1035"},
    {1060, "BR-1060", 2072, 1328, 600, true, "br1060.ppd", "brellian_1060"},
#ifdef BRELLIAN_EXTRA_MODEL_FILE
// The model-adding test builds this file once more with one line more.
#include BRELLIAN_EXTRA_MODEL_FILE
#endif
};

}  // namespace

const TModelInfo* Model_All(int32_t* count) {
  *count = static_cast<int32_t>(sizeof(kModels) / sizeof(kModels[0]));
  return kModels;
}

const TModelInfo* Model_Find(uint32_t id) {
  for (const TModelInfo& m : kModels)
    if (m.id == id) return &m;
  return nullptr;
}

const TModelInfo* Model_FindName(const char* name) {
  if (!name) return nullptr;
  for (const TModelInfo& m : kModels)
    if (strcasecmp(m.name, name) == 0) return &m;
  return nullptr;
}

const TModelInfo& Model_Default() {
  const TModelInfo* model = Model_FindName(MODEL_DEFAULT_NAME);
  return model ? *model : kModels[0];
}

const TModelInfo* Model_FromDeviceId(const char* deviceId) {
  if (!deviceId || !*deviceId) return nullptr;
  char* mfg = DeviceId_GetValue("MFG:", deviceId);
  char* mdl = DeviceId_GetValue("MDL:", deviceId);
  const TModelInfo* found = nullptr;
  if (mfg && mdl && strcasecmp(mfg, MODEL_MAKER) == 0) found = Model_FindName(mdl);
  free(mfg);
  free(mdl);
  return found;
}

std::string Model_DeviceId(const TModelInfo& model) {
  return std::string("MFG:") + MODEL_MAKER + ";MDL:" + model.name + ";";
}
