// Job_ReadOptions (not yet implemented).
// Copyright 2026 The rastertobrellian authors.
#include "options/read_options.h"

int32_t Job_ReadOptions(TPrintingTask*, const char*, const char*) { return 0; }
