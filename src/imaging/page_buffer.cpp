// Page and panel buffers: the page buffer, its caps and its allocation.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "log/log.h"
#include "util/signal_block.h"

// 'CUPS_PageBytes()' - Size of the page buffer in 64 bits; false when the
// header asks for more than the caps allow.
bool CUPS_PageBytes(const cups_page_header2_t* header, uint64_t* bytes) {
  uint64_t line = header->cupsBytesPerLine;
  uint64_t rows = header->cupsHeight;
  *bytes = line * rows;
  return line <= PAGE_MAX_LINE_BYTES && rows <= PAGE_MAX_ROWS && *bytes <= PAGE_MAX_BYTES;
}

// 'CUPS_NoMemory()' - The page could not be had: the spooler's message, and
// the process ends at once with status 1.
[[noreturn]] static void CUPS_NoMemory() {
  fputs("ERROR: Unable to allocate memory!\n", stderr);
  _exit(1);
}

// 'CUPS_LogPage()' - The line that announces every page's buffer.
static void CUPS_LogPage(const cups_page_header2_t* header) {
  Log_Write(LOG_LOG, "CUPS_AllocPage(%d,%d,%d)", static_cast<int>(header->cupsWidth),
            static_cast<int>(header->cupsHeight), static_cast<int>(header->cupsBytesPerLine));
}

// 'CUPS_AllocPage()' - Allocate the zero-filled page buffer.  A header that
// exceeds the caps, or an allocation that fails, ends the process at once
// with status 1 after "ERROR: Unable to allocate memory!".
int32_t CUPS_AllocPage(TPrintingTask* task, const cups_page_header2_t* header, bool zeroFill) {
  CUPS_LogPage(header);
  uint64_t bytes = 0;
  uint8_t* block = nullptr;
  {
    TSignalBlock hold;   // no exit handler while the allocator is busy
    free(task->pageBuffer);
    task->pageBuffer = nullptr;
    if (CUPS_PageBytes(header, &bytes)) {
      size_t size = bytes ? static_cast<size_t>(bytes) : 1;
      block = static_cast<uint8_t*>(zeroFill ? calloc(1, size) : malloc(size));
    }
  }
  if (!block) CUPS_NoMemory();
  task->pageBuffer = block;
  return 0;
}

// 'CUPS_AdmitPage()' - The same line and the same caps as CUPS_AllocPage,
// for a page that will only be drained: nothing is allocated, and a page
// beyond the caps ends the job exactly as a failed allocation does.
int32_t CUPS_AdmitPage(TPrintingTask* task, const cups_page_header2_t* header) {
  CUPS_LogPage(header);
  {
    TSignalBlock hold;
    free(task->pageBuffer);
    task->pageBuffer = nullptr;
  }
  uint64_t bytes = 0;
  if (!CUPS_PageBytes(header, &bytes)) CUPS_NoMemory();
  return 0;
}
