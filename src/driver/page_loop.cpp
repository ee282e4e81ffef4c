// TPrintingTask::run: the page loop from raster input to the job footer.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cups/raster.h>

#include "driver/dumps.h"
#include "driver/globals.h"
#include "driver/lifecycle.h"
#include "driver/loop_warnings.h"
#include "driver/page_rows.h"
#include "driver/printing_task.h"
#include "imaging/blank_side.h"
#include "imaging/page_process.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "jobstream/framing.h"
#include "log/log.h"
#include "options/read_options.h"
#include "util/raster_field.h"
#include "util/safe_file.h"
#include "util/signal_block.h"
#include "util/sys.h"

namespace {

// Pause after the raster file could not be opened.
constexpr uint32_t OPEN_FAILURE_PAUSE_MS = 1000;
// Blocks below this size come from the heap rather than from fresh mappings,
// and freed heap memory up to the trim size stays with the process.
constexpr int MALLOC_MMAP_BYTES = 32 * 1024 * 1024;
constexpr int MALLOC_TRIM_BYTES = 64 * 1024 * 1024;
// Size of a transparent huge page.
constexpr uintptr_t HUGE_PAGE_BYTES = 2 * 1024 * 1024;
// Colour panels' worth of heap kept for huge pages: the page, the working
// image and the panel buffers of one page fit in three.
constexpr size_t HUGE_RESERVE_PANELS = 3;
// Smallest colour panel for which huge pages are asked: below it (the
// 300 dpi models) the gain is small and the 2 MB rounding of the resident
// size is not.
constexpr size_t HUGE_MIN_PANEL_BYTES = 4 * 1024 * 1024;

// 'Loop_Arg()' - Argument i, or null when the command line is shorter.
const char* Loop_Arg(const TPrintingTask* task, int32_t i) {
  return (task->argv && i < task->argc) ? task->argv[i] : nullptr;
}

// 'Loop_KeepBuffers()' - Let the page, working and panel buffers of one
// page be reused by the next.  Each page allocates and frees blocks of the
// same few sizes (several MB at 600 dpi); by default the allocator maps
// such blocks freshly and unmaps them when freed, so every page would pay
// the kernel's zero-fill of each of its pages on first touch again.  From
// the heap, with trimming held back, the next page reuses the same memory.
// For a model with large panels (600 dpi) the heap is then grown by three
// colour panels and that stretch marked for transparent huge pages (where
// the system allows them on request), so the first page faults in 2 MB at
// a time instead of 4 KB; nothing is touched here.
// The bytes written are the same either way.
void Loop_KeepBuffers(const TPrintingTask* task) {
  mallopt(M_MMAP_THRESHOLD, MALLOC_MMAP_BYTES);
  mallopt(M_TRIM_THRESHOLD, MALLOC_TRIM_BYTES);
  TPanelGeometry g = Panel_Geometry(task);
  size_t panelBytes = static_cast<size_t>(g.width) * g.height * 3;
  size_t reserve = panelBytes * HUGE_RESERVE_PANELS;
  if (panelBytes < HUGE_MIN_PANEL_BYTES || reserve >= static_cast<size_t>(MALLOC_MMAP_BYTES)) return;
  void* block = malloc(reserve);
  if (!block) return;
  uintptr_t first = (reinterpret_cast<uintptr_t>(block) + HUGE_PAGE_BYTES - 1) & ~(HUGE_PAGE_BYTES - 1);
  uintptr_t last = (reinterpret_cast<uintptr_t>(block) + reserve) & ~(HUGE_PAGE_BYTES - 1);
  if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
  free(block);
}

// 'Loop_EndJob()' - Close what page processing left open and write the
// footer; a cancel arriving meanwhile stops the stream where it is.
void Loop_EndJob(TPrintingTask* task) {
  bool sideEnded = false;
  if (task->sideOpen) {
    Blank_EndSide(task);
    Job_EndSide(task);
    sideEnded = true;
  }
  if (sideEnded && g_cancelJob) return;
  if (task->cardOpen) {
    Job_EndCard(task);
    if (!g_cancelJob) Job_ProcessFooter(task);
  } else {
    Job_ProcessFooter(task);
  }
}

}  // namespace

// 'TPrintingTask::run()' - Read every raster page, hand each to page
// processing, close the job and leave the result in g_exitStatus.
void TPrintingTask::run() {
  Log_Write(LOG_ENTRYEXIT, ">>>> TPrintingTask::run");
  Job_DumpEnvironment(this);

  // Input: the named file (a regular file only, never through a symbolic
  // link), else standard input.
  int fd = 0;
  if (argc == 7) {
    fd = File_OpenRegular(Loop_Arg(this, 6), O_RDONLY);
    if (fd < 0) {
      g_exitStatus = 1;
      perror("ERROR: Unable to open raster file - ");
      Log_Write(LOG_ENTRYEXIT, "<<<< TPrintingTask::run[cannot open raster file]");
      Sys_SleepMs(OPEN_FAILURE_PAUSE_MS);
      return;
    }
  }

  Proc_InstallCancelHandler();
  // Empty or unknown input gives no stream: the job then has no pages.
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);

  Job_ReadOptions(this, Loop_Arg(this, 5), Loop_Arg(this, 4));
  Job_ProcessHeader(this, Loop_Arg(this, 1), Loop_Arg(this, 3));
  Loop_KeepBuffers(this);

  int32_t page = 0;
  bool cancelled = g_cancelJob != 0;
  cups_page_header2_t header;
  while (!cancelled && raster && cupsRasterReadHeader2(raster, &header)) {
    Page_DumpHeader(this, &header);
    duplex = Header_Word(header.Duplex) ? 1 : 0;
    tumble = Header_Word(header.Tumble) ? 1 : 0;
    ++page;
    // Once the card is complete a page is only read to its end: its rows
    // go through one scratch row, never into a page buffer.
    const bool drained = jobComplete != 0;
    if (drained) CUPS_AdmitPage(this, &header);
    else CUPS_AllocPage(this, &header, false);  // Loop_ReadRows zeroes what it does not fill
    ++pageCount;
    fprintf(stderr, "PAGE: %d %d\n", page, static_cast<int>(header.NumCopies));
    if (drained) {
      Loop_DrainRows(this, raster, header, page);
    } else {
      uint32_t rows = Loop_ReadRows(this, raster, header, page);
      if (!g_cancelJob) Warn_PageCutShort(page, rows, header.cupsHeight, header.cupsBytesPerLine);
    }
    if (!g_cancelJob && jobComplete) Warn_PageBeyondCard(this, page);
    if (!g_cancelJob && !jobComplete) Page_Process(this, &header);
    Loop_DrainRest(this, raster, header);
    {
      TSignalBlock hold;   // no exit handler while the allocator is busy
      free(pageBuffer);
      pageBuffer = nullptr;
    }
    pageHeader = nullptr;
    if (g_cancelJob) cancelled = true;
  }

  Warn_JobEnd(this, cancelled || g_cancelJob);
  if (!cancelled && !g_cancelJob) Warn_NoCard(this, page);
  if (!cancelled && !g_cancelJob) Loop_EndJob(this);

  if (raster) cupsRasterClose(raster);
  if (fd != 0) close(fd);

  if (page == 0) {
    fputs("ERROR: No pages found!\n", stderr);
    g_exitStatus = 1;
    Log_Write(LOG_ENTRYEXIT, "<<<< TPrintingTask::run[[%d]", 1);
  } else {
    fputs("INFO: Ready to print.\n", stderr);
    g_exitStatus = 0;
    Log_Write(LOG_ENTRYEXIT, "<<<< TPrintingTask::run[[%d]", 0);
  }
}
