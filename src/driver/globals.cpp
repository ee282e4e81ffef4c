// Process-wide globals of the filter driver.
// Copyright 2026 The rastertobrellian authors.
#include "driver/globals.h"

int32_t g_exitStatus = 0;
volatile sig_atomic_t g_cancelJob = 0;
TPrintingTask* g_printingTask = nullptr;
