// PAPPL drivers of the three models: driver data, card attributes and their constraints.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include "app/accessories.h"
#include "app/models.h"

// 'Driver_Callback()' - PAPPL's driver callback: fill the driver data and
// the card attributes of a new printer of driver_name.
bool Driver_Callback(pappl_system_t* system, const char* driver_name, const char* device_uri, const char* device_id,
                     pappl_pr_driver_data_t* data, ipp_t** driver_attrs, void* cbdata);

// 'Driver_AutoAdd()' - PAPPL's auto-add callback: the driver of a device
// ID that names a Brellian model, or nullptr.
const char* Driver_AutoAdd(const char* device_info, const char* device_uri, const char* device_id, void* data);

// 'Driver_Apply()' - Rebuild a printer's driver data and card attributes
// from its accessories: choices that need a missing accessory are no
// longer offered and the defaults that used them fall back.  Defaults set
// by the administrator that stay valid are kept.
bool Driver_Apply(pappl_printer_t* printer, const TAppModel& model, const TAccessories& acc);

// 'Driver_Offered()' - Whether a choice (or, for "" , the attribute) is
// offered with these accessories.
bool Driver_Offered(const TAppModel& model, const TAccessories& acc, const char* attrName, const char* keyword);
