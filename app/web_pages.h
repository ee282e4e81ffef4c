// The application's own web pages: per-printer card presets and device settings.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'Web_AddSystemPages()' - Pages of the whole system (none beyond PAPPL's).
void Web_AddSystemPages(pappl_system_t* system);

// 'Web_AddPrinterPages()' - Register a printer's "Card presets" and
// "Device settings" pages and their links.
void Web_AddPrinterPages(pappl_printer_t* printer);
