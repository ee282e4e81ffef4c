// TPrintingTask::run (not yet implemented).
// Copyright 2026 The rastertobrellian authors.
#include "driver/globals.h"
#include "driver/printing_task.h"
#include "log/log.h"

void TPrintingTask::run() {
  Log_Write(LOG_ENTRYEXIT, ">>>> TPrintingTask::run");
  g_exitStatus = 1;
  Log_Write(LOG_ENTRYEXIT, "<<<< TPrintingTask::run[[%d]", 1);
}
