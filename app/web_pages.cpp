// Registration of the per-printer web pages.
// Copyright 2026 The rastertobrellian authors.
#include "web_pages.h"

void Web_AddSystemPages(pappl_system_t*) {}

void Web_AddPrinterPages(pappl_printer_t*) {}
