// Job options of the "submit" sub-command and the option list of "options".
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/cups.h>

#include <cstdio>

// 'Cli_DocumentFormat()' - The MIME type of a file from its first bytes
// (PWG or Apple raster, JPEG, PNG, PDF, PostScript, a job stream), else
// from its extension; "application/octet-stream" when neither tells.
const char* Cli_DocumentFormat(const char* file);

// 'Cli_AddJobOptions()' - Add -o options to a job request: card options
// with the syntax of their attribute (keyword, boolean, text), the others
// as CUPS encodes them.
void Cli_AddJobOptions(ipp_t* request, int numOptions, cups_option_t* options);

// 'Cli_PrintOptions()' - Write the options a printer's attributes offer,
// the standard ones and then the card options, one "-o NAME=VALUE" per
// line with "(default)" on the default.
void Cli_PrintOptions(ipp_t* printerAttrs, FILE* out);
