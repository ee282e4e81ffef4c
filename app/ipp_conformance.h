// Printer attributes and operations that IPP clients expect and PAPPL 1.3.1 lacks or gets wrong.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include "app/accessories.h"

// 'Conf_AddPrinterAttrs()' - Add to a printer's driver attributes:
// - printer-strings-uri and printer-strings-languages-supported, since the
//   labels file is served as a plain resource (App_AddStrings());
// - brellian-printer-id, the printer's real id: PAPPL reports printer-id 0
//   for a printer created since the server started, until a restart;
// - the IPP Everywhere attributes PAPPL does not give: preferred-attributes-
//   supported, overrides-supported, print-rendering-intent and, for a
//   one-sided printer (data.duplex none), pwg-raster-document-sheet-back.
void Conf_AddPrinterAttrs(pappl_printer_t* printer, const pappl_pr_driver_data_t& data, ipp_t* attrs);

// 'Conf_SetSupplies()' - The printer's supplies as far as known without a
// status query: the loaded ribbon and the retransfer film, level unknown.
void Conf_SetSupplies(pappl_printer_t* printer, const TAccessories& acc);

// 'Conf_Identify()' - Identify-Printer: the printer has no display, light
// or sound the application can reach, so the request and its message are
// written to the log (and so to the web interface's log view).
void Conf_Identify(pappl_printer_t* printer, pappl_identify_actions_t actions, const char* message);
