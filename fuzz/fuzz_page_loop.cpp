// Fuzz target: the page loop end to end, job options and raster bytes in,
// the job command stream out and checked with the stream reader.
// Copyright 2026 The rastertobrellian authors.
//
// The first FUZZ_OPTION_BYTES bytes choose the job: the model (and whether
// its real panel size is used or a sixteenth of it, which keeps each run
// fast while the same code runs), the ribbon, resin, UV and overlay of each
// side, rotations, custom resin and overlay areas, and the Duplex and
// Tumble flags of the first page.  The rest is the raster stream.
//
// A page whose header claims more than the page buffer caps ends the filter
// through its out-of-memory exit; the fuzzer could not go on after it.  Such
// inputs are screened out first by reading the stream the way the page loop
// does, with the same size check (CUPS_PageBytes).
//
// Every stream made must be a well-formed, complete job (no cancel happens
// here) whose panels all have the panel size of the run; anything else
// aborts.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "fuzz/fuzz_common.h"
#include "fuzz/page_input.h"
#include "imaging/panel.h"
#include "jobstream/stream_reader.h"

namespace {

// 'Fuzz_CheckStream()' - Abort unless the stream is a complete job whose
// images are all whole panels of the given size.
void Fuzz_CheckStream(const char* bytes, size_t size, TPanelGeometry g) {
  TStreamCheck check;
  if (Stream_Read(reinterpret_cast<const uint8_t*>(bytes), size, &check) != 0 || !check.ok) {
    fprintf(stderr, "malformed stream at %llu: %s\n",
            static_cast<unsigned long long>(check.errorOffset), check.error.c_str());
    abort();
  }
  if (!check.complete) {
    fprintf(stderr, "stream stops before ICMD_ENDJOB: %s\n", check.openLevel.c_str());
    abort();
  }
  for (const TStreamPanel& p : check.panels)
    if (!p.complete || p.width != g.width || p.height != g.height) {
      fprintf(stderr, "panel %ux%u, expected %ux%u\n", p.width, p.height, g.width, g.height);
      abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  TFuzzJob job;
  if (!Fuzz_PageJob(data, size, &job)) return -1;   // not added to the corpus

  std::vector<std::string> args = {"rastertobrellian", "7", "user", "title", "1", job.options,
                                   job.rasterPath};
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(&a[0]);
  argv.push_back(nullptr);
  g_cancelJob = 0;
  g_exitStatus = 0;
  setenv("PPD", job.ppd.c_str(), 1);
  unsetenv("DEVICE_URI");

  TPanelGeometry real = g_panelGeometry[job.model];
  TPanelGeometry used = job.smallPanels ? TPanelGeometry{real.width / 16, real.height / 16} : real;
  g_panelGeometry[job.model] = used;
  char* stream = nullptr;
  size_t streamBytes = 0;
  FILE* sink = open_memstream(&stream, &streamBytes);
  if (!sink) abort();
  {
    TPrintingTask task(7, argv.data());
    task.output = sink;
    task.run();
    if (task.pageBuffer) abort();   // the loop frees every page
    if (task.printerModel != static_cast<int32_t>(job.model)) abort();
  }
  fclose(sink);
  g_panelGeometry[job.model] = real;
  signal(SIGTERM, SIG_DFL);
  Fuzz_CheckStream(stream, streamBytes, used);
  free(stream);
  return 0;
}
