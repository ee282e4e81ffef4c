// Guards in front of PAPPL 1.3.1 pages that change state without asking who is changing it.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_pappl_guard.h"

#include "app/web_access.h"

// PAPPL 1.3.1's printer home page carries forms (hold new jobs, pause the
// printer, set as default, print a test page) and carries them out on a
// POST without any access check.  The page's own handler is exported by
// the library (for its internal use); the guard below is registered in its
// place and calls it only after the application's access check.
extern "C" void _papplPrinterWebHome(pappl_client_t* client, pappl_printer_t* printer);

namespace {

// 'Web_PrinterHomeGuard()' - A POST needs an administrator, the rest is
// PAPPL's own page.
bool Web_PrinterHomeGuard(pappl_client_t* client, void* data) {
  if (papplClientGetMethod(client) == HTTP_STATE_POST && !Web_MayChange(client)) {
    http_status_t status = papplClientIsAuthorized(client);
    papplClientRespond(client, status == HTTP_STATUS_CONTINUE ? HTTP_STATUS_FORBIDDEN : status, nullptr, nullptr, 0, 0);
    return true;
  }
  _papplPrinterWebHome(client, static_cast<pappl_printer_t*>(data));
  return true;
}

}  // namespace

// 'Web_GuardPrinterHome()' - Take the printer's home page path first:
// PAPPL registers its own pages after the printer creation callback, and
// its registration of a path that is already taken is ignored.
void Web_GuardPrinterHome(pappl_printer_t* printer) {
  pappl_system_t* system = papplPrinterGetSystem(printer);
  char path[256];
  papplPrinterGetPath(printer, "", path, sizeof(path));
  papplSystemAddResourceCallback(system, path, "text/html", Web_PrinterHomeGuard, printer);
}
