// Printer attributes and operations that IPP clients expect and PAPPL 1.3.1 lacks or gets wrong.
// Copyright 2026 The rastertobrellian authors.
#include "app/ipp_conformance.h"

#include <cstdio>

#include "app/app_system.h"

// 'Conf_AddPrinterAttrs()' - The added attributes.
void Conf_AddPrinterAttrs(pappl_printer_t* printer, const pappl_pr_driver_data_t& data, ipp_t* attrs) {
  pappl_system_t* system = papplPrinterGetSystem(printer);
  char host[256], uri[1024];
  if (papplSystemGetHostName(system, host, sizeof(host))) {
    httpAssembleURI(HTTP_URI_CODING_ALL, uri, sizeof(uri), "http", nullptr, host, papplSystemGetHostPort(system),
                    APP_STRINGS_PATH);
    ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_URI, "printer-strings-uri", nullptr, uri);
    ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_LANGUAGE, "printer-strings-languages-supported", nullptr, "en");
  }
  ippAddInteger(attrs, IPP_TAG_PRINTER, IPP_TAG_INTEGER, "brellian-printer-id", papplPrinterGetID(printer));
  ippAddBoolean(attrs, IPP_TAG_PRINTER, "preferred-attributes-supported", 0);
  // A job's "overrides" are not applied: every page of a card takes the
  // job's options.  The values are those a conforming printer must list.
  static const char* const overrides[] = {"document-number", "pages"};
  ippAddStrings(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "overrides-supported", 2, nullptr, overrides);
  ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "print-rendering-intent-default", nullptr, "auto");
  ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "print-rendering-intent-supported", nullptr, "auto");
  if (data.duplex == PAPPL_DUPLEX_NONE)  // PAPPL names it for two-sided printers only
    ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "pwg-raster-document-sheet-back", nullptr, "normal");
}

// 'Conf_SetSupplies()' - Ribbon and film, level unknown.
void Conf_SetSupplies(pappl_printer_t* printer, const TAccessories& acc) {
  pappl_supply_t supplies[2] = {};
  supplies[0].color = acc.ribbonType == "Black" ? PAPPL_SUPPLY_COLOR_BLACK : PAPPL_SUPPLY_COLOR_MULTIPLE;
  snprintf(supplies[0].description, sizeof(supplies[0].description), "%s ribbon", acc.ribbonType.c_str());
  supplies[0].is_consumed = true;
  supplies[0].level = -2;  // unknown: the printer's levels are not read
  supplies[0].type = PAPPL_SUPPLY_TYPE_RIBBON_WAX;
  supplies[1].color = PAPPL_SUPPLY_COLOR_NO_COLOR;
  snprintf(supplies[1].description, sizeof(supplies[1].description), "Retransfer film");
  supplies[1].is_consumed = true;
  supplies[1].level = -2;
  supplies[1].type = PAPPL_SUPPLY_TYPE_TRANSFER_UNIT;
  papplPrinterSetSupplies(printer, 2, supplies);
}

// 'Conf_Identify()' - Log the request.
void Conf_Identify(pappl_printer_t* printer, pappl_identify_actions_t, const char* message) {
  papplLogPrinter(printer, PAPPL_LOGLEVEL_INFO, "Identify-Printer: %s", message && *message ? message : "(no message)");
}
