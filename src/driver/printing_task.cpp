// TPrintingTask construction and destruction.
// Copyright 2026 The rastertobrellian authors.
#include "driver/printing_task.h"

#include <cstdlib>

#include "log/log.h"
#include "status/models.h"
#include "status/tables.h"

TPrintingTask::TPrintingTask(int32_t argcIn, char** argvIn)
    : argc(argcIn), argv(argvIn), modelName(Status_ModelName(Model_Default().id)) {
  for (auto& side : lutTable)
    for (auto& channel : side)
      for (int i = 0; i < 256; ++i) channel[i] = static_cast<uint8_t>(i);
}

TPrintingTask::~TPrintingTask() {
  Log_Write(LOG_LOG, "~TPrintingTask --> gracefull exit.");
  free(pageBuffer);
  pageBuffer = nullptr;
  free(scratchRow);
  scratchRow = nullptr;
}
