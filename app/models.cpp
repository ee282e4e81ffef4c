// The printer models the application drives and where their files are.
// Copyright 2026 The rastertobrellian authors.
#include "app/models.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>

#include "status/device_id.h"

namespace {

const TAppModel kModels[] = {
    {1030, "brellian_1030", "Brellian BR-1030", "br1030.ppd", 300, false},
    {1035, "brellian_1035", "Brellian BR-1035", "br1035.ppd", 300, true},
    {1060, "brellian_1060", "Brellian BR-1060", "br1060.ppd", 600, true},
};

}  // namespace

// Self-describing PWG names: a card is 85.6 x 54 mm, the panel 1036 x 664
// dots at 300 dpi (87.71 x 56.22 mm).
const char* const g_appMedia[APP_MEDIA_COUNT] = {
    "om_cr80-landscape_85.6x54mm",
    "om_cr80_54x85.6mm",
    "om_panel-landscape_87.71x56.22mm",
    "om_panel_56.22x87.71mm",
};

// 'App_Models()' - The model table.
const TAppModel* App_Models(int32_t* count) {
  *count = static_cast<int32_t>(sizeof(kModels) / sizeof(kModels[0]));
  return kModels;
}

// 'App_FindModel()' - Look a driver name up.
const TAppModel* App_FindModel(const char* driverName) {
  if (!driverName) return nullptr;
  for (const TAppModel& m : kModels)
    if (strcmp(m.driverName, driverName) == 0) return &m;
  return nullptr;
}

// 'App_ModelFromDeviceId()' - Match MFG/MDL (or DESC) of a device ID.
const TAppModel* App_ModelFromDeviceId(const char* deviceId) {
  if (!deviceId || !*deviceId) return nullptr;
  char* mfg = DeviceId_GetValue("MFG:", deviceId);
  char* mdl = DeviceId_GetValue("MDL:", deviceId);
  if (!mfg) mfg = DeviceId_GetValue("MANUFACTURER:", deviceId);
  if (!mdl) mdl = DeviceId_GetValue("MODEL:", deviceId);
  const TAppModel* found = nullptr;
  if (mfg && mdl && strcasestr(mfg, "brellian")) {
    for (const TAppModel& m : kModels)
      if (strstr(mdl, std::to_string(m.id).c_str())) found = &m;
  }
  free(mfg);
  free(mdl);
  return found;
}

// 'App_PpdPath()' - Where the model's PPD is.
std::string App_PpdPath(const TAppModel& model) {
  const char* dir = getenv("BRELLIAN_PPD_DIR");
  return std::string(dir && *dir ? dir : BRELLIAN_APP_PPD_DIR) + "/" + model.ppdName;
}

// 'App_FilterPath()' - Where the filter is.
std::string App_FilterPath() {
  const char* path = getenv("BRELLIAN_FILTER");
  return path && *path ? path : BRELLIAN_APP_FILTER;
}
