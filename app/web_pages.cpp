// Registration of the per-printer web pages.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_pages.h"

#include "app/web_pappl_guard.h"

// 'Web_AddPrinterPages()' - Three resources and two links per printer, and
// the guard of PAPPL's printer home page.
void Web_AddPrinterPages(pappl_printer_t* printer) {
  pappl_system_t* system = papplPrinterGetSystem(printer);
  char path[256];
  papplPrinterGetPath(printer, "presets", path, sizeof(path));
  papplSystemAddResourceCallback(system, path, "text/html", Web_PresetsPage, printer);
  papplPrinterAddLink(printer, "Card presets", path, PAPPL_LOPTIONS_CONFIGURATION | PAPPL_LOPTIONS_NAVIGATION);
  papplPrinterGetPath(printer, "uv-preview", path, sizeof(path));
  papplSystemAddResourceCallback(system, path, "image/png", Web_UvPreview, printer);
  papplPrinterGetPath(printer, "device", path, sizeof(path));
  papplSystemAddResourceCallback(system, path, "text/html", Web_DevicePage, printer);
  papplPrinterAddLink(printer, "Device settings", path, PAPPL_LOPTIONS_CONFIGURATION | PAPPL_LOPTIONS_NAVIGATION);
  Web_GuardPrinterHome(printer);
}
