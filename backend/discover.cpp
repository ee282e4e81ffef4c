// usbbr device discovery: the USB backend's printers that are Brellian card
// printers, listed with their usbbr URI.
// Copyright 2026 The rastertobrellian authors.
#include <cups/backend.h>

#include <cstdio>
#include <string>
#include <vector>

#include "backend/usbbr.h"
#include "backend/usbbr_device.h"
#include "backend/usbbr_lower.h"

// 'Usbbr_Discover()' - One line per Brellian printer the USB backend lists:
// class, usbbr URI, make and model, info, device ID, location.
int Usbbr_Discover() {
  std::vector<TBackendDevice> lower;
  int status = 0;
  std::string error;
  int32_t listed = Usbbr_ListLower(Usbbr_LowerPath(), false, &g_usbbrCancel, &lower, &status, &error);
  if (listed == USBBR_LIST_CANCELLED) return CUPS_BACKEND_OK;  // stopped by the spooler: list nothing
  if (listed != USBBR_LIST_OK) {
    fprintf(stderr, "ERROR: %s\n", error.c_str());
    return CUPS_BACKEND_FAILED;
  }
  for (const TBackendDevice& l : lower) {
    TBackendDevice d;
    if (!Usbbr_FromLower(l, &d)) continue;
    cupsBackendReport(d.deviceClass.c_str(), d.uri.c_str(), d.makeModel.c_str(), d.info.c_str(),
                      d.deviceId.c_str(), d.location.c_str());
  }
  fflush(stdout);
  return CUPS_BACKEND_OK;
}
