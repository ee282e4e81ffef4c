// Reading the rows of one raster page: into the page buffer, or drained.
// Copyright 2026 The rastertobrellian authors.
#include "driver/page_rows.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "util/raster_field.h"
#include "util/signal_block.h"

namespace {

// 'Rows_Progress()' - "INFO: Printing page %d, %d%% complete..." for row.
void Rows_Progress(int32_t page, uint32_t row, uint32_t height) {
  uint64_t percent = static_cast<uint64_t>(row) * 100u / height;
  fprintf(stderr, "INFO: Printing page %d, %d%% complete...\n", page, static_cast<int>(percent));
}

// 'Rows_Scratch()' - The task's scratch row, grown to hold bytes (at least
// one).  A line that cannot be had ends the job as a page that cannot be
// had does.
uint8_t* Rows_Scratch(TPrintingTask* task, size_t bytes) {
  if (bytes == 0) bytes = 1;
  if (task->scratchRow && task->scratchRowBytes >= bytes) return task->scratchRow;
  uint8_t* row = nullptr;
  {
    TSignalBlock hold;   // no exit handler while the allocator is busy
    free(task->scratchRow);
    task->scratchRow = nullptr;
    task->scratchRowBytes = 0;
    row = static_cast<uint8_t*>(malloc(bytes));
  }
  if (!row) {
    fputs("ERROR: Unable to allocate memory!\n", stderr);
    g_exitStatus = 1;
    _exit(1);
  }
  task->scratchRow = row;
  task->scratchRowBytes = bytes;
  return row;
}

}  // namespace

// The page buffer comes unzeroed from CUPS_AllocPage: each row is zeroed
// just before it is read into, and every row not reached is filled at the
// end (zero after a cancel, ROW_MISSING_BYTE when the stream ended).  The
// page then holds exactly the bytes of a zero-filled page overwritten by
// the rows read, while a row is zeroed and filled while it is in the cache
// instead of the whole page being cleared in a pass of its own.
uint32_t Loop_ReadRows(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header,
                       int32_t page) {
  uint8_t* buffer = task->pageBuffer;
  if (!buffer) return 0;
  uint32_t height = header.cupsHeight;
  size_t lineBytes = header.cupsBytesPerLine;
  uint32_t done = 0;    // rows read whole
  bool ended = false;   // a read delivered nothing: the stream ended early
  if (lineBytes == 0 || height == 0) buffer[0] = 0;  // the one-byte block of an empty page
  for (uint32_t row = 0; row < height && !g_cancelJob; ++row) {
    if (row % PROGRESS_ROWS == 0) Rows_Progress(page, row, height);
    uint8_t* line = buffer + static_cast<size_t>(row) * lineBytes;
    memset(line, 0, lineBytes);
    if (cupsRasterReadPixels(raster, line, static_cast<unsigned>(lineBytes)) == 0) {
      ended = true;
      break;
    }
    done = row + 1;
  }
  // A row whose read failed part way counts as missing with the rows after
  // it.  Without a failed read (a cancel) the rows left stay zero, as a
  // zero-filled page would hold them.
  if (done < height)
    memset(buffer + static_cast<size_t>(done) * lineBytes, ended ? ROW_MISSING_BYTE : 0,
           static_cast<size_t>(height - done) * lineBytes);
  return done;
}

void Loop_DrainRows(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header,
                    int32_t page) {
  uint32_t height = header.cupsHeight;
  unsigned lineBytes = header.cupsBytesPerLine;
  if (height == 0) return;
  uint8_t* line = Rows_Scratch(task, lineBytes);
  for (uint32_t row = 0; row < height && !g_cancelJob; ++row) {
    if (row % PROGRESS_ROWS == 0) Rows_Progress(page, row, height);
    if (cupsRasterReadPixels(raster, line, lineBytes) == 0) break;
  }
}

void Loop_DrainRest(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header) {
  // Only a planar page holds more lines than its height: the library counts
  // cupsHeight lines for every colour plane and answers 0 once they are all
  // read (or the stream ends).
  unsigned lineBytes = header.cupsBytesPerLine;
  if (!raster || lineBytes == 0 || Header_Word(header.cupsColorOrder) != CUPS_ORDER_PLANAR) return;
  uint8_t* line = Rows_Scratch(task, lineBytes);
  while (!g_cancelJob && cupsRasterReadPixels(raster, line, lineBytes) != 0) {
  }
}
