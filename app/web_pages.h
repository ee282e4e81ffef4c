// The application's own web pages: per-printer card presets and device settings.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'Web_AddPrinterPages()' - Register a printer's "Card presets" and
// "Device settings" pages and their links.  Their callback data is the
// printer, so PAPPL removes them itself when the printer is deleted.
void Web_AddPrinterPages(pappl_printer_t* printer);


// The page handlers (resource callbacks, data is the printer).
bool Web_DevicePage(pappl_client_t* client, void* data);
bool Web_PresetsPage(pappl_client_t* client, void* data);
bool Web_UvPreview(pappl_client_t* client, void* data);
