// The application's own web pages: per-printer card presets and device settings.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

#include "app/accessories.h"

// 'Web_AddPrinterPages()' - Register a printer's "Card presets" and
// "Device settings" pages and their links.  Their callback data is the
// printer, so PAPPL removes them itself when the printer is deleted.
void Web_AddPrinterPages(pappl_printer_t* printer);

// What a printer's page knows before it reads the request's body.
struct TPrinterPage {
  pappl_printer_t* printer = nullptr;
  const TAppModel* model = nullptr;
  bool mayChange = false;  // Web_MayChange()
  std::string token;       // Web_SessionToken()
  TAccessories acc;        // the saved accessories
};

// 'Web_OpenPrinterPage()' - The start of a printer's page (data is the
// printer): false when the printer is not one of our models or PAPPL's
// authorization refuses the client (PAPPL has answered it then).  Call it
// before the request's body is read: whether the client may change things
// and its form token come from header fields, which are gone once PAPPL
// has read the form.
bool Web_OpenPrinterPage(pappl_client_t* client, void* data, TPrinterPage* page);


// The page handlers (resource callbacks, data is the printer).
bool Web_DevicePage(pappl_client_t* client, void* data);
bool Web_PresetsPage(pappl_client_t* client, void* data);
bool Web_UvPreview(pappl_client_t* client, void* data);
