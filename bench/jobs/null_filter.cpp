// brellian-nullfilter: the page loop alone, the floor for a whole-job benchmark.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: brellian-nullfilter job-id user title copies options [file]
//
// It makes the same raster library calls as the filter's page loop and
// nothing else: every header is read, a zero-filled page buffer is
// allocated, every row is read into it with a progress line every 128 rows
// and a "PAGE:" line per page, and the buffer is freed.  No options, no
// log, no output stream.  Memory is handled as the filter handles it:
// blocks below 32 MiB come from the heap and stay there between pages, and
// at 600 dpi the heap where the page buffer lies is marked for huge pages.
// The time of a job through this program is what any filter on the same
// input must spend.
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <cups/raster.h>

namespace {

constexpr uint32_t kProgressRows = 128;
constexpr size_t kHeapBytes = 32u * 1024 * 1024;
constexpr uintptr_t kHugePage = 2u * 1024 * 1024;
constexpr size_t kHugeMinBytes = 4u * 1024 * 1024;

// 'Null_MarkHuge()' - Grow the heap by bytes and mark its 2 MB-aligned part
// for huge pages, without touching it, as the filter does before its
// first page.
void Null_MarkHuge(size_t bytes) {
  if (bytes < kHugeMinBytes || bytes >= kHeapBytes) return;
  void* block = malloc(bytes);
  if (!block) return;
  uintptr_t first = (reinterpret_cast<uintptr_t>(block) + kHugePage - 1) & ~(kHugePage - 1);
  uintptr_t last = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(kHugePage - 1);
  if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
  free(block);
}

// 'Null_ReadRows()' - Read the rows of one page as the page loop does.
void Null_ReadRows(cups_raster_t* raster, const cups_page_header2_t& header, uint8_t* buffer,
                   int page) {
  for (uint32_t row = 0; row < header.cupsHeight; ++row) {
    if (row % kProgressRows == 0)
      fprintf(stderr, "INFO: Printing page %d, %d%% complete...\n", page,
              static_cast<int>(static_cast<uint64_t>(row) * 100u / header.cupsHeight));
    uint8_t* line = buffer + static_cast<size_t>(row) * header.cupsBytesPerLine;
    if (cupsRasterReadPixels(raster, line, header.cupsBytesPerLine) == 0) break;
  }
}

}  // namespace

// 'main()' - Drain the raster stream page by page; status 1 without pages.
int main(int argc, char** argv) {
  setbuf(stderr, nullptr);
  mallopt(M_MMAP_THRESHOLD, static_cast<int>(kHeapBytes));
  mallopt(M_TRIM_THRESHOLD, static_cast<int>(2 * kHeapBytes));
  int fd = 0;
  if (argc == 7 && (fd = open(argv[6], O_RDONLY | O_CLOEXEC)) < 0) {
    perror("ERROR: Unable to open raster file - ");
    return 1;
  }
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  cups_page_header2_t header;
  int page = 0;
  while (raster && cupsRasterReadHeader2(raster, &header)) {
    ++page;
    size_t bytes = static_cast<size_t>(header.cupsBytesPerLine) * header.cupsHeight;
    if (page == 1) Null_MarkHuge(bytes);
    uint8_t* buffer = static_cast<uint8_t*>(calloc(1, bytes ? bytes : 1));
    if (!buffer) {
      fputs("ERROR: Unable to allocate memory!\n", stderr);
      return 1;
    }
    fprintf(stderr, "PAGE: %d %d\n", page, static_cast<int>(header.NumCopies));
    Null_ReadRows(raster, header, buffer, page);
    free(buffer);
  }
  if (raster) cupsRasterClose(raster);
  if (fd != 0) close(fd);
  if (page == 0) {
    fputs("ERROR: No pages found!\n", stderr);
    return 1;
  }
  fputs("INFO: Ready to print.\n", stderr);
  return 0;
}
