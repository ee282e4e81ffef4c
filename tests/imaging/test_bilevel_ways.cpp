// The two ways of the Floyd-Steinberg diffusion (one row at a time, and
// four rows at once with AVX2) held to the rule written plainly, with and
// without a mask of kept dots, on random images of many sizes.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "imaging/bilevel_fs.h"
#include "util/cpu.h"

namespace {

// 'Ways_Lighten()' - v + ((255 - v) x 40) / 100, as the rule writes it.
uint8_t Ways_Lighten(int32_t v) { return static_cast<uint8_t>(v + ((255 - v) * 40) / 100); }

// 'Ways_Plain()' - The rule dot by dot, tap by tap: lighten the first
// samples, then for each dot in row order print below threshold, carry
// e = level or level - 255, and push e x w / 16 into the four taps that
// lie inside the panel less its last row and column, clamping each write.
// A kept dot (keep byte 255) prints and pushes nothing.
std::vector<uint8_t> Ways_Plain(const std::vector<uint8_t>& rgb, int32_t W, int32_t H, int32_t threshold,
                                const std::vector<uint8_t>* keep) {
  std::vector<int32_t> level(static_cast<size_t>(W) * H);
  for (size_t i = 0; i < level.size(); ++i) level[i] = Ways_Lighten(rgb[3 * i]);
  std::vector<uint8_t> mono(level.size());
  const int32_t dx[4] = {1, -1, 0, 1}, dy[4] = {0, 1, 1, 1}, w[4] = {7, 3, 5, 1};
  for (int32_t y = 0; y < H; ++y) {
    for (int32_t x = 0; x < W; ++x) {
      size_t i = static_cast<size_t>(y) * W + x;
      if (keep && (*keep)[i] == 255) {
        mono[i] = 255;
        continue;
      }
      int32_t g = level[i];
      mono[i] = g < threshold ? 255 : 0;
      int32_t e = g < threshold ? g : g - 255;
      for (int t = 0; t < 4; ++t) {
        int32_t tx = x + dx[t], ty = y + dy[t];
        if (tx < 0 || ty < 0 || tx >= W - 1 || ty >= H - 1) continue;
        int32_t& target = level[static_cast<size_t>(ty) * W + tx];
        int32_t sum = target + e * w[t] / 16;
        target = sum < 0 ? 0 : (sum > 255 ? 255 : sum);
      }
    }
  }
  return mono;
}

// 'Ways_Image()' - A random W x H image: pure black dots and runs of them,
// pure white, first samples near the threshold, and random bytes.
std::vector<uint8_t> Ways_Image(int32_t W, int32_t H, std::mt19937* rng) {
  std::vector<uint8_t> rgb(static_cast<size_t>(W) * H * 3);
  for (size_t i = 0; i < rgb.size(); i += 3) {
    uint32_t kind = (*rng)() % 10;
    if (kind < 2 || (kind < 4 && i >= 3 && rgb[i - 3] == 0 && rgb[i - 2] == 0 && rgb[i - 1] == 0))
      memset(&rgb[i], 0, 3);
    else if (kind < 5)
      memset(&rgb[i], 255, 3);
    else
      for (int c = 0; c < 3; ++c) rgb[i + c] = static_cast<uint8_t>((*rng)());
  }
  return rgb;
}

// 'Ways_Check()' - Both ways on one image against the plain rule, with the
// mask given apart and in the panel itself, and nothing written around it.
void Ways_Check(const std::vector<uint8_t>& rgb, int32_t W, int32_t H, int32_t threshold, bool masked,
                const std::string& what) {
  const size_t dots = static_cast<size_t>(W) * H;
  std::vector<uint8_t> keep(dots);
  for (size_t i = 0; i < dots; ++i) keep[i] = (rgb[3 * i] | rgb[3 * i + 1] | rgb[3 * i + 2]) == 0 ? 255 : 0;
  std::vector<uint8_t> expected = Ways_Plain(rgb, W, H, threshold, masked ? &keep : nullptr);
  uint8_t lighten[256];
  for (int32_t v = 0; v < 256; ++v) lighten[v] = Ways_Lighten(v);
  for (int way = 0; way < 2; ++way) {
    if (way == 1 && !Cpu_HaveAvx2()) continue;
    for (bool inPlace : {false, true}) {
      if (inPlace && !masked) continue;
      std::vector<uint8_t> mono(dots + 64, 0x5A);
      uint8_t* panel = mono.data() + 32;
      if (inPlace) memcpy(panel, keep.data(), dots);
      const uint8_t* k = !masked ? nullptr : (inPlace ? panel : keep.data());
      std::vector<uint8_t> row(static_cast<size_t>(W));
      if (way == 0)
        Bilevel_FloydSteinberg(rgb.data(), panel, row.data(), W, H, threshold, lighten, k);
      else
        ASSERT_TRUE(Bilevel_FloydSteinbergWave(rgb.data(), panel, W, H, threshold, lighten, k)) << what;
      std::string where = what + (way ? " four rows" : " one row") + (inPlace ? " in place" : "");
      for (size_t i = 0; i < 32; ++i) ASSERT_EQ(0x5A, mono[i]) << where;
      for (size_t i = 0; i < 32; ++i) ASSERT_EQ(0x5A, mono[32 + dots + i]) << where;
      for (size_t i = 0; i < dots; ++i)
        ASSERT_EQ(expected[i], panel[i]) << where << " dot " << i % W << "," << i / W;
    }
  }
}

}  // namespace

// The four-rows way computes the lightened level without the table.
TEST(BilevelWays, LightenedLevelByMultiplyHighForEveryValue) {
  for (int32_t v = 0; v < 256; ++v) {
    int32_t u2 = 2 * (255 - v);
    EXPECT_EQ(Ways_Lighten(v), v + ((u2 * 13108) >> 16)) << v;
  }
}

// Every width up to 70 and around the block sizes, heights from the
// smallest to past a band of four rows, thresholds inside and outside the
// levels, with and without kept dots.
TEST(BilevelWays, BothWaysFollowTheRuleOnRandomImages) {
  std::mt19937 rng(2407);
  std::vector<int32_t> widths;
  for (int32_t w = 3; w <= 70; ++w) widths.push_back(w);
  for (int32_t w : {95, 96, 97, 127, 128, 129, 1036}) widths.push_back(w);
  for (int32_t W : widths) {
    for (int32_t H : {3, 4, 5, 6, 7, 9, 10, 13}) {
      int32_t threshold = std::vector<int32_t>{127, 127, 0, 1, 200, 255, 256, -5, 300}[rng() % 9];
      std::vector<uint8_t> rgb = Ways_Image(W, H, &rng);
      std::string what = std::to_string(W) + "x" + std::to_string(H) + " t" + std::to_string(threshold);
      Ways_Check(rgb, W, H, threshold, false, what);
      Ways_Check(rgb, W, H, threshold, true, what + " masked");
    }
  }
}

// Whole panels of both models, with the rendering's threshold (the 600 dpi
// panel with kept dots only, to keep the test quick under the sanitizers).
TEST(BilevelWays, BothWaysFollowTheRuleOnWholePanels) {
  std::mt19937 rng(1328);
  std::vector<uint8_t> rgb = Ways_Image(1036, 664, &rng);
  Ways_Check(rgb, 1036, 664, 127, false, "300 dpi panel");
  Ways_Check(rgb, 1036, 664, 127, true, "300 dpi panel masked");
  rgb = Ways_Image(2072, 1328, &rng);
  Ways_Check(rgb, 2072, 1328, 127, true, "600 dpi panel masked");
}
