// Job_ReadOptions: the PPD, the job's options and the settings file.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

class TPrintingTask;

// 'Job_ReadOptions()' - Fill the task's job option record from the PPD named
// by $PPD, the options argument, the copies argument, $DEVICE_URI, $PRINTER
// and the printer's settings file.  Never fails; returns 0.
int32_t Job_ReadOptions(TPrintingTask* task, const char* options, const char* copies);
