// The printer models the application drives: names, resolutions, sides and media.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>

#include "status/models.h"

// One model as the application offers it: an entry of the model table
// (driver name, PPD file, resolution, two-sidedness).
using TAppModel = TModelInfo;

// Media of every model: CR80 landscape and portrait, the whole panel.
constexpr int32_t APP_MEDIA_COUNT = 4;
extern const char* const g_appMedia[APP_MEDIA_COUNT];

// The margin of the sizes that are not borderless, in hundredths of a
// millimetre: the smallest there is, so that a document of the card's size
// is not shrunk to fit.
constexpr int32_t APP_MEDIA_MARGIN = 1;

// 'App_Models()' - The models of the model table; *count receives their number.
const TAppModel* App_Models(int32_t* count);

// 'App_FindModel()' - The model of a driver name, or nullptr.
const TAppModel* App_FindModel(const char* driverName);

// 'App_ModelFromDeviceId()' - The model a device ID names (Model_FromDeviceId:
// the maker and a model's display name), or nullptr.
const TAppModel* App_ModelFromDeviceId(const char* deviceId);

// 'App_Description()' - "Brellian BR-NNNN": the maker and the display name,
// the driver description shown in lists.  The text lives as long as the
// process.
const char* App_Description(const TAppModel& model);

// 'App_PpdPath()' - Full path of the model's PPD: the build's PPD directory,
// or $BRELLIAN_PPD_DIR when set.
std::string App_PpdPath(const TAppModel& model);

// 'App_FilterPath()' - The rastertobrellian the application runs:
// $BRELLIAN_FILTER when set, else the path fixed at build time.
std::string App_FilterPath();
