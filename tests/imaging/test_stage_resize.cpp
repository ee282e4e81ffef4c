// Tests of the cubic B-spline kernel and resampler against their reference.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

// 'Resize_Both()' - Resample with the production and the reference
// resampler and expect the same bytes.
void Resize_Both(const std::vector<uint8_t>& src, uint32_t sw, uint32_t sh, uint32_t dw,
                 uint32_t dh) {
  uint8_t* fast = nullptr;
  uint8_t* plain = nullptr;
  ASSERT_EQ(0, Image_BSplineResize(nullptr, src.data(), sw, sh, dw, dh, &fast));
  ASSERT_EQ(0, Ref_BSplineResize(src.data(), sw, sh, dw, dh, &plain));
  TStageBuffer a(fast), b(plain);
  ASSERT_NE(nullptr, fast);
  EXPECT_EQ(0, memcmp(fast, plain, static_cast<size_t>(dw) * dh * 3))
      << sw << "x" << sh << " -> " << dw << "x" << dh;
}

}  // namespace

TEST(BSplineWeight, KnotValues) {
  EXPECT_FLOAT_EQ(2.0f / 3.0f, Image_BSplineWeight(0.0f));
  EXPECT_FLOAT_EQ(1.0f / 6.0f, Image_BSplineWeight(1.0f));
  EXPECT_FLOAT_EQ(1.0f / 6.0f, Image_BSplineWeight(-1.0f));
  EXPECT_EQ(0.0f, Image_BSplineWeight(2.0f));
  EXPECT_EQ(0.0f, Image_BSplineWeight(-2.0f));
  EXPECT_EQ(0.0f, Image_BSplineWeight(-2.5f));
}

TEST(BSplineWeight, ArgumentAboveTwoGivesZero) {
  // The polynomial itself is not zero there; the cut makes it so.
  EXPECT_EQ(0.0f, Image_BSplineWeight(2.0001f));
  EXPECT_EQ(0.0f, Image_BSplineWeight(3.0f));
}

namespace {

// The cubic B-spline in its piecewise closed form, in double precision:
// (4 - 6x^2 + 3|x|^3) / 6 for |x| < 1, (2 - |x|)^3 / 6 for 1 <= |x| < 2,
// else 0.
double ClosedFormBSpline(double x) {
  double a = x < 0 ? -x : x;
  if (a < 1.0) return (4.0 - 6.0 * a * a + 3.0 * a * a * a) / 6.0;
  if (a < 2.0) return (2.0 - a) * (2.0 - a) * (2.0 - a) / 6.0;
  return 0.0;
}

}  // namespace

TEST(BSplineWeight, HalfKnotValues) {
  EXPECT_NEAR(23.0 / 48.0, Image_BSplineWeight(0.5f), 1e-6);
  EXPECT_NEAR(23.0 / 48.0, Image_BSplineWeight(-0.5f), 1e-6);
  EXPECT_NEAR(1.0 / 48.0, Image_BSplineWeight(1.5f), 1e-6);
  EXPECT_NEAR(1.0 / 48.0, Image_BSplineWeight(-1.5f), 1e-6);
}

TEST(BSplineWeight, ClosedFormOverTheSupport) {
  // The single-precision sum of cubes loses a few units of 1e-6 near |x| = 2.
  for (int32_t k = -2100; k <= 2100; ++k) {
    float x = static_cast<float>(k) / 1000.0f;
    EXPECT_NEAR(ClosedFormBSpline(x), Image_BSplineWeight(x), 1e-5) << x;
  }
}

TEST(BSplineWeight, FourTapsSumToOne) {
  // The weights of the four taps around any fraction add up to 1.
  for (int32_t k = 0; k < 1000; ++k) {
    float d = static_cast<float>(k) / 1000.0f;
    double sum = 0;
    for (int32_t n = -1; n <= 2; ++n) sum += Image_BSplineWeight(d - static_cast<float>(n));
    EXPECT_NEAR(1.0, sum, 1e-5) << d;
  }
}

TEST(BSplineResize, UpAndDownMatchReference) {
  std::vector<uint8_t> small = Stage_RandomImage(7, 5, 1);
  Resize_Both(small, 7, 5, 23, 17);
  Resize_Both(small, 7, 5, 3, 2);
  Resize_Both(small, 7, 5, 7, 5);
  std::vector<uint8_t> mid = Stage_RandomImage(301, 197, 2);
  Resize_Both(mid, 301, 197, 517, 338);
  Resize_Both(mid, 301, 197, 90, 61);
  Resize_Both(mid, 301, 197, 301, 400);
}

TEST(BSplineResize, SinglePixelSourceRepeatsItsEdge) {
  std::vector<uint8_t> one = {10, 200, 255};
  Resize_Both(one, 1, 1, 4, 3);
  uint8_t* out = nullptr;
  ASSERT_EQ(0, Image_BSplineResize(nullptr, one.data(), 1, 1, 4, 3, &out));
  TStageBuffer hold(out);
  for (int i = 0; i < 4 * 3 * 3; ++i) {
    EXPECT_LE(out[i], one[i % 3]) << i;
    EXPECT_GE(out[i] + 1, one[i % 3]) << i;
  }
}

TEST(BSplineResize, UniformImageStaysUniformWithinOne) {
  for (uint8_t v : {0, 1, 77, 128, 254, 255}) {
    std::vector<uint8_t> flat(static_cast<size_t>(211) * 97 * 3, v);
    uint8_t* out = nullptr;
    ASSERT_EQ(0, Image_BSplineResize(nullptr, flat.data(), 211, 97, 530, 244, &out));
    TStageBuffer hold(out);
    for (size_t i = 0; i < static_cast<size_t>(530) * 244 * 3; ++i) {
      ASSERT_LE(out[i], v) << i;
      ASSERT_GE(out[i] + 1, v) << i;
    }
  }
}

TEST(BSplineResize, EmptyTargetAndNullOut) {
  std::vector<uint8_t> src = Stage_RandomImage(4, 4, 3);
  uint8_t* out = nullptr;
  EXPECT_EQ(0, Image_BSplineResize(nullptr, src.data(), 4, 4, 0, 0, &out));
  EXPECT_NE(nullptr, out);
  free(out);
  EXPECT_EQ(1, Image_BSplineResize(nullptr, src.data(), 4, 4, 2, 2, nullptr));
}
