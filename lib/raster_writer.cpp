// Writing CUPS raster streams for tests, the demo and the raster tool.
// Copyright 2026 The rastertobrellian authors.
#include "lib/raster_writer.h"

#include <cstring>

#include "lib/tool_file.h"

// 'Raster_MakeRGBPage()' - A one-colour 8-bit chunky RGB page.
TRasterPage Raster_MakeRGBPage(uint32_t width, uint32_t height, uint32_t dpi, uint8_t r, uint8_t g,
                               uint8_t b) {
  TRasterPage page;
  memset(&page.header, 0, sizeof page.header);
  cups_page_header2_t& h = page.header;
  strcpy(h.MediaClass, "PwgRaster");
  strcpy(h.MediaType, "Card");
  h.HWResolution[0] = dpi;
  h.HWResolution[1] = dpi;
  uint32_t pointsW = dpi ? static_cast<uint32_t>(static_cast<uint64_t>(width) * 72 / dpi) : 0;
  uint32_t pointsH = dpi ? static_cast<uint32_t>(static_cast<uint64_t>(height) * 72 / dpi) : 0;
  h.PageSize[0] = pointsW;
  h.PageSize[1] = pointsH;
  h.ImagingBoundingBox[2] = pointsW;
  h.ImagingBoundingBox[3] = pointsH;
  h.NumCopies = 1;
  h.cupsWidth = width;
  h.cupsHeight = height;
  h.cupsBitsPerColor = 8;
  h.cupsBitsPerPixel = 24;
  h.cupsBytesPerLine = 3 * width;
  h.cupsColorOrder = CUPS_ORDER_CHUNKED;
  h.cupsColorSpace = CUPS_CSPACE_RGB;
  h.cupsNumColors = 3;
  h.cupsPageSize[0] = static_cast<float>(pointsW);
  h.cupsPageSize[1] = static_cast<float>(pointsH);
  h.cupsImagingBBox[2] = static_cast<float>(pointsW);
  h.cupsImagingBBox[3] = static_cast<float>(pointsH);
  page.data.resize(static_cast<size_t>(width) * height * 3);
  for (size_t i = 0; i < page.data.size(); i += 3) {
    page.data[i] = r;
    page.data[i + 1] = g;
    page.data[i + 2] = b;
  }
  return page;
}

// 'Raster_SetPixel()' - Set one pixel; outside the page or the data it is
// ignored.
void Raster_SetPixel(TRasterPage* page, uint32_t x, uint32_t y, uint8_t r, uint8_t g, uint8_t b) {
  if (!page || x >= page->header.cupsWidth || y >= page->header.cupsHeight) return;
  size_t at = static_cast<size_t>(y) * page->header.cupsBytesPerLine + static_cast<size_t>(x) * 3;
  if (at + 3 > page->data.size()) return;
  page->data[at] = r;
  page->data[at + 1] = g;
  page->data[at + 2] = b;
}

// 'Raster_FillRect()' - Fill the part of a rectangle that lies on the page.
void Raster_FillRect(TRasterPage* page, uint32_t x, uint32_t y, uint32_t w, uint32_t h, uint8_t r,
                     uint8_t g, uint8_t b) {
  if (!page) return;
  uint64_t x1 = static_cast<uint64_t>(x) + w, y1 = static_cast<uint64_t>(y) + h;
  if (x1 > page->header.cupsWidth) x1 = page->header.cupsWidth;
  if (y1 > page->header.cupsHeight) y1 = page->header.cupsHeight;
  for (uint64_t yy = y; yy < y1; ++yy)
    for (uint64_t xx = x; xx < x1; ++xx)
      Raster_SetPixel(page, static_cast<uint32_t>(xx), static_cast<uint32_t>(yy), r, g, b);
}

// 'Raster_Append()' - libcups write callback: append the bytes to a string.
static ssize_t Raster_Append(void* ctx, unsigned char* buffer, size_t bytes) {
  static_cast<std::string*>(ctx)->append(reinterpret_cast<const char*>(buffer), bytes);
  return static_cast<ssize_t>(bytes);
}

// 'Raster_WriteStream()' - Encode the pages with libcups into *out.
bool Raster_WriteStream(const std::vector<TRasterPage>& pages, bool compressed, std::string* out,
                        size_t truncateAt) {
  if (!out) return false;
  out->clear();
  cups_raster_t* ras = cupsRasterOpenIO(Raster_Append, out,
                                        compressed ? CUPS_RASTER_WRITE_COMPRESSED : CUPS_RASTER_WRITE);
  if (!ras) return false;
  bool ok = true;
  for (const TRasterPage& page : pages) {
    cups_page_header2_t header = page.header;
    if (!cupsRasterWriteHeader2(ras, &header)) {
      ok = false;
      break;
    }
    if (page.data.empty()) continue;
    std::vector<uint8_t> copy(page.data);  // libcups may swap bytes in place
    if (cupsRasterWritePixels(ras, copy.data(), static_cast<unsigned>(copy.size())) == 0) {
      ok = false;
      break;
    }
  }
  cupsRasterClose(ras);
  if (out->size() > truncateAt) out->resize(truncateAt);
  return ok;
}

// 'Raster_WritePwgStream()' - libcups' PWG (or Apple) mode with sRGB headers.
bool Raster_WritePwgStream(const std::vector<TRasterPage>& pages, std::string* out, bool apple) {
  if (!out) return false;
  out->clear();
  cups_raster_t* ras = cupsRasterOpenIO(Raster_Append, out, apple ? CUPS_RASTER_WRITE_APPLE : CUPS_RASTER_WRITE_PWG);
  if (!ras) return false;
  bool ok = true;
  for (const TRasterPage& page : pages) {
    cups_page_header2_t header = page.header;
    header.cupsColorSpace = CUPS_CSPACE_SRGB;
    header.cupsNumColors = 3;
    header.cupsColorOrder = CUPS_ORDER_CHUNKED;
    header.cupsInteger[0] = static_cast<unsigned>(pages.size());  // TotalPageCount
    if (!cupsRasterWriteHeader2(ras, &header)) {
      ok = false;
      break;
    }
    std::vector<uint8_t> copy(page.data);
    if (!copy.empty() && cupsRasterWritePixels(ras, copy.data(), static_cast<unsigned>(copy.size())) == 0) {
      ok = false;
      break;
    }
  }
  cupsRasterClose(ras);
  return ok;
}

// 'Raster_WriteFile()' - Encode the pages and write them to path.
bool Raster_WriteFile(const std::vector<TRasterPage>& pages, bool compressed, const std::string& path) {
  std::string bytes;
  return Raster_WriteStream(pages, compressed, &bytes) && Tool_WriteFile(path, bytes);
}
