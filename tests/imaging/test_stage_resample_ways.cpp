// The two ways of the resampler (portable, AVX2) held to the plain version
// and to each other, byte for byte, over enlargements, reductions (where
// the AVX2 way falls back dot by dot), odd widths, clipped outputs and
// turned sources.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "imaging/resample.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"
#include "util/cpu.h"

namespace {

using TResampleWay = int32_t (*)(const TImageSource&, uint32_t, uint32_t, uint32_t, uint32_t, uint8_t*, size_t);

std::vector<std::pair<std::string, TResampleWay>> Resample_Ways() {
  std::vector<std::pair<std::string, TResampleWay>> ways = {{"portable", Image_BSplineResamplePortable},
                                                            {"chosen", Image_BSplineResample}};
  if (Cpu_HaveAvx2()) ways.push_back({"avx2", Image_BSplineResampleAvx2});
  return ways;
}

// 'Resample_AgainstPlain()' - Every way on a plain sw x sh image against
// the plain resampler, with a guard byte after the output.
void Resample_AgainstPlain(uint32_t sw, uint32_t sh, uint32_t dw, uint32_t dh, uint32_t seed) {
  std::vector<uint8_t> src = Stage_RandomImage(sw, sh, seed);
  uint8_t* plain = nullptr;
  ASSERT_EQ(0, Ref_BSplineResize(src.data(), sw, sh, dw, dh, &plain));
  TStageBuffer hold(plain);
  const size_t bytes = static_cast<size_t>(dw) * dh * 3;
  TImageSource source = {src.data(), 3, static_cast<ptrdiff_t>(sw) * 3, sw, sh};
  for (const auto& way : Resample_Ways()) {
    std::vector<uint8_t> out(bytes + 1, 0xA5);
    ASSERT_EQ(0, way.second(source, dw, dh, dw, dh, out.data(), static_cast<size_t>(dw) * 3));
    EXPECT_EQ(0xA5, out[bytes]) << way.first;
    EXPECT_EQ(0, memcmp(out.data(), plain, bytes))
        << way.first << ": " << sw << "x" << sh << " -> " << dw << "x" << dh;
  }
}

}  // namespace

TEST(ResampleWays, EnlargementsAndSlightReductionsMatchThePlainVersion) {
  Resample_AgainstPlain(7, 5, 23, 17, 1);
  Resample_AgainstPlain(301, 197, 517, 338, 2);
  Resample_AgainstPlain(211, 137, 216, 140, 3);  // the card-to-panel case in small
  Resample_AgainstPlain(216, 140, 211, 137, 4);  // and back
  Resample_AgainstPlain(301, 197, 301, 197, 5);
}

TEST(ResampleWays, StrongReductionsFallBackDotByDotAndStillMatch) {
  Resample_AgainstPlain(301, 197, 90, 61, 6);
  Resample_AgainstPlain(400, 50, 41, 50, 7);
  Resample_AgainstPlain(97, 31, 11, 3, 8);
}

TEST(ResampleWays, EveryWidthUpToFortyAndOnePixelSources) {
  for (uint32_t w = 1; w <= 40; ++w) Resample_AgainstPlain(w, 3, w + 5, 4, 100 + w);
  for (uint32_t w = 1; w <= 40; ++w) Resample_AgainstPlain(17, 3, w, 2, 200 + w);
  Resample_AgainstPlain(1, 1, 33, 9, 9);
}

// A source read through strides (a page turned a quarter: columns are
// lines of the page, read from the last one) and an output clipped to part
// of its grid, written with a wider stride: every way gives, inside the
// clip, the bytes of the plain resampler on the turned page written out,
// and leaves the rest of the output alone.
TEST(ResampleWays, TurnedSourcesAndClippedOutputsMatchThePlainVersion) {
  const uint32_t pageW = 131, pageH = 203;  // a portrait page
  std::vector<uint8_t> page = Stage_RandomImage(pageW, pageH, 10);
  const size_t line = static_cast<size_t>(pageW) * 3;
  TImageSource turned = {page.data() + (pageW - 1) * 3, static_cast<ptrdiff_t>(line), -3, pageH, pageW};
  // The same turn written out as a plain pageH x pageW image.
  std::vector<uint8_t> plainTurned(page.size());
  for (uint32_t y = 0; y < pageW; ++y)
    for (uint32_t x = 0; x < pageH; ++x)
      memcpy(&plainTurned[(static_cast<size_t>(y) * pageH + x) * 3], &page[x * line + (pageW - 1 - y) * 3], 3);
  const uint32_t dw = 210, dh = 135, clipW = 197, clipH = 130;
  uint8_t* plain = nullptr;
  ASSERT_EQ(0, Ref_BSplineResize(plainTurned.data(), pageH, pageW, dw, dh, &plain));
  TStageBuffer hold(plain);
  const size_t stride = static_cast<size_t>(dw) * 3 + 7;
  for (const auto& way : Resample_Ways()) {
    std::vector<uint8_t> out(stride * dh, 0x3C);
    ASSERT_EQ(0, way.second(turned, dw, dh, clipW, clipH, out.data(), stride));
    for (uint32_t y = 0; y < dh; ++y) {
      if (y < clipH) {
        ASSERT_EQ(0, memcmp(&out[y * stride], plain + static_cast<size_t>(y) * dw * 3, clipW * 3))
            << way.first << " row " << y;
      }
      for (size_t x = (y < clipH ? clipW * 3 : 0); x < stride; ++x)
        ASSERT_EQ(0x3C, out[y * stride + x]) << way.first << " row " << y << " byte " << x;
    }
  }
}
