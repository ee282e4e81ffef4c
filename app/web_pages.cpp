// Registration of the per-printer web pages, and the start they share.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_pages.h"

#include "app/web_access.h"
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

// 'Web_OpenPrinterPage()' - Model, authorization, then what the header
// fields say, then the accessories.
bool Web_OpenPrinterPage(pappl_client_t* client, void* data, TPrinterPage* page) {
  page->printer = static_cast<pappl_printer_t*>(data);
  page->model = App_FindModel(papplPrinterGetDriverName(page->printer));
  if (!page->model || !papplClientHTMLAuthorize(client)) return false;
  page->mayChange = Web_MayChange(client);
  page->token = Web_SessionToken(client);
  page->acc = Acc_Load(page->printer, *page->model);
  return true;
}
