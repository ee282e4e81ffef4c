// Cubic B-spline resampling of RGB images in single-precision float.
// Copyright 2026 The rastertobrellian authors.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "imaging/resample.h"
#include "imaging/stages.h"
#include "util/cpu.h"

namespace {

// Four floats handled lane by lane: each lane is an ordinary IEEE single
// operation (no contraction, no reassociation), so a lane computes exactly
// what the scalar expression computes.  Lanes hold R, G, B and a spare.
typedef float v4sf __attribute__((vector_size(16)));

// Weights and source offsets of one output column.
struct TColumnTaps {
  v4sf weight;         // K(dx - n) for n = -1, 0, 1, 2
  int32_t offset[4];   // clamped source column of each tap, in v4sf units
};

// Source rows converted to floats, kept in four slots by row number; the
// four rows of one output row always fall into four different slots.
struct TRowCache {
  v4sf* slots[4];
  int64_t tag[4];
};

// 'Resample_PlusPart()' - t when t > 0, else 0.
inline float Resample_PlusPart(float t) { return t > 0.0f ? t : 0.0f; }

// 'Resample_Row()' - Source row y as floats, converting it on first use.
const v4sf* Resample_Row(TRowCache* cache, const TImageSource& source, int64_t y) {
  int32_t slot = static_cast<int32_t>(y & 3);
  v4sf* row = cache->slots[slot];
  if (cache->tag[slot] == y) return row;
  const uint8_t* p = source.origin + y * source.rowStride;
  for (uint32_t x = 0; x < source.width; ++x, p += source.colStride)
    row[x] = v4sf{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]), 0.0f};
  cache->tag[slot] = y;
  return row;
}

// 'Resample_Clamp()' - v limited to 0 ... last.
inline int64_t Resample_Clamp(int64_t v, int64_t last) { return v < 0 ? 0 : (v > last ? last : v); }

}  // namespace

// 'Image_BSplineWeight()' - The cubic B-spline kernel K(x); arguments above
// 2.0 give 0.  K(0) = 2/3, K(+-1) = 1/6, K(+-2) = 0.
float Image_BSplineWeight(float x) {
  if (x > 2.0f) return 0.0f;
  float a = Resample_PlusPart(x + 2.0f);
  float b = Resample_PlusPart(x + 1.0f);
  float c = Resample_PlusPart(x);
  float d = Resample_PlusPart(x - 1.0f);
  return (a * a * a - 4.0f * (b * b * b) + 6.0f * (c * c * c) - 4.0f * (d * d * d)) * 0.16666667f;
}

void Resample_ColumnTaps(uint32_t i, float sx, int64_t lastColumn, float weight[4], int32_t column[4]) {
  float x = static_cast<float>(i) * sx - 0.5f;
  float fx = std::floor(x);
  float dx = x - fx;
  for (int32_t n = -1; n <= 2; ++n) {
    weight[n + 1] = Image_BSplineWeight(dx - static_cast<float>(n));
    column[n + 1] = static_cast<int32_t>(Resample_Clamp(static_cast<int64_t>(fx) + n, lastColumn));
  }
}

void Resample_RowTaps(uint32_t j, float sy, int64_t lastRow, float weight[4], int64_t row[4]) {
  float y = static_cast<float>(j) * sy - 0.5f;
  float fy = std::floor(y);
  float dy = y - fy;
  for (int32_t m = -1; m <= 2; ++m) {
    weight[m + 1] = Image_BSplineWeight(static_cast<float>(m) - dy);
    row[m + 1] = Resample_Clamp(static_cast<int64_t>(fy) + m, lastRow);
  }
}

// 'Image_BSplineResamplePortable()' - Each output value is the sum, over source rows
// m = -1 ... 2 and within each over columns n = -1 ... 2, of value x (wy x wx),
// accumulated in this order from 0 in single precision, then truncated and
// cut to its low 8 bits.  The kernel is evaluated once per output row and
// column (it depends on nothing else), and each source row is converted to
// floats once while it is in use.
int32_t Image_BSplineResamplePortable(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                                      uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                                      size_t dstStride) {
  if (clipWidth > dstWidth) clipWidth = dstWidth;
  if (clipHeight > dstHeight) clipHeight = dstHeight;
  if (clipWidth == 0 || clipHeight == 0 || source.width == 0 || source.height == 0) return 0;

  float sx = static_cast<float>(source.width) / static_cast<float>(dstWidth);
  float sy = static_cast<float>(source.height) / static_cast<float>(dstHeight);
  size_t rowBytes = (static_cast<size_t>(source.width) * sizeof(v4sf) + 63) / 64 * 64;
  TColumnTaps* columns = static_cast<TColumnTaps*>(
      aligned_alloc(64, (clipWidth * sizeof(TColumnTaps) + 63) / 64 * 64));
  uint8_t* rowBlock = static_cast<uint8_t*>(aligned_alloc(64, 4 * rowBytes));
  if (!columns || !rowBlock) {
    free(columns);
    free(rowBlock);
    return 1;
  }
  TRowCache cache;
  for (int32_t s = 0; s < 4; ++s) {
    cache.slots[s] = reinterpret_cast<v4sf*>(rowBlock + s * rowBytes);
    cache.tag[s] = -1;
  }

  const int64_t lastColumn = source.width - 1, lastRow = source.height - 1;
  for (uint32_t i = 0; i < clipWidth; ++i) {
    float weight[4];
    Resample_ColumnTaps(i, sx, lastColumn, weight, columns[i].offset);
    columns[i].weight = v4sf{weight[0], weight[1], weight[2], weight[3]};
  }

  for (uint32_t j = 0; j < clipHeight; ++j) {
    float weight[4];
    int64_t rowIndex[4];
    Resample_RowTaps(j, sy, lastRow, weight, rowIndex);
    const v4sf* rows[4];
    v4sf wy[4];
    for (int32_t m = 0; m < 4; ++m) {
      rows[m] = Resample_Row(&cache, source, rowIndex[m]);
      wy[m] = v4sf{weight[m], weight[m], weight[m], weight[m]};
    }
    uint8_t* out = dst + j * dstStride;
    for (uint32_t i = 0; i < clipWidth; ++i, out += 3) {
      const TColumnTaps& c = columns[i];
      const int32_t o0 = c.offset[0], o1 = c.offset[1], o2 = c.offset[2], o3 = c.offset[3];
      v4sf acc = {0.0f, 0.0f, 0.0f, 0.0f};
      for (int32_t m = 0; m < 4; ++m) {
        const v4sf* r = rows[m];
        v4sf w = wy[m] * c.weight;   // wy x wx for the four columns
        acc = acc + r[o0] * v4sf{w[0], w[0], w[0], w[0]};
        acc = acc + r[o1] * v4sf{w[1], w[1], w[1], w[1]};
        acc = acc + r[o2] * v4sf{w[2], w[2], w[2], w[2]};
        acc = acc + r[o3] * v4sf{w[3], w[3], w[3], w[3]};
      }
      out[0] = static_cast<uint8_t>(static_cast<int32_t>(acc[0]));
      out[1] = static_cast<uint8_t>(static_cast<int32_t>(acc[1]));
      out[2] = static_cast<uint8_t>(static_cast<int32_t>(acc[2]));
    }
  }
  free(columns);
  free(rowBlock);
  return 0;
}

// 'Image_BSplineResample()' - The AVX2 way where the processor has it, else
// the portable one; both give the same bytes.
int32_t Image_BSplineResample(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                              uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                              size_t dstStride) {
  if (Cpu_HaveAvx2())
    return Image_BSplineResampleAvx2(source, dstWidth, dstHeight, clipWidth, clipHeight, dst, dstStride);
  return Image_BSplineResamplePortable(source, dstWidth, dstHeight, clipWidth, clipHeight, dst, dstStride);
}

// 'Image_BSplineResize()' - Resample the srcWidth x srcHeight x 3 image src
// to dstWidth x dstHeight x 3 into a new buffer stored in *out (the caller
// frees it with free()).  Returns 0; 1 with *out null when memory ran out.
int32_t Image_BSplineResize(TPrintingTask*, const uint8_t* src, uint32_t srcWidth,
                            uint32_t srcHeight, uint32_t dstWidth, uint32_t dstHeight,
                            uint8_t** out) {
  if (!out) return 1;
  size_t bytes = static_cast<size_t>(dstWidth) * dstHeight * 3;
  uint8_t* dst = static_cast<uint8_t*>(calloc(bytes ? bytes : 1, 1));
  *out = dst;
  if (!dst) return 1;
  if (!src) return 0;
  TImageSource source = {src, 3, static_cast<ptrdiff_t>(srcWidth) * 3, srcWidth, srcHeight};
  if (Image_BSplineResample(source, dstWidth, dstHeight, dstWidth, dstHeight, dst,
                            static_cast<size_t>(dstWidth) * 3) != 0) {
    free(dst);
    *out = nullptr;
    return 1;
  }
  return 0;
}
