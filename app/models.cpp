// The printer models the application drives and where their files are.
// Copyright 2026 The rastertobrellian authors.
#include "app/models.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <vector>


// Self-describing PWG names: a card is 85.6 x 54 mm, the panel 1036 x 664
// dots at 300 dpi (87.71 x 56.22 mm).
const char* const g_appMedia[APP_MEDIA_COUNT] = {
    "om_cr80-landscape_85.6x54mm",
    "om_cr80_54x85.6mm",
    "om_panel-landscape_87.71x56.22mm",
    "om_panel_56.22x87.71mm",
};

// 'App_Models()' - The model table.
const TAppModel* App_Models(int32_t* count) { return Model_All(count); }

// 'App_FindModel()' - Look a driver name up.
const TAppModel* App_FindModel(const char* driverName) {
  if (!driverName) return nullptr;
  int32_t count = 0;
  const TAppModel* models = Model_All(&count);
  for (int32_t i = 0; i < count; ++i)
    if (strcmp(models[i].driverName, driverName) == 0) return &models[i];
  return nullptr;
}

// 'App_ModelFromDeviceId()' - The model table's device-ID match.
const TAppModel* App_ModelFromDeviceId(const char* deviceId) { return Model_FromDeviceId(deviceId); }

// 'App_Description()' - Made once for every model, in table order.
const char* App_Description(const TAppModel& model) {
  static const std::vector<std::string> texts = [] {
    int32_t count = 0;
    const TAppModel* models = Model_All(&count);
    std::vector<std::string> out;
    for (int32_t i = 0; i < count; ++i) out.push_back(std::string(MODEL_MAKER) + " " + models[i].name);
    return out;
  }();
  int32_t count = 0;
  const TAppModel* models = Model_All(&count);
  return texts[static_cast<size_t>(&model - models)].c_str();
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
