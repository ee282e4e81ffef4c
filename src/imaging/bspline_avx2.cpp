// Cubic B-spline resampling, eight output dots at a time with AVX2.
// Copyright 2026 The rastertobrellian authors.
//
// Each output value is the sum, over source rows m = -1 ... 2 and within
// each over columns n = -1 ... 2, of value x (wy x wx), accumulated in this
// order from 0 in single precision, then truncated and cut to its low 8
// bits.  Here one lane of a register is one output dot of one channel, so
// every lane performs exactly those IEEE operations in exactly that order:
// the bytes are those of the plain version.  No fused multiply-add is used
// (the build forbids contraction) and nothing is reassociated.
//
// Source rows are kept as three planes of floats (red, green, blue).  The
// source columns of tap n of eight neighbouring output dots lie within
// eight columns of each other whenever the image is not reduced by much,
// so one load of eight floats and one permutation give all eight; a group
// of columns for which that fails, and the columns after the last whole
// group, are computed one dot at a time from the same planes.
#include <cstdlib>
#include <cstring>

#include "imaging/resample.h"
#include "imaging/stages.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include "imaging/rgb_avx2.h"

namespace {

constexpr uint32_t kGroup = 8;   // output dots per register
constexpr uint32_t kPad = 8;     // floats after each plane row, read but never used

// Weights and source columns of the four taps of one output column.
struct TTaps {
  float weight[4];
  int32_t column[4];
};

// Eight neighbouring output columns: per tap, the first source column and
// each dot's distance from it, and the eight weights.
struct alignas(32) TGroupTaps {
  float weight[4][kGroup];
  int32_t index[4][kGroup];
  int32_t base[4];
  bool fast;      // every distance is below 8
  bool straight;  // and every tap reads eight consecutive columns
};

// Four source rows as planes of floats, in slots by row number.
struct TPlaneCache {
  float* slots[4];  // red, green and blue planes of one row, one after another
  int64_t tag[4];
  size_t planeFloats;
};

// 'Avx2_SplitRow()' - Eight RGB dots at a time from a plain row into the
// three planes: Rgb_SplitEight gathers the levels, which are widened and
// converted exactly to floats.  The dots after the last whole eight are
// converted one by one.
__attribute__((target("avx2"))) void Avx2_SplitRow(const uint8_t* p, uint32_t width, float* red, float* green,
                                                   float* blue) {
  uint32_t x = 0;
  for (; x + 8 <= width; x += 8, p += 24) {
    __m128i redGreen, blueBytes;
    Rgb_SplitEight(p, &redGreen, &blueBytes);
    _mm256_storeu_ps(red + x, _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(redGreen)));
    _mm256_storeu_ps(green + x, _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_srli_si128(redGreen, 8))));
    _mm256_storeu_ps(blue + x, _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(blueBytes)));
  }
  for (; x < width; ++x, p += 3) {
    red[x] = static_cast<float>(p[0]);
    green[x] = static_cast<float>(p[1]);
    blue[x] = static_cast<float>(p[2]);
  }
}

// 'Avx2_Row()' - The planes of source row y, converted on first use.
const float* Avx2_Row(TPlaneCache* cache, const TImageSource& source, int64_t y) {
  int32_t slot = static_cast<int32_t>(y & 3);
  float* row = cache->slots[slot];
  if (cache->tag[slot] == y) return row;
  float* red = row;
  float* green = row + cache->planeFloats;
  float* blue = green + cache->planeFloats;
  const uint8_t* p = source.origin + y * source.rowStride;
  if (source.colStride == 3) {
    Avx2_SplitRow(p, source.width, red, green, blue);
  } else {
    for (uint32_t x = 0; x < source.width; ++x, p += source.colStride) {
      red[x] = static_cast<float>(p[0]);
      green[x] = static_cast<float>(p[1]);
      blue[x] = static_cast<float>(p[2]);
    }
  }
  cache->tag[slot] = y;
  return row;
}

// 'Avx2_OneDot()' - One output dot from the planes, the plain way.
inline void Avx2_OneDot(const float* const rows[4], const float wy[4], const TTaps& taps,
                        size_t planeFloats, uint8_t* out) {
  for (int32_t k = 0; k < 3; ++k) {
    float acc = 0.0f;
    for (int32_t m = 0; m < 4; ++m) {
      const float* plane = rows[m] + k * planeFloats;
      for (int32_t n = 0; n < 4; ++n) acc = acc + plane[taps.column[n]] * (wy[m] * taps.weight[n]);
    }
    out[k] = static_cast<uint8_t>(static_cast<int32_t>(acc));
  }
}

// 'Avx2_Bytes()' - The low 8 bits of eight truncated sums, in the low half.
__attribute__((target("avx2"))) inline __m128i Avx2_Bytes(__m256 acc) {
  __m256i v = _mm256_and_si256(_mm256_cvttps_epi32(acc), _mm256_set1_epi32(0xFF));
  __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
  return _mm_packus_epi16(words, words);
}

// 'Avx2_Store()' - Eight dots' sums, one register per channel, written as
// R0 G0 B0 R1 G1 B1 ... R7 G7 B7.
__attribute__((target("avx2"))) inline void Avx2_Store(__m256 red, __m256 green, __m256 blue, uint8_t* out) {
  __m128i redGreen = _mm_unpacklo_epi64(Avx2_Bytes(red), Avx2_Bytes(green));
  __m128i blueBytes = Avx2_Bytes(blue);
  const __m128i rgFirst = _mm_setr_epi8(0, 8, -1, 1, 9, -1, 2, 10, -1, 3, 11, -1, 4, 12, -1, 5);
  const __m128i bFirst = _mm_setr_epi8(-1, -1, 0, -1, -1, 1, -1, -1, 2, -1, -1, 3, -1, -1, 4, -1);
  const __m128i rgLast = _mm_setr_epi8(13, -1, 6, 14, -1, 7, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i bLast = _mm_setr_epi8(-1, 5, -1, -1, 6, -1, -1, 7, -1, -1, -1, -1, -1, -1, -1, -1);
  __m128i first = _mm_or_si128(_mm_shuffle_epi8(redGreen, rgFirst), _mm_shuffle_epi8(blueBytes, bFirst));
  __m128i last = _mm_or_si128(_mm_shuffle_epi8(redGreen, rgLast), _mm_shuffle_epi8(blueBytes, bLast));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), first);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), last);
}

// 'Avx2_Tap()' - Tap n of one group, for the three planes of one row,
// multiplied by the weights w.
struct TTapValues {
  __m256 red, green, blue;
};
template <bool kStraight>
__attribute__((target("avx2"))) inline TTapValues Avx2_Tap(const float* red, size_t planeFloats,
                                                           const TGroupTaps& g, int32_t n, __m256 w) {
  const float* at = red + g.base[n];
  __m256 r = _mm256_loadu_ps(at);
  __m256 gr = _mm256_loadu_ps(at + planeFloats);
  __m256 b = _mm256_loadu_ps(at + 2 * planeFloats);
  if (!kStraight) {
    const __m256i index = _mm256_load_si256(reinterpret_cast<const __m256i*>(g.index[n]));
    r = _mm256_permutevar8x32_ps(r, index);
    gr = _mm256_permutevar8x32_ps(gr, index);
    b = _mm256_permutevar8x32_ps(b, index);
  }
  return TTapValues{_mm256_mul_ps(r, w), _mm256_mul_ps(gr, w), _mm256_mul_ps(b, w)};
}

// 'Avx2_Groups()' - The output dots of two groups (sixteen dots), or of one
// when second is null.  Each lane adds its sixteen products in the plain
// order; two groups are taken together only so that the processor has two
// independent chains of additions per channel to work on.  With kStraight
// every tap of both groups reads eight consecutive columns, so the loaded
// columns need no permutation.
template <bool kStraight>
__attribute__((target("avx2"))) void Avx2_Groups(const float* const rows[4], const float wy[4],
                                                 const TGroupTaps& first, const TGroupTaps* second,
                                                 size_t planeFloats, uint8_t* out) {
  __m256 r0 = _mm256_setzero_ps(), g0 = _mm256_setzero_ps(), b0 = _mm256_setzero_ps();
  __m256 r1 = _mm256_setzero_ps(), g1 = _mm256_setzero_ps(), b1 = _mm256_setzero_ps();
  for (int32_t m = 0; m < 4; ++m) {
    const __m256 wym = _mm256_set1_ps(wy[m]);
    for (int32_t n = 0; n < 4; ++n) {
      const __m256 w0 = _mm256_mul_ps(wym, _mm256_load_ps(first.weight[n]));
      TTapValues v = Avx2_Tap<kStraight>(rows[m], planeFloats, first, n, w0);
      r0 = _mm256_add_ps(r0, v.red);
      g0 = _mm256_add_ps(g0, v.green);
      b0 = _mm256_add_ps(b0, v.blue);
      if (second) {
        const __m256 w1 = _mm256_mul_ps(wym, _mm256_load_ps(second->weight[n]));
        TTapValues u = Avx2_Tap<kStraight>(rows[m], planeFloats, *second, n, w1);
        r1 = _mm256_add_ps(r1, u.red);
        g1 = _mm256_add_ps(g1, u.green);
        b1 = _mm256_add_ps(b1, u.blue);
      }
    }
  }
  Avx2_Store(r0, g0, b0, out);
  if (second) Avx2_Store(r1, g1, b1, out + kGroup * 3);
}

}  // namespace

int32_t Image_BSplineResampleAvx2(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                                  uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                                  size_t dstStride) {
  if (clipWidth > dstWidth) clipWidth = dstWidth;
  if (clipHeight > dstHeight) clipHeight = dstHeight;
  if (clipWidth == 0 || clipHeight == 0 || source.width == 0 || source.height == 0) return 0;

  const float sx = static_cast<float>(source.width) / static_cast<float>(dstWidth);
  const float sy = static_cast<float>(source.height) / static_cast<float>(dstHeight);
  const uint32_t groups = clipWidth / kGroup;
  const size_t planeFloats = (static_cast<size_t>(source.width) + kPad + 7) / 8 * 8;
  TTaps* taps = static_cast<TTaps*>(malloc(clipWidth * sizeof(TTaps)));
  TGroupTaps* groupTaps = static_cast<TGroupTaps*>(
      aligned_alloc(alignof(TGroupTaps), (groups ? groups : 1) * sizeof(TGroupTaps)));
  float* planes = static_cast<float*>(aligned_alloc(32, 4 * 3 * planeFloats * sizeof(float)));
  if (!taps || !groupTaps || !planes) {
    free(taps);
    free(groupTaps);
    free(planes);
    return 1;
  }
  TPlaneCache cache;
  cache.planeFloats = planeFloats;
  for (int32_t s = 0; s < 4; ++s) {
    cache.slots[s] = planes + s * 3 * planeFloats;
    cache.tag[s] = -1;
    // The padding after each plane's row is loaded with the columns beside
    // it but never selected; it is zeroed so that no undefined value is
    // ever read.  The rows themselves are written before they are read.
    for (int32_t c = 0; c < 3; ++c)
      memset(cache.slots[s] + c * planeFloats + source.width, 0, (planeFloats - source.width) * sizeof(float));
  }

  const int64_t lastColumn = source.width - 1, lastRow = source.height - 1;
  for (uint32_t i = 0; i < clipWidth; ++i) Resample_ColumnTaps(i, sx, lastColumn, taps[i].weight, taps[i].column);
  for (uint32_t g = 0; g < groups; ++g) {
    TGroupTaps& gt = groupTaps[g];
    gt.fast = true;
    gt.straight = true;
    for (int32_t n = 0; n < 4; ++n) {
      int32_t base = taps[g * kGroup].column[n];
      for (uint32_t k = 1; k < kGroup; ++k) {
        int32_t column = taps[g * kGroup + k].column[n];
        if (column < base) base = column;
      }
      gt.base[n] = base;
      for (uint32_t k = 0; k < kGroup; ++k) {
        const TTaps& t = taps[g * kGroup + k];
        int32_t distance = t.column[n] - base;
        gt.fast = gt.fast && distance < static_cast<int32_t>(kGroup);
        gt.straight = gt.straight && distance == static_cast<int32_t>(k);
        gt.index[n][k] = distance < static_cast<int32_t>(kGroup) ? distance : 0;
        gt.weight[n][k] = t.weight[n];
      }
    }
  }

  for (uint32_t j = 0; j < clipHeight; ++j) {
    float wy[4];
    int64_t rowIndex[4];
    Resample_RowTaps(j, sy, lastRow, wy, rowIndex);
    const float* rows[4];
    for (int32_t m = 0; m < 4; ++m) rows[m] = Avx2_Row(&cache, source, rowIndex[m]);
    uint8_t* out = dst + j * dstStride;
    for (uint32_t g = 0; g < groups;) {
      uint8_t* o = out + static_cast<size_t>(g) * kGroup * 3;
      if (!groupTaps[g].fast) {
        for (uint32_t k = 0; k < kGroup; ++k) Avx2_OneDot(rows, wy, taps[g * kGroup + k], planeFloats, o + 3 * k);
        ++g;
      } else if (g + 1 < groups && groupTaps[g + 1].fast) {
        if (groupTaps[g].straight && groupTaps[g + 1].straight)
          Avx2_Groups<true>(rows, wy, groupTaps[g], &groupTaps[g + 1], planeFloats, o);
        else
          Avx2_Groups<false>(rows, wy, groupTaps[g], &groupTaps[g + 1], planeFloats, o);
        g += 2;
      } else {
        Avx2_Groups<false>(rows, wy, groupTaps[g], nullptr, planeFloats, o);
        ++g;
      }
    }
    for (uint32_t i = groups * kGroup; i < clipWidth; ++i) Avx2_OneDot(rows, wy, taps[i], planeFloats, out + 3 * i);
  }
  free(taps);
  free(groupTaps);
  free(planes);
  return 0;
}

#else

int32_t Image_BSplineResampleAvx2(const TImageSource& source, uint32_t dstWidth, uint32_t dstHeight,
                                  uint32_t clipWidth, uint32_t clipHeight, uint8_t* dst,
                                  size_t dstStride) {
  return Image_BSplineResamplePortable(source, dstWidth, dstHeight, clipWidth, clipHeight, dst, dstStride);
}

#endif
