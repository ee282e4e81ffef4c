// Fuzz target: the page loop end to end, raster bytes in, job command stream
// out to a sink.
// Copyright 2026 The rastertobrellian authors.
//
// A page whose header claims more than the page buffer caps ends the filter
// through its out-of-memory exit; the fuzzer could not go on after it.  Such
// inputs are screened out first by reading the stream the way the page loop
// does, with the same size check (CUPS_PageBytes).  Pages are also kept to a
// working size so that each run stays fast, on the 300 dpi model.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <cups/raster.h>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "fuzz_common.h"
#include "imaging/panel.h"

namespace {

// Largest page buffer a fuzz input may claim, and most pages per input.
constexpr uint64_t kFuzzPageBytes = 32u * 1024u * 1024u;
constexpr int kFuzzPages = 64;

// 'Fuzz_Path()' - The one regular file the raster bytes go through.
const std::string& Fuzz_Path() {
  static const std::string path = [] {
    std::string templ = std::string(BRELLIAN_FUZZ_WORK_DIR) + "/fuzz-raster-XXXXXX";
    std::vector<char> name(templ.begin(), templ.end());
    name.push_back(0);
    int fd = mkstemp(name.data());
    if (fd >= 0) close(fd);
    return std::string(name.data());
  }();
  return path;
}

// 'Fuzz_Acceptable()' - Read the stream as the page loop would and say
// whether every page stays within the fuzzing caps.
bool Fuzz_Acceptable(const std::string& path) {
  int fd = open(path.c_str(), O_RDONLY);
  if (fd < 0) return false;
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  bool ok = true;
  int pages = 0;
  cups_page_header2_t header;
  std::vector<uint8_t> line;
  while (ok && raster && cupsRasterReadHeader2(raster, &header)) {
    uint64_t bytes = 0;
    if (!CUPS_PageBytes(&header, &bytes) || bytes > kFuzzPageBytes || ++pages > kFuzzPages) {
      ok = false;
      break;
    }
    line.resize(header.cupsBytesPerLine ? header.cupsBytesPerLine : 1);
    for (uint32_t row = 0; row < header.cupsHeight; ++row)
      if (cupsRasterReadPixels(raster, line.data(), header.cupsBytesPerLine) == 0) break;
  }
  if (raster) cupsRasterClose(raster);
  close(fd);
  return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  static FILE* sink = fopen("/dev/null", "wb");
  const std::string& path = Fuzz_Path();
  FILE* f = fopen(path.c_str(), "wb");
  if (!f) abort();
  if (size) fwrite(data, 1, size, f);
  fclose(f);
  if (!Fuzz_Acceptable(path)) return -1;   // not added to the corpus

  std::string file = path;
  std::vector<std::string> args = {"rastertobrellian", "7", "user", "title", "1", "", file};
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(&a[0]);
  argv.push_back(nullptr);
  g_cancelJob = 0;
  g_exitStatus = 0;
  // The 300 dpi model: its panels are a quarter of the 600 dpi ones, so
  // each run is faster and the same code runs.
  setenv("PPD", BRELLIAN_FUZZ_PPD_1030, 1);
  unsetenv("DEVICE_URI");
  {
    TPrintingTask task(7, argv.data());
    task.output = sink;
    task.run();
    if (task.pageBuffer) abort();   // the loop frees every page
  }
  signal(SIGTERM, SIG_DFL);
  return 0;
}
