// Writing CUPS raster streams for tests, the demo and the raster tool.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <cups/raster.h>

// One raster page: its header and the pixel rows that follow it.
struct TRasterPage {
  cups_page_header2_t header;   // every field settable by the caller
  std::vector<uint8_t> data;    // the rows as written; may hold fewer bytes than the header claims (a page cut mid-row)
};

// 'Raster_MakeRGBPage()' - An 8-bit chunky RGB page (cupsColorSpace 1, 24
// bits per pixel, cupsBytesPerLine 3 * width, HWResolution dpi) filled with
// one colour.  Page size and imageable area follow width, height and dpi.
TRasterPage Raster_MakeRGBPage(uint32_t width, uint32_t height, uint32_t dpi, uint8_t r, uint8_t g,
                               uint8_t b);

// 'Raster_SetPixel()' - Set one pixel of an RGB page made by
// Raster_MakeRGBPage.  A pixel outside the page is ignored.
void Raster_SetPixel(TRasterPage* page, uint32_t x, uint32_t y, uint8_t r, uint8_t g, uint8_t b);

// 'Raster_FillRect()' - Fill a rectangle of an RGB page; the part outside the
// page is ignored.
void Raster_FillRect(TRasterPage* page, uint32_t x, uint32_t y, uint32_t w, uint32_t h, uint8_t r,
                     uint8_t g, uint8_t b);

// 'Raster_WriteStream()' - Write pages as one raster stream into *out
// (replacing its content), uncompressed ("RaS3") or compressed ("RaS2").
// With truncateAt given, only the first truncateAt bytes are kept (a stream
// cut short).  Each page's data goes out as it is: in a compressed stream
// libcups encodes whole rows only, so the bytes of an unfinished last row of
// a short page are not written.  False when libcups refuses a header or the
// pixels.
bool Raster_WriteStream(const std::vector<TRasterPage>& pages, bool compressed, std::string* out,
                        size_t truncateAt = SIZE_MAX);

// 'Raster_WritePwgStream()' - Write 8-bit RGB pages as a PWG raster stream
// into *out, as IPP clients send it: colour space sRGB, each header with
// the fields PWG raster keeps; with apple true, as an Apple raster (URF)
// stream instead.  False when libcups refuses a page.
bool Raster_WritePwgStream(const std::vector<TRasterPage>& pages, std::string* out, bool apple = false);

// 'Raster_WriteFile()' - The same, into the file at path (created or
// replaced; a symbolic link or special file there is refused).
bool Raster_WriteFile(const std::vector<TRasterPage>& pages, bool compressed, const std::string& path);
