// Golden digests of the resampler and the luminance: the printed dots must
// not depend on the compiler, its flags or the machine.
// Copyright 2026 The rastertobrellian authors.
//
// Each test hashes the output bytes of a stage for fixed inputs and compares
// the digest with the one recorded from a build whose output matches the
// plain reference versions byte for byte.  A packager's flags that contract,
// reassociate or vectorise the float arithmetic differently (for example
// fused multiply-add or fast-math) change some bytes and so the digest.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/digest.h"
#include "support/stage_helpers.h"

namespace {

// The digest of the 2^24 luminance bytes of (R, G, B) = (c >> 16, c >> 8, c)
// for c = 0 ... 2^24 - 1.
constexpr uint64_t kLumaDigest = 0x619f7b7aa232690cull;


// 'Golden_Image()' - A width x height x 3 image of smooth ramps with noise
// from a fixed 64-bit generator (the same on every platform), so that the
// resampler sees every level and sharp steps.
std::vector<uint8_t> Golden_Image(uint32_t width, uint32_t height, uint64_t seed) {
  std::vector<uint8_t> v(static_cast<size_t>(width) * height * 3);
  uint64_t s = seed;
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      s = s * 6364136223846793005ull + 1442695040888963407ull;
      uint8_t noise = static_cast<uint8_t>(s >> 56);
      uint8_t* p = &v[(static_cast<size_t>(y) * width + x) * 3];
      p[0] = static_cast<uint8_t>(x * 255u / (width ? width : 1));
      p[1] = static_cast<uint8_t>((x / 7 + y / 5) * 9u);
      p[2] = (x / 16 + y / 16) % 3 == 0 ? noise : static_cast<uint8_t>(255 - y % 256);
    }
  }
  return v;
}

// 'Golden_Resize()' - The digest of Image_BSplineResize for one size pair.
uint64_t Golden_Resize(uint32_t sw, uint32_t sh, uint32_t dw, uint32_t dh, uint64_t seed) {
  std::vector<uint8_t> src = Golden_Image(sw, sh, seed);
  uint8_t* out = nullptr;
  EXPECT_EQ(0, Image_BSplineResize(nullptr, src.data(), sw, sh, dw, dh, &out));
  TStageBuffer hold(out);
  return out ? Test_Fnv(out, static_cast<size_t>(dw) * dh * 3) : 0;
}

}  // namespace

// The CR80 page at 600 dpi fitted to the panel, and smaller enlargements
// and reductions in both directions.
TEST(GoldenResample, FixedInputsGiveTheRecordedDigests) {
  EXPECT_EQ(0x0c96407fa9adc7d4ull, Golden_Resize(2022, 1276, 2072, 1307, 1));
  EXPECT_EQ(0x94bf229c86b2db02ull, Golden_Resize(1011, 638, 1036, 653, 2));
  EXPECT_EQ(0x836ca26572c0728cull, Golden_Resize(300, 200, 1036, 664, 3));
  EXPECT_EQ(0x360e638232651066ull, Golden_Resize(2500, 1600, 1036, 663, 4));
  EXPECT_EQ(0xc56455b3cc01ec61ull, Golden_Resize(17, 5, 40, 31, 5));
}

// The same digest from the plain reference on a small case, so that the
// recorded values are those of the reference formula and not only of the
// production code.
TEST(GoldenResample, ReferenceGivesTheSameDigest) {
  std::vector<uint8_t> src = Golden_Image(300, 200, 3);
  uint8_t* out = nullptr;
  ASSERT_EQ(0, Ref_BSplineResize(src.data(), 300, 200, 1036, 664, &out));
  TStageBuffer hold(out);
  EXPECT_EQ(Golden_Resize(300, 200, 1036, 664, 3), Test_Fnv(out, 1036u * 664u * 3u));
}

// A portrait CR80 page through the whole conversion: turn, fit, resample
// and the white margin.
TEST(GoldenResample, PortraitPageConversionGivesTheRecordedDigest) {
  auto task = Stage_MakeTask(1060);
  cups_page_header2_t header = Stage_Header(1276, 2022, 1276 * 3);
  Stage_SetPage(task.get(), &header, Golden_Image(1276, 2022, 6));
  uint8_t* out = nullptr;
  ASSERT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out));
  TStageBuffer hold(out);
  EXPECT_EQ(0x0337f3392105ba9dull, Test_Fnv(out, 2072u * 1328u * 3u));
}

// All 2^24 colours: Image_Luminance against the double formula, and the
// digest of the 2^24 results in R, G, B order.
TEST(GoldenLuminance, AllColoursMatchTheFormulaAndTheRecordedDigest) {
  std::vector<uint8_t> y(1u << 24);
  size_t mismatches = 0;
  for (uint32_t c = 0; c < (1u << 24); ++c) {
    uint8_t r = static_cast<uint8_t>(c >> 16), g = static_cast<uint8_t>(c >> 8),
            b = static_cast<uint8_t>(c);
    double sum = 0.299 * r + 0.587 * g + 0.114 * b;
    uint8_t expected = sum > 255.0 ? 0xFF : static_cast<uint8_t>(static_cast<int>(sum));
    y[c] = Image_Luminance(r, g, b);
    mismatches += y[c] != expected;
  }
  EXPECT_EQ(0u, mismatches);
  EXPECT_EQ(kLumaDigest, Test_Fnv(y.data(), y.size()));
}

// The plane conversion used for UV and overlay pages gives the same 2^24
// results, fed through panels of model 1060 one after another.
TEST(GoldenLuminance, GrayPlaneOfAllColoursGivesTheRecordedDigest) {
  auto task = Stage_MakeTask(1060);
  const size_t dots = 2072u * 1328u;
  std::vector<uint8_t> rgb(dots * 3);
  uint64_t hash = TEST_FNV_START;
  for (uint32_t first = 0; first < (1u << 24); first += dots) {
    for (size_t i = 0; i < dots; ++i) {
      uint32_t c = static_cast<uint32_t>((first + i) & 0xFFFFFFu);
      rgb[3 * i] = static_cast<uint8_t>(c >> 16);
      rgb[3 * i + 1] = static_cast<uint8_t>(c >> 8);
      rgb[3 * i + 2] = static_cast<uint8_t>(c);
    }
    uint8_t* plane = nullptr;
    ASSERT_EQ(0, Image_ToGrayPlane(task.get(), rgb.data(), &plane));
    ASSERT_NE(nullptr, plane);
    TStageBuffer hold(plane);
    size_t n = (1u << 24) - first < dots ? (1u << 24) - first : dots;
    hash = Test_Fnv(plane, n, hash);
  }
  EXPECT_EQ(kLumaDigest, hash);
}
