// Resampling from a strided RGB source into part of a destination image.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// An RGB source read through strides: pixel (x, y) starts at
// origin + x * colStride + y * rowStride.  A plain image has colStride 3 and
// rowStride 3 * width; a page turned a quarter counter-clockwise is read
// from its last column with colStride = line length and rowStride = -3.
struct TImageSource {
  const uint8_t* origin;
  ptrdiff_t colStride;
  ptrdiff_t rowStride;
  uint32_t width;
  uint32_t height;
};

// 'Image_BSplineResample()' - Cubic B-spline resampling of source to a
// dstWidth x dstHeight grid, of which only columns below clipWidth and rows
// below clipHeight are produced, written with dstStride bytes per row.  Each
// produced pixel is the one Image_BSplineResize gives for the same sizes.
// Returns 0, or 1 when working memory could not be had (nothing written).
int32_t Image_BSplineResample(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                              uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                              size_t dstStride);

// The two ways Image_BSplineResample takes, for the tests that hold them to
// each other and to the plain version: four lanes (R, G, B and a spare) per
// output dot, portable; and eight output dots per register with AVX2 (only
// where Cpu_HaveAvx2() says the processor has it).  Same arguments, same
// bytes.
int32_t Image_BSplineResamplePortable(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                                      uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                                      size_t dstStride);
int32_t Image_BSplineResampleAvx2(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                                  uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                                  size_t dstStride);

// 'Resample_ColumnTaps()' - The four taps n = -1 ... 2 of output column i
// for the column scale sx: weights K(dx - n) and source columns clamped to
// 0 ... lastColumn, where x = i x sx - 0.5, fx = floor(x), dx = x - fx.
void Resample_ColumnTaps(uint32_t i, float sx, int64_t lastColumn, float weight[4], int32_t column[4]);

// 'Resample_RowTaps()' - The four taps m = -1 ... 2 of output row j for the
// row scale sy: weights K(m - dy) and source rows clamped to 0 ... lastRow.
void Resample_RowTaps(uint32_t j, float sy, int64_t lastRow, float weight[4], int64_t row[4]);

// 'Image_CopySource()' - Copy the top-left width x height pixels of source
// into dst (dstStride bytes per row), in cache-sized tiles.
void Image_CopySource(const TImageSource& source, uint32_t width, uint32_t height, uint8_t* dst,
                      size_t dstStride);
