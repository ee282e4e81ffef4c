// Streamed raster jobs wait for their turn instead of being refused as busy.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL 1.3.1 prints a PWG or Apple raster document while it arrives, in
// the client's own connection, and answers "server-error-busy" (leaving the
// job "aborted") when the printer is printing anything else; JPEG, PNG and
// PDF are spooled and queue.  So with several clients at once most raster
// jobs were lost.  The application replaces the PAPPL function that makes
// that choice, _papplJobCopyDocumentData() (exported by libpappl 1.3.1 and
// called through its procedure linkage table, so the executable's
// definition is the one called): a raster document first waits, its
// client connection held, until the printer is idle with no other job
// waiting, one raster job per printer at a time, and then goes to PAPPL's
// own function, which prints it.  Other formats go straight through.
#include "app/stream_queue.h"

#include <dlfcn.h>
#include <pappl/pappl.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <map>
#include <mutex>

#ifdef BRELLIAN_PAPPL_1_3

namespace {

// Raster jobs of one printer that are waiting or printing.
struct TStreamTurn {
  std::timed_mutex printing;  // held by the raster job that prints
  int inside = 0;             // raster jobs waiting or printing
};

std::mutex g_streamTurnsLock;
std::map<pappl_printer_t*, TStreamTurn> g_streamTurns;

// 'StreamQueue_Turn()' - The printer's turn record (never removed: one
// small record per printer that ever had a raster job).
TStreamTurn& StreamQueue_Turn(pappl_printer_t* printer) {
  std::lock_guard<std::mutex> lock(g_streamTurnsLock);
  return g_streamTurns[printer];
}

// 'StreamQueue_Idle()' - The printer prints nothing and no job but the
// waiting raster jobs is queued.
bool StreamQueue_Idle(pappl_printer_t* printer, TStreamTurn& turn) {
  std::lock_guard<std::mutex> lock(g_streamTurnsLock);
  return papplPrinterGetState(printer) == IPP_PSTATE_IDLE &&
         papplPrinterGetNumberOfActiveJobs(printer) <= turn.inside;
}

}  // namespace

using TCopyDocumentData = void (*)(pappl_client_t*, pappl_job_t*);

// '_papplJobCopyDocumentData()' - PAPPL's document reception, with raster
// documents waiting for the printer first (see the head of this file).
extern "C" void _papplJobCopyDocumentData(pappl_client_t* client, pappl_job_t* job) {
  static TCopyDocumentData pappl =
      reinterpret_cast<TCopyDocumentData>(dlsym(RTLD_NEXT, "_papplJobCopyDocumentData"));
  const char* format = papplJobGetFormat(job);
  bool raster = format && (!strcmp(format, "image/pwg-raster") || !strcmp(format, "image/urf"));
  if (!raster) {
    pappl(client, job);
    return;
  }
  pappl_printer_t* printer = papplJobGetPrinter(job);
  TStreamTurn& turn = StreamQueue_Turn(printer);
  {
    std::lock_guard<std::mutex> lock(g_streamTurnsLock);
    turn.inside++;
  }
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(STREAMQUEUE_MAX_WAIT_SECONDS);
  bool mine = turn.printing.try_lock_until(deadline);
  if (mine && !StreamQueue_Idle(printer, turn))
    papplLogJob(job, PAPPL_LOGLEVEL_INFO, "Waiting for the printer to finish the jobs before this one.");
  while (mine && !StreamQueue_Idle(printer, turn) && std::chrono::steady_clock::now() < deadline &&
         !papplJobIsCanceled(job))
    usleep(100000);
  pappl(client, job);
  // The job has left the printer's active jobs: it stops counting before
  // the next raster job gets its turn, which would otherwise take the
  // printer as idle while a spooled job is queued or starting (both jobs
  // then wrote to one device, and the first one's close aborted the other).
  {
    std::lock_guard<std::mutex> lock(g_streamTurnsLock);
    turn.inside--;
  }
  if (mine) turn.printing.unlock();
}

// 'StreamQueue_Active()' - Built against PAPPL 1.3.
bool StreamQueue_Active() { return true; }

#else

// 'StreamQueue_Active()' - Another PAPPL: its own handling stays.
bool StreamQueue_Active() { return false; }

#endif
