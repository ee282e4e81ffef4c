// The model table: every printer model the filter, its tools, the backend and the application know.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>

// One printer model.  Every other description of a model (panel geometry
// and resolution tables, display names, PPD files, drivers of the printer
// application, device-ID matching, help texts) is derived from this.
struct TModelInfo {
  uint32_t id;              // model number: the PPD's *cupsModelNumber
  const char* name;         // display name: device-ID MDL field, settings file names
  uint32_t panelWidth;      // panel size in dots
  uint32_t panelHeight;
  uint32_t dpi;             // resolution in dots per inch
  bool twoSided;            // a flip/turn unit can be installed (duplex, back table)
  const char* ppdName;      // file name of the model's PPD
  const char* driverName;   // driver name of the printer application
};

// The maker's name: the device-ID MFG field of every model.
constexpr const char* MODEL_MAKER = "Brellian";

// The model a queue without a model number prints as, by display name.
constexpr const char* MODEL_DEFAULT_NAME = "BR-1060";

// 'Model_All()' - The table, in table order; *count receives its length.
const TModelInfo* Model_All(int32_t* count);

// 'Model_Find()' - The model of a model number, or nullptr.
const TModelInfo* Model_Find(uint32_t id);

// 'Model_FindName()' - The model of a display name (any case), or nullptr.
const TModelInfo* Model_FindName(const char* name);

// 'Model_Default()' - The model named MODEL_DEFAULT_NAME (never null: a
// table without it is refused by the model tests).
const TModelInfo& Model_Default();

// 'Model_FromDeviceId()' - The model an IEEE 1284 device ID names: its MFG:
// field is MODEL_MAKER and its MDL: field a display name, both compared
// without regard to case (the fields DeviceId_Parse makes the device URI
// of); nullptr otherwise.  The one device-ID match of the filter's tools,
// the backend and the printer application.
const TModelInfo* Model_FromDeviceId(const char* deviceId);

// 'Model_DeviceId()' - The device ID a printer of this model reports,
// "MFG:Brellian;MDL:BR-1060;", as the PPD files and drivers state it.
std::string Model_DeviceId(const TModelInfo& model);
