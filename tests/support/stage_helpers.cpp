// Shared helpers of the image stage tests.
// Copyright 2026 The rastertobrellian authors.
#include "support/stage_helpers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "log/log.h"
#include "status/tables.h"
#include "support/alloc_limit.h"

void TStageFree::operator()(uint8_t* p) const { free(p); }

std::unique_ptr<TPrintingTask> Stage_MakeTask(int32_t printerModel) {
  Status_BuildTables();
  std::unique_ptr<TPrintingTask> task(new TPrintingTask(0, nullptr));
  task->printerModel = printerModel;
  return task;
}

std::vector<uint8_t> Stage_RandomBytes(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> bytes(n);
  size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    uint32_t r = rng();
    memcpy(&bytes[i], &r, 4);
  }
  for (; i < n; ++i) bytes[i] = static_cast<uint8_t>(rng() >> 24);
  return bytes;
}

std::vector<uint8_t> Stage_RandomImage(uint32_t width, uint32_t height, uint32_t seed) {
  return Stage_RandomBytes(static_cast<size_t>(width) * height * 3, seed);
}

cups_page_header2_t Stage_Header(uint32_t width, uint32_t height, uint32_t bytesPerLine,
                                 uint32_t colorSpace) {
  cups_page_header2_t header;
  memset(&header, 0, sizeof header);
  header.cupsWidth = width;
  header.cupsHeight = height;
  header.cupsBytesPerLine = bytesPerLine;
  header.cupsBitsPerColor = 8;
  header.cupsColorSpace = static_cast<cups_cspace_t>(colorSpace);
  return header;
}

void Stage_SetPage(TPrintingTask* task, const cups_page_header2_t* header,
                   const std::vector<uint8_t>& page) {
  free(task->pageBuffer);
  task->pageHeader = header;
  task->pageBuffer = static_cast<uint8_t*>(malloc(page.size() + 1));
  if (!page.empty()) memcpy(task->pageBuffer, page.data(), page.size());
}

std::string Stage_CaptureLog(const std::function<void()>& fn) {
  int32_t level = Log_GetLevel();
  uint32_t mask = Log_GetOutputMask();
  Log_SetLevel(LOG_ENTRYEXIT);
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  fn();
  std::string text = testing::internal::GetCapturedStderr();
  Log_SetLevel(level);
  Log_SetOutputMask(mask);
  Log_SetDepth(0);
  return text;
}

std::string Stage_LimitedRun(size_t headroom, const std::function<int()>& fn) {
#if defined(__SANITIZE_ADDRESS__)
  (void)headroom;
  (void)fn;
  return "";
#else
  int fds[2];
  if (pipe(fds) != 0) return "";
  fflush(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    dup2(fds[1], 2);
    Log_SetLevel(LOG_ENTRYEXIT);
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetDepth(0);
    Test_LimitAllocations(headroom);
    int result = fn();
    fprintf(stderr, "exit=%d", result);
    fflush(stderr);
    _exit(0);
  }
  close(fds[1]);
  std::string text;
  char buffer[4096];
  ssize_t n;
  while ((n = read(fds[0], buffer, sizeof buffer)) > 0) text.append(buffer, static_cast<size_t>(n));
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  return text;
#endif
}
