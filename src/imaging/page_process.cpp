// Page_Process (not yet implemented).
// Copyright 2026 The rastertobrellian authors.
#include "imaging/page_process.h"

int32_t Page_Process(TPrintingTask*, const cups_page_header2_t*) { return 1; }
