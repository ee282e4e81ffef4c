// Raster streams in memory read back page by page with libcups, as a filter reads them.
// Copyright 2026 The rastertobrellian authors.
#include "support/raster_readback.h"

#include <algorithm>
#include <cstring>

namespace {

// Where the reader is in the stream.
struct TMemorySource {
  const std::string* bytes;
  size_t at;
};

// 'Readback_Read()' - libcups' read callback: the next bytes of the stream.
ssize_t Readback_Read(void* ctx, unsigned char* buffer, size_t bytes) {
  TMemorySource* src = static_cast<TMemorySource*>(ctx);
  size_t n = std::min(bytes, src->bytes->size() - src->at);
  memcpy(buffer, src->bytes->data() + src->at, n);
  src->at += n;
  return static_cast<ssize_t>(n);
}

}  // namespace

// 'Test_ReadRaster()' - Header, then row after row, until the stream ends.
std::vector<TReadPage> Test_ReadRaster(const std::string& stream) {
  std::vector<TReadPage> pages;
  TMemorySource src = {&stream, 0};
  cups_raster_t* ras = cupsRasterOpenIO(Readback_Read, &src, CUPS_RASTER_READ);
  if (!ras) return pages;
  TReadPage page;
  while (cupsRasterReadHeader2(ras, &page.header)) {
    page.data.clear();
    std::vector<uint8_t> row(page.header.cupsBytesPerLine);
    for (unsigned y = 0; y < page.header.cupsHeight; ++y) {
      if (cupsRasterReadPixels(ras, row.data(), page.header.cupsBytesPerLine) == 0) break;
      page.data.insert(page.data.end(), row.begin(), row.end());
    }
    pages.push_back(page);
  }
  cupsRasterClose(ras);
  return pages;
}
