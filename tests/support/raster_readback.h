// Raster streams in memory read back page by page with libcups, as a filter reads them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <string>
#include <vector>

// One page as libcups reads it back.
struct TReadPage {
  cups_page_header2_t header;
  std::vector<uint8_t> data;  // the rows that could be read
};

// 'Test_ReadRaster()' - Every page of a raster stream (CUPS, PWG or Apple
// raster) read with cupsRasterReadHeader2 and cupsRasterReadPixels, row by
// row; a page's data stops at the first row that cannot be read.  No pages
// when libcups does not take the stream.
std::vector<TReadPage> Test_ReadRaster(const std::string& stream);
