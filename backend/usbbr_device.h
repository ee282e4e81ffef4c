// The usbbr backend's view of USB printers: which listed printers are
// Brellian card printers, their usbbr URI, and which one a queue's URI means.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

#include "backend/backend_line.h"

#include "status/models.h"

// The manufacturer a printer's device ID must name ("MFG:").
constexpr const char* USBBR_MAKER = MODEL_MAKER;

// 'Usbbr_FromLower()' - The usbbr device of a printer that the USB backend
// listed: its device ID must name the maker and a model of the model table
// by display name.  The URI, make and model are those of
// DeviceId_Parse; a device ID without "SERN:" takes the serial of the USB
// URI.  False for any other printer.
bool Usbbr_FromLower(const TBackendDevice& lower, TBackendDevice* device);

// 'Usbbr_CheckUri()' - True when uri is "usbbr://MAKER/MODEL" with an
// optional "?serial=SERIAL"; else false with the reason in *error.
bool Usbbr_CheckUri(const std::string& uri, std::string* error);

// 'Usbbr_Matches()' - True when the usbbr device is the printer that uri
// names: the same URI, or, for a URI without "?serial=", the same
// manufacturer and model.
bool Usbbr_Matches(const std::string& uri, const TBackendDevice& device);
