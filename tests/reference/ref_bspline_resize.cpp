// Reference cubic B-spline resampler: the kernel evaluated for every tap.
// Copyright 2026 The rastertobrellian authors.
#include <cmath>
#include <cstdlib>

#include "reference/reference_stages.h"

namespace {

float Ref_P(float t) { return t > 0.0f ? t : 0.0f; }

int32_t Ref_Clamp(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : (v > hi ? hi : v); }

}  // namespace

// 'Ref_BSplineWeight()' - K(x) = (P(x+2)^3 - 4 P(x+1)^3 + 6 P(x)^3 -
// 4 P(x-1)^3) x 0.16666667, 0 above 2.0.
float Ref_BSplineWeight(float x) {
  if (x > 2.0f) return 0.0f;
  float a = Ref_P(x + 2.0f), b = Ref_P(x + 1.0f), c = Ref_P(x), d = Ref_P(x - 1.0f);
  return (a * a * a - 4.0f * (b * b * b) + 6.0f * (c * c * c) - 4.0f * (d * d * d)) * 0.16666667f;
}

// 'Ref_BSplineResize()' - For each output pixel, sum over m then n of
// value x (K(m - dy) x K(dx - n)) per channel, truncated, low 8 bits.
int32_t Ref_BSplineResize(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                          uint32_t dstWidth, uint32_t dstHeight, uint8_t** out,
                          uint32_t rowStep) {
  uint8_t* dst = static_cast<uint8_t*>(calloc(static_cast<size_t>(dstWidth) * dstHeight * 3 + 1, 1));
  *out = dst;
  float sx = static_cast<float>(srcWidth) / static_cast<float>(dstWidth);
  float sy = static_cast<float>(srcHeight) / static_cast<float>(dstHeight);
  for (uint32_t j = 0; j < dstHeight; j += rowStep) {
    for (uint32_t i = 0; i < dstWidth; ++i) {
      float y = static_cast<float>(j) * sy - 0.5f;
      float x = static_cast<float>(i) * sx - 0.5f;
      float fy = std::floor(y), fx = std::floor(x);
      float dy = y - fy, dx = x - fx;
      float sum[3] = {0.0f, 0.0f, 0.0f};
      for (int32_t m = -1; m <= 2; ++m) {
        float wy = Ref_BSplineWeight(static_cast<float>(m) - dy);
        int32_t row = Ref_Clamp(static_cast<int32_t>(fy) + m, 0, static_cast<int32_t>(srcHeight) - 1);
        for (int32_t n = -1; n <= 2; ++n) {
          float wx = Ref_BSplineWeight(dx - static_cast<float>(n));
          float weight = wy * wx;
          int32_t col = Ref_Clamp(static_cast<int32_t>(fx) + n, 0, static_cast<int32_t>(srcWidth) - 1);
          const uint8_t* p = src + (static_cast<size_t>(row) * srcWidth + col) * 3;
          for (int32_t k = 0; k < 3; ++k) sum[k] += static_cast<float>(p[k]) * weight;
        }
      }
      uint8_t* d = dst + (static_cast<size_t>(j) * dstWidth + i) * 3;
      for (int32_t k = 0; k < 3; ++k) d[k] = static_cast<uint8_t>(static_cast<int32_t>(sum[k]));
    }
  }
  return 0;
}
