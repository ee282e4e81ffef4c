// Why a printer's device cannot be opened, kept where the printer's state message can show it.
// Copyright 2026 The rastertobrellian authors.
//
// While a printer's device cannot be opened, PAPPL 1.3.1 keeps the job
// "processing", retries every 5 seconds and answers every client with the
// fixed state message "Stopped.": the reason is only in its log, and it
// has no call that sets printer-state-message.  The application's device
// callbacks (app/socket_device.cpp) record why an open failed; two PAPPL
// functions that the library calls through its procedure linkage table
// (as app/stream_queue.cpp does for another) are replaced here, each
// calling PAPPL's own first:
// - _papplPrinterCopyStateNoLock(), which adds printer-state-message to
//   Get-Printer-Attributes, Get-Printers and the event notifications: the
//   message becomes the recorded reason, and printer-state-reasons gains
//   "offline-report" beside PAPPL's "paused";
// - _papplPrinterWebIteratorCallback(), the status block of the printer's
//   web page (and of each printer on the home page): the reason is shown
//   under it.
// Both run with PAPPL's locks held, so they only read the printer's state
// and device URI, which take no lock, and this file's own mutex.
#include "app/device_state.h"

#include <dlfcn.h>
#include <time.h>

#include <map>
#include <mutex>

namespace {

// The last open of one device URI.
struct TDeviceOpen {
  std::string message;  // why it failed; "" after a success
  time_t failedAt = 0;
  bool opening = false;  // an attempt is under way
};

std::mutex g_devStateLock;
std::map<std::string, TDeviceOpen> g_devState;

}  // namespace

// 'DevState_Opening()' - Mark the attempt.
void DevState_Opening(const char* uri) {
  std::lock_guard<std::mutex> lock(g_devStateLock);
  g_devState[uri ? uri : ""].opening = true;
}

// 'DevState_Failed()' - Keep the reason and its time.
void DevState_Failed(const char* uri, const std::string& message) {
  std::lock_guard<std::mutex> lock(g_devStateLock);
  TDeviceOpen& open = g_devState[uri ? uri : ""];
  open.message = message;
  open.failedAt = time(nullptr);
  open.opening = false;
}

// 'DevState_Opened()' - Forget the device's failure.
void DevState_Opened(const char* uri) {
  std::lock_guard<std::mutex> lock(g_devStateLock);
  g_devState.erase(uri ? uri : "");
}

// 'DevState_Message()' - The reason while it counts.
std::string DevState_Message(const char* uri) {
  std::lock_guard<std::mutex> lock(g_devStateLock);
  auto it = g_devState.find(uri ? uri : "");
  if (it == g_devState.end() || it->second.message.empty()) return "";
  if (!it->second.opening && time(nullptr) - it->second.failedAt > DEVSTATE_FRESH_SECONDS) return "";
  return it->second.message;
}

// 'DevState_PrinterMessage()' - Only for a stopped printer: PAPPL stops
// it when the open fails and sets it processing when an open succeeds.
std::string DevState_PrinterMessage(pappl_printer_t* printer) {
  if (!printer || papplPrinterGetState(printer) != IPP_PSTATE_STOPPED) return "";
  return DevState_Message(papplPrinterGetDeviceURI(printer));
}

#ifdef BRELLIAN_PAPPL_1_3

using TCopyState = void (*)(pappl_printer_t*, ipp_tag_t, ipp_t*, pappl_client_t*, cups_array_t*);
using TWebStatus = void (*)(pappl_printer_t*, pappl_client_t*);

// '_papplPrinterCopyStateNoLock()' - PAPPL's printer-state attributes,
// with the device's failure as printer-state-message (see the head of
// this file).  The attribute PAPPL just added is the last of its name;
// it holds PAPPL's constant text, so it is replaced by a new attribute at
// the end of the same (last) group rather than set in place.
extern "C" void _papplPrinterCopyStateNoLock(pappl_printer_t* printer, ipp_tag_t group, ipp_t* ipp,
                                             pappl_client_t* client, cups_array_t* ra) {
  static TCopyState pappl = reinterpret_cast<TCopyState>(dlsym(RTLD_NEXT, "_papplPrinterCopyStateNoLock"));
  pappl(printer, group, ipp, client, ra);
  std::string message = DevState_PrinterMessage(printer);
  if (message.empty()) return;
  ipp_attribute_t* last = nullptr;
  for (ipp_attribute_t* a = ippFindAttribute(ipp, "printer-state-message", IPP_TAG_TEXT); a;
       a = ippFindNextAttribute(ipp, "printer-state-message", IPP_TAG_TEXT))
    last = a;
  if (last) {
    ippDeleteAttribute(ipp, last);
    ippAddString(ipp, group, IPP_TAG_TEXT, "printer-state-message", nullptr, message.c_str());
  }
  ipp_attribute_t* reasons = nullptr;
  for (ipp_attribute_t* a = ippFindAttribute(ipp, "printer-state-reasons", IPP_TAG_KEYWORD); a;
       a = ippFindNextAttribute(ipp, "printer-state-reasons", IPP_TAG_KEYWORD))
    reasons = a;
  if (reasons && !ippContainsString(reasons, "offline-report"))  // a string constant, as PAPPL's values are
    ippSetString(ipp, &reasons, ippGetCount(reasons), "offline-report");
}

// '_papplPrinterWebIteratorCallback()' - PAPPL's status block of a
// printer's web page, then the device's failure.
extern "C" void _papplPrinterWebIteratorCallback(pappl_printer_t* printer, pappl_client_t* client) {
  static TWebStatus pappl = reinterpret_cast<TWebStatus>(dlsym(RTLD_NEXT, "_papplPrinterWebIteratorCallback"));
  pappl(printer, client);
  std::string message = DevState_PrinterMessage(printer);
  if (message.empty()) return;
  papplClientHTMLPuts(client, "          <p class=\"brellian-device-state\"><strong>");
  papplClientHTMLEscape(client, message.c_str(), 0);
  papplClientHTMLPuts(client, "</strong></p>\n");
}

// 'DevState_Active()' - Built against PAPPL 1.3.
bool DevState_Active() { return true; }

#else

// 'DevState_Active()' - Another PAPPL: its own state message stays.
bool DevState_Active() { return false; }

#endif
