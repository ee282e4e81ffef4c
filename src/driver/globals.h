// Process-wide globals of the filter driver.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <csignal>
#include <cstdint>

#include "brellian_version.h"

class TPrintingTask;

// Status the process ends with: 0 success, 1 failure.
extern int32_t g_exitStatus;
// Set to 1 by the job-time SIGTERM handler; polled by the page loop.
extern volatile sig_atomic_t g_cancelJob;
// The one task, deleted by the exit handler.
extern TPrintingTask* g_printingTask;

// The filter's identity.
#define BRELLIAN_PROGRAM_NAME "rastertobrellian"
#define BRELLIAN_LOG_FILE_NAME "rastertobrellian.log"
