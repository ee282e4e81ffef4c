// Diagnostic dumps of the environment and of raster page headers.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include <cups/raster.h>

class TPrintingTask;

// 'Job_DumpEnvironment()' - Log the command line and the spooler's
// environment variables.
void Job_DumpEnvironment(TPrintingTask* task);

// 'Page_DumpHeader()' - Log every field of a page header.  Returns 0.
int32_t Page_DumpHeader(TPrintingTask* task, const cups_page_header2_t* header);
