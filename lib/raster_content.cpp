// Page content for raster streams: a test pattern and pages from PNG images.
// Copyright 2026 The rastertobrellian authors.
#include "lib/raster_content.h"

#include <cstring>

const uint8_t RASTER_PATTERN_BARS[8][3] = {
    {255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
    {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0},
};

// 'Raster_MakeTestPattern()' - Colour bars over a grey ramp.
TRasterPage Raster_MakeTestPattern(uint32_t width, uint32_t height, uint32_t dpi) {
  TRasterPage page = Raster_MakeRGBPage(width, height, dpi, 255, 255, 255);
  uint32_t barsHeight = static_cast<uint32_t>(static_cast<uint64_t>(height) * 2 / 3);
  for (uint32_t i = 0; i < 8; ++i) {
    uint32_t x0 = static_cast<uint32_t>(static_cast<uint64_t>(i) * width / 8);
    uint32_t x1 = static_cast<uint32_t>(static_cast<uint64_t>(i + 1) * width / 8);
    const uint8_t* c = RASTER_PATTERN_BARS[i];
    Raster_FillRect(&page, x0, 0, x1 - x0, barsHeight, c[0], c[1], c[2]);
  }
  for (uint32_t x = 0; x < width; ++x) {
    uint8_t v = width > 1 ? static_cast<uint8_t>(static_cast<uint64_t>(x) * 255 / (width - 1)) : 0;
    Raster_FillRect(&page, x, barsHeight, 1, height - barsHeight, v, v, v);
  }
  return page;
}

// 'Raster_PageFromImage()' - Copy an RGB image into a new page.
TRasterPage Raster_PageFromImage(const TPngImage& image, uint32_t dpi) {
  TRasterPage page = Raster_MakeRGBPage(image.width, image.height, dpi, 255, 255, 255);
  if (image.channels == 3 && image.pixels.size() == page.data.size() && !page.data.empty())
    memcpy(page.data.data(), image.pixels.data(), page.data.size());
  return page;
}
