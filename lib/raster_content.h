// Page content for raster streams: a test pattern and pages from PNG images.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include "lib/png_io.h"
#include "lib/raster_writer.h"

// Colours of the eight bars of the test pattern, left to right: white,
// yellow, cyan, green, magenta, red, blue, black.
extern const uint8_t RASTER_PATTERN_BARS[8][3];

// 'Raster_MakeTestPattern()' - An RGB page whose upper two thirds hold the
// eight colour bars (bar i spans columns i * width / 8 to (i + 1) * width /
// 8) and whose lower third is a grey ramp from black at the left edge to
// white at the right edge (column x has value x * 255 / (width - 1)).
TRasterPage Raster_MakeTestPattern(uint32_t width, uint32_t height, uint32_t dpi);

// 'Raster_PageFromImage()' - An RGB page of the image's size holding its
// pixels (an RGB image, 3 channels).
TRasterPage Raster_PageFromImage(const TPngImage& image, uint32_t dpi);
