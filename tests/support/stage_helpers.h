// Shared helpers of the image stage tests: tasks, images, log capture,
// and running a stage under a tight memory limit.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <cups/raster.h>

#include "driver/printing_task.h"

// 'Stage_MakeTask()' - A task for printerModel with the start-up tables
// built.
std::unique_ptr<TPrintingTask> Stage_MakeTask(int32_t printerModel);

// 'Stage_RandomImage()' - width x height x 3 random bytes from seed.
std::vector<uint8_t> Stage_RandomImage(uint32_t width, uint32_t height, uint32_t seed);

// 'Stage_RandomBytes()' - n random bytes from seed.
std::vector<uint8_t> Stage_RandomBytes(size_t n, uint32_t seed);

// 'Stage_Header()' - A page header of width x height, bytesPerLine and
// colorSpace (8 bits per colour).
cups_page_header2_t Stage_Header(uint32_t width, uint32_t height, uint32_t bytesPerLine,
                                 uint32_t colorSpace = CUPS_CSPACE_RGB);

// 'Stage_SetPage()' - Give the task header and a malloc'd copy of page as
// its page buffer (freed with free(), as the page loop does).
void Stage_SetPage(TPrintingTask* task, const cups_page_header2_t* header,
                   const std::vector<uint8_t>& page);

// 'Stage_CaptureLog()' - The log lines fn writes at level EntryExit, as
// written to standard error (a leading blank, depth indentation, "\n").
std::string Stage_CaptureLog(const std::function<void()>& fn);

// 'Stage_LimitedRun()' - Run fn in a child process whose allocations fail
// once they total more than headroom bytes (Test_LimitAllocations); returns the child's standard error, with
// the log sent there at level EntryExit, followed by "exit=<fn's result>".
// Returns "" when the limit cannot be applied (sanitizer builds).
std::string Stage_LimitedRun(size_t headroom, const std::function<int()>& fn);

// 'Stage_Free()' - Owner of a malloc'd buffer.
struct TStageFree {
  void operator()(uint8_t* p) const;
};
using TStageBuffer = std::unique_ptr<uint8_t, TStageFree>;
