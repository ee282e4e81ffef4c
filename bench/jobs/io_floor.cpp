// brellian-iofloor: the I/O floor of a job, the baseline a whole-job
// benchmark compares the filter with.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: brellian-iofloor --plan STREAM > PLAN
//        BRELLIAN_FLOOR_PLAN=PLAN brellian-iofloor job-id user title copies options [file]
//
// The first form reads a job command stream the filter wrote for the job
// and prints its plan: the colour panel's size, then one line per record
// ("page header-bytes payload-bytes flush"), the page being the one after
// whose rows the filter writes it (0 for the job's first record, written
// before any page is read).
//
// The second form does what any filter must do with the job's bytes and
// nothing else, handling memory exactly as the filter's page loop does:
// the same allocator settings, the heap grown by three colour panels and
// marked for huge pages before the first page (only where the filter does
// it), a page buffer taken from malloc at each page header and freed after
// the page, each row zeroed just before it is read into and the rows the
// stream does not deliver zeroed after, a "PAGE:" line per page and a
// progress line every 128 rows.  After each page it writes the records the
// plan puts there, through the same stream, with the same fwrite calls (a
// command record in one call then a flush; an image record's header, then
// its rows straight from the page buffer, unflushed), so the output pipe
// carries the same number of bytes in the same records at the same points
// of the job.  The bytes' values do not change what moving them costs; the
// floor writes whatever the page buffer holds.  No options, no log, no
// image work.
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <cups/raster.h>

#include "jobstream/records.h"

namespace {

constexpr uint32_t kProgressRows = 128;
// The page loop's allocator settings and huge-page reserve (driver/page_loop.cpp).
constexpr int kMmapBytes = 32 * 1024 * 1024;
constexpr int kTrimBytes = 64 * 1024 * 1024;
constexpr uintptr_t kHugePage = 2u * 1024 * 1024;
constexpr size_t kReservePanels = 3;
constexpr size_t kHugeMinPanelBytes = 4u * 1024 * 1024;

// One record of the plan.
struct TFloorRecord {
  uint32_t page = 0;     // written after this page's rows (0: before the first page)
  uint32_t header = 0;   // bytes of the first fwrite
  uint32_t payload = 0;  // bytes of the second fwrite (image rows), 0 for none
  bool flush = false;    // fflush after the record
};

// 'Floor_MakePlan()' - Print the plan of the stream in path; 1 when it
// cannot be read or is not a whole stream.
int Floor_MakePlan(const char* path) {
  FILE* in = fopen(path, "rb");
  if (!in) {
    perror(path);
    return 1;
  }
  std::vector<uint8_t> data;
  uint8_t chunk[65536];
  for (size_t n; (n = fread(chunk, 1, sizeof chunk, in)) > 0;) data.insert(data.end(), chunk, chunk + n);
  fclose(in);
  uint32_t panelBytes = 0, imagesEnded = 0;
  std::vector<TFloorRecord> plan;
  for (size_t at = 0; at + ICMD_HEADER_BYTES <= data.size();) {
    uint16_t type = Rec_Get16(&data[at]);
    uint32_t length = Rec_Get32(&data[at + 2]);
    if (at + ICMD_HEADER_BYTES + length > data.size()) return 1;
    TFloorRecord r;
    r.page = type == ICMD_STARTJOB ? 0 : imagesEnded + 1;
    if (type == ICMD_IMAGE) {
      r.header = ICMD_HEADER_BYTES;
      r.payload = length;
    } else {
      r.header = static_cast<uint32_t>(ICMD_HEADER_BYTES + length);
      r.flush = true;
    }
    if (type == ICMD_STARTIMAGE && data[at + STARTIMAGE_PANEL] == 0 && !panelBytes)
      panelBytes = 3u * Rec_Get16(&data[at + STARTIMAGE_WIDTH]) * Rec_Get16(&data[at + STARTIMAGE_HEIGHT]);
    if (type == ICMD_ENDIMAGE) ++imagesEnded;
    plan.push_back(r);
    at += ICMD_HEADER_BYTES + length;
  }
  // Records after the last image (side, card and job ends) follow its page.
  for (TFloorRecord& r : plan)
    if (r.page > imagesEnded) r.page = imagesEnded ? imagesEnded : 1;
  printf("panel %u\n", panelBytes);
  for (const TFloorRecord& r : plan) printf("%u %u %u %d\n", r.page, r.header, r.payload, r.flush ? 1 : 0);
  return 0;
}

// 'Floor_ReadPlan()' - The plan in path (empty when unset or unreadable).
std::vector<TFloorRecord> Floor_ReadPlan(const char* path, size_t* panelBytes) {
  std::vector<TFloorRecord> plan;
  FILE* in = path ? fopen(path, "r") : nullptr;
  if (!in) return plan;
  if (fscanf(in, "panel %zu", panelBytes) != 1) *panelBytes = 0;
  TFloorRecord r;
  int flush = 0;
  while (fscanf(in, "%u %u %u %d", &r.page, &r.header, &r.payload, &flush) == 4) {
    r.flush = flush != 0;
    plan.push_back(r);
  }
  fclose(in);
  return plan;
}

// 'Floor_KeepBuffers()' - The page loop's allocator settings and, for a
// colour panel of at least 4 MiB, the huge-page reserve of three panels.
void Floor_KeepBuffers(size_t panelBytes) {
  mallopt(M_MMAP_THRESHOLD, kMmapBytes);
  mallopt(M_TRIM_THRESHOLD, kTrimBytes);
  size_t reserve = panelBytes * kReservePanels;
  if (panelBytes < kHugeMinPanelBytes || reserve >= static_cast<size_t>(kMmapBytes)) return;
  void* block = malloc(reserve);
  if (!block) return;
  uintptr_t first = (reinterpret_cast<uintptr_t>(block) + kHugePage - 1) & ~(kHugePage - 1);
  uintptr_t last = (reinterpret_cast<uintptr_t>(block) + reserve) & ~(kHugePage - 1);
  if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
  free(block);
}

// 'Floor_ReadRows()' - The page loop's reading of one page into buffer.
void Floor_ReadRows(cups_raster_t* raster, const cups_page_header2_t& header, uint8_t* buffer, int page) {
  const size_t lineBytes = header.cupsBytesPerLine;
  uint32_t zeroed = 0;
  if (lineBytes == 0 || header.cupsHeight == 0) buffer[0] = 0;
  for (uint32_t row = 0; row < header.cupsHeight; ++row) {
    if (row % kProgressRows == 0)
      fprintf(stderr, "INFO: Printing page %d, %d%% complete...\n", page,
              static_cast<int>(static_cast<uint64_t>(row) * 100u / header.cupsHeight));
    uint8_t* line = buffer + static_cast<size_t>(row) * lineBytes;
    memset(line, 0, lineBytes);
    zeroed = row + 1;
    if (cupsRasterReadPixels(raster, line, static_cast<unsigned>(lineBytes)) == 0) break;
  }
  if (zeroed < header.cupsHeight)
    memset(buffer + static_cast<size_t>(zeroed) * lineBytes, 0,
           static_cast<size_t>(header.cupsHeight - zeroed) * lineBytes);
}

// 'Floor_WriteUpTo()' - Write the plan's records up to page, from *next on;
// image rows come from source (at least 61440 bytes) or, without it, from
// a buffer of zeros.
void Floor_WriteUpTo(const std::vector<TFloorRecord>& plan, size_t* next, uint32_t page, const uint8_t* source) {
  static const std::vector<uint8_t> zeros(IMAGE_CHUNK_BYTES + ICMD_HEADER_BYTES + 1024, 0);
  for (; *next < plan.size() && plan[*next].page <= page; ++*next) {
    const TFloorRecord& r = plan[*next];
    const uint8_t* header = r.header <= zeros.size() ? zeros.data() : nullptr;
    size_t unused = header ? fwrite(header, 1, r.header, stdout) : 0;
    if (r.payload) unused = fwrite(source ? source : zeros.data(), 1, r.payload, stdout);
    (void)unused;
    if (r.flush) fflush(stdout);
  }
}

}  // namespace

// 'main()' - Make a plan, or drain the raster stream as the page loop does
// and write the planned records; status 1 without pages.
int main(int argc, char** argv) {
  if (argc == 3 && strcmp(argv[1], "--plan") == 0) return Floor_MakePlan(argv[2]);
  setbuf(stderr, nullptr);
  int fd = 0;
  if (argc == 7 && (fd = open(argv[6], O_RDONLY | O_CLOEXEC)) < 0) {
    perror("ERROR: Unable to open raster file - ");
    return 1;
  }
  size_t panelBytes = 0, next = 0;
  const std::vector<TFloorRecord> plan = Floor_ReadPlan(getenv("BRELLIAN_FLOOR_PLAN"), &panelBytes);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  Floor_KeepBuffers(panelBytes);
  Floor_WriteUpTo(plan, &next, 0, nullptr);
  cups_page_header2_t header;
  uint32_t page = 0;
  while (raster && cupsRasterReadHeader2(raster, &header)) {
    ++page;
    size_t bytes = static_cast<size_t>(header.cupsBytesPerLine) * header.cupsHeight;
    uint8_t* buffer = static_cast<uint8_t*>(malloc(bytes ? bytes : 1));
    if (!buffer) {
      fputs("ERROR: Unable to allocate memory!\n", stderr);
      return 1;
    }
    fprintf(stderr, "PAGE: %d %d\n", static_cast<int>(page), static_cast<int>(header.NumCopies));
    Floor_ReadRows(raster, header, buffer, static_cast<int>(page));
    Floor_WriteUpTo(plan, &next, page, bytes >= IMAGE_CHUNK_BYTES ? buffer : nullptr);
    free(buffer);
  }
  Floor_WriteUpTo(plan, &next, UINT32_MAX, nullptr);
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
