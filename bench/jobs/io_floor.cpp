// brellian-iofloor: the I/O floor of a job, the baseline a whole-job
// benchmark compares the filter with.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: BRELLIAN_FLOOR_BYTES=N BRELLIAN_FLOOR_PAGES=P
//        brellian-iofloor job-id user title copies options [file]
//
// It reads the raster stream as the filter's page loop does (every header,
// every row, a "PAGE:" line per page and a progress line every 128 rows),
// into one buffer kept for the whole job, and writes N bytes to standard
// output through the same kind of stream and the same record sizes as the
// filter's image records (a 6-byte header, then up to 61440 bytes of rows),
// spread evenly over the P pages the job is expected to have, so that the
// output pipe is fed while the input is read.  N and P are the filter's own
// output size and page count for the job.  No options, no log, no image
// work: what remains is what any filter must spend to move the job's bytes.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <cups/raster.h>

namespace {

constexpr uint32_t kProgressRows = 128;
constexpr size_t kRecordPayload = 61440;
constexpr size_t kRecordHeader = 6;

// 'Floor_Env()' - An unsigned number from the environment, 0 when unset.
uint64_t Floor_Env(const char* name) {
  const char* value = getenv(name);
  return value ? strtoull(value, nullptr, 10) : 0;
}

// 'Floor_Write()' - Write bytes of output as records of the filter's sizes.
void Floor_Write(uint64_t bytes, const std::vector<uint8_t>& zeros) {
  while (bytes > 0) {
    size_t header = std::min<uint64_t>(kRecordHeader, bytes);
    fwrite(zeros.data(), 1, header, stdout);
    bytes -= header;
    size_t payload = std::min<uint64_t>(kRecordPayload, bytes);
    fwrite(zeros.data(), 1, payload, stdout);
    bytes -= payload;
  }
}

}  // namespace

// 'main()' - Drain the raster stream into one buffer, feeding the output
// as the pages go by; status 1 without pages.
int main(int argc, char** argv) {
  setbuf(stderr, nullptr);
  const uint64_t total = Floor_Env("BRELLIAN_FLOOR_BYTES");
  const uint64_t pages = std::max<uint64_t>(1, Floor_Env("BRELLIAN_FLOOR_PAGES"));
  int fd = 0;
  if (argc == 7 && (fd = open(argv[6], O_RDONLY | O_CLOEXEC)) < 0) {
    perror("ERROR: Unable to open raster file - ");
    return 1;
  }
  std::vector<uint8_t> zeros(kRecordPayload, 0);
  std::vector<uint8_t> buffer;
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  cups_page_header2_t header;
  uint64_t page = 0, written = 0;
  while (raster && cupsRasterReadHeader2(raster, &header)) {
    ++page;
    size_t bytes = static_cast<size_t>(header.cupsBytesPerLine) * header.cupsHeight;
    if (buffer.size() < bytes) buffer.resize(bytes);
    fprintf(stderr, "PAGE: %d %d\n", static_cast<int>(page), static_cast<int>(header.NumCopies));
    for (uint32_t row = 0; row < header.cupsHeight; ++row) {
      if (row % kProgressRows == 0)
        fprintf(stderr, "INFO: Printing page %d, %d%% complete...\n", static_cast<int>(page),
                static_cast<int>(static_cast<uint64_t>(row) * 100u / header.cupsHeight));
      uint8_t* line = buffer.data() + static_cast<size_t>(row) * header.cupsBytesPerLine;
      if (cupsRasterReadPixels(raster, line, header.cupsBytesPerLine) == 0) break;
    }
    uint64_t due = total * std::min(page, pages) / pages;
    Floor_Write(due - written, zeros);
    written = due;
  }
  Floor_Write(total - written, zeros);
  fflush(stdout);
  if (raster) cupsRasterClose(raster);
  if (fd != 0) close(fd);
  if (page == 0) {
    fputs("ERROR: No pages found!\n", stderr);
    return 1;
  }
  fputs("INFO: Ready to print.\n", stderr);
  return 0;
}
