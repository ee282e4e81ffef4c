// Whether a printer may be sent a card now, from its state and state reasons.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>
#include <string>

#include "tools/batch/batch_ipp.h"

namespace {

// Reasons that stop a card printer although IPP marks them as no error:
// out of cards or ribbon, a jam, an open cover, no connection.
const char* const kStopReasons[] = {"media-empty",        "media-needed",       "media-jam",
                                    "marker-supply-empty", "marker-supply-missing", "door-open",
                                    "cover-open",         "input-tray-missing", "offline",
                                    "shutdown",           "stopped-partly",     "interlock-open",
                                    "output-area-full",   "spool-area-full",    "connecting-to-device-error"};

// 'Fault_Stops()' - True when reason stops printing: one of the list
// (with or without "-error"), or any reason ending in "-error".
bool Fault_Stops(const std::string& reason) {
  const std::string error = "-error";
  if (reason.size() > error.size() && reason.compare(reason.size() - error.size(), error.size(), error) == 0)
    return true;
  for (const char* r : kStopReasons)
    if (reason == r) return true;
  return false;
}

}  // namespace

// 'Printer_Fault()' - The sentence that says why no card may be sent now.
std::string Printer_Fault(const TPrinterStatus& status) {
  if (!status.reached) return status.fault;
  std::string why;
  if (status.state == IPP_PSTATE_STOPPED)
    why = "the printer is stopped";
  else if (!status.accepting)
    why = "the printer does not accept jobs";
  std::string reasons;
  for (const std::string& r : status.reasons)
    if (Fault_Stops(r)) reasons += (reasons.empty() ? "" : ", ") + r;
  if (why.empty() && reasons.empty()) return "";
  if (why.empty()) why = "the printer reports a fault";
  if (!reasons.empty()) why += ", " + reasons;
  if (!status.message.empty()) why += " (its last message: \"" + status.message + "\")";
  return why;
}
