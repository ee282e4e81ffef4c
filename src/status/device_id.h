// IEEE 1284 device identification strings and the printer's device URI.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// 'DeviceId_GetValue()' - The value of key (which includes its colon, as in
// "MFG:") in deviceId, up to the next ";"; null when absent.  The caller
// frees the result with free().
char* DeviceId_GetValue(const char* key, const char* deviceId);

// 'DeviceId_Parse()' - URI, make and model, model and serial number of a
// device ID.  Every out pointer may be null; results are malloc'd strings
// owned by the caller.  Returns 0.
int32_t DeviceId_Parse(const char* deviceId, char** uri, char** makeModel, char** model,
                       char** serial);
