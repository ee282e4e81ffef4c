// The one-pass mapping of pure black-and-white images held to the plain
// definition: a dot is pure when its bytes sum to 0 or 765, and a pure
// image prints 255 exactly on its black dots.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "imaging/pure_map.h"
#include "util/cpu.h"

namespace {

using TPureWay = bool (*)(const uint8_t*, uint8_t*, size_t);

std::vector<TPureWay> Pure_Ways() {
  std::vector<TPureWay> ways = {Pure_MapBlackScalar, Pure_MapBlack};
  if (Cpu_HaveAvx2()) ways.push_back(Pure_MapBlackAvx2);
  return ways;
}

// The ways of the mask of pure black dots.
std::vector<TPureWay> Pure_MaskWays() {
  std::vector<TPureWay> ways = {Pure_MaskBlackScalar, Pure_MaskBlack};
  if (Cpu_HaveAvx2()) ways.push_back(Pure_MaskBlackAvx2);
  return ways;
}

// 'Pure_Random()' - count random black and white dots.
std::vector<uint8_t> Pure_Random(size_t count, std::mt19937* rng) {
  std::vector<uint8_t> rgb(3 * count);
  for (size_t i = 0; i < count; ++i) {
    uint8_t v = ((*rng)() & 1) ? 255 : 0;
    rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = v;
  }
  return rgb;
}

// 'Pure_Check()' - Every way on rgb: the plain answer, and for a pure image
// the plain bytes, with nothing written outside the panel.
void Pure_Check(const std::vector<uint8_t>& rgb, const std::string& what) {
  size_t count = rgb.size() / 3;
  bool pure = true;
  std::vector<uint8_t> expected(count);
  for (size_t i = 0; i < count; ++i) {
    unsigned sum = rgb[3 * i] + rgb[3 * i + 1] + rgb[3 * i + 2];
    pure = pure && (sum == 0 || sum == 765);
    expected[i] = sum == 0 ? 255 : 0;
  }
  // Without a panel the plain way only tests the dots.
  {
    std::vector<uint8_t> input(rgb);
    ASSERT_EQ(pure, Pure_MapBlackScalar(input.data(), nullptr, count)) << what << " (test only)";
  }
  for (TPureWay way : Pure_Ways()) {
    std::vector<uint8_t> mono(count + 32, 0x5A);
    // An exact-size copy, so that a read past the image is caught by the
    // sanitizers.
    std::vector<uint8_t> input(rgb);
    ASSERT_EQ(pure, way(input.data(), mono.data() + 16, count)) << what;
    for (size_t i = 0; i < 16; ++i) ASSERT_EQ(0x5A, mono[i]) << what;
    for (size_t i = 0; i < 16; ++i) ASSERT_EQ(0x5A, mono[16 + count + i]) << what;
    if (pure) {
      for (size_t i = 0; i < count; ++i) ASSERT_EQ(expected[i], mono[16 + i]) << what << " dot " << i;
    }
  }
  // The mask: the same answer, and 255 on exactly the black dots of any image.
  for (TPureWay way : Pure_MaskWays()) {
    std::vector<uint8_t> mask(count + 32, 0x5A);
    std::vector<uint8_t> input(rgb);
    ASSERT_EQ(pure, way(input.data(), mask.data() + 16, count)) << what << " (mask)";
    for (size_t i = 0; i < 16; ++i) ASSERT_EQ(0x5A, mask[i]) << what;
    for (size_t i = 0; i < 16; ++i) ASSERT_EQ(0x5A, mask[16 + count + i]) << what;
    for (size_t i = 0; i < count; ++i) ASSERT_EQ(expected[i], mask[16 + i]) << what << " mask dot " << i;
  }
}

}  // namespace

TEST(PureMap, PureImagesOfEveryLengthMapTheirBlackDots) {
  std::mt19937 rng(1122);
  for (size_t count = 0; count <= 100; ++count) Pure_Check(Pure_Random(count, &rng), "n" + std::to_string(count));
  Pure_Check(Pure_Random(2072 * 1328, &rng), "600 dpi panel");
}

// One grey dot at every position of images of several lengths, each of the
// kinds of dot the rule calls grey: mixed channels of 0 and 255 (which no
// byte test alone can see), and bytes one step from black or white.
TEST(PureMap, OneGreyDotAnywhereIsFound) {
  const uint8_t greys[][3] = {{0, 0, 1},     {255, 255, 254}, {255, 255, 0}, {0, 255, 0},
                              {255, 0, 255}, {0, 0, 255},     {128, 128, 128}, {254, 255, 255}};
  std::mt19937 rng(2211);
  for (size_t count : {1u, 15u, 16u, 17u, 33u, 48u, 70u}) {
    for (size_t at = 0; at < count; ++at) {
      for (const auto& grey : greys) {
        std::vector<uint8_t> rgb = Pure_Random(count, &rng);
        rgb[3 * at] = grey[0], rgb[3 * at + 1] = grey[1], rgb[3 * at + 2] = grey[2];
        Pure_Check(rgb, "n" + std::to_string(count) + " at " + std::to_string(at));
      }
    }
  }
}

TEST(PureMap, GreyDotAsTheVeryLastDotOfAPanelIsFound) {
  std::mt19937 rng(3);
  std::vector<uint8_t> rgb = Pure_Random(1036 * 664, &rng);
  rgb[rgb.size() - 1] = 1;
  Pure_Check(rgb, "last dot");
}

TEST(PureMap, RandomBytesAreGreyAndAllWhiteIsPure) {
  std::mt19937 rng(4);
  std::vector<uint8_t> rgb(3 * 1000);
  for (auto& v : rgb) v = static_cast<uint8_t>(rng());
  Pure_Check(rgb, "random");
  // Random dots of black, white and grey: the mask must find every black
  // dot among the others.
  for (size_t i = 0; i < 1000; ++i) {
    uint32_t kind = rng() % 3;
    if (kind < 2) memset(&rgb[3 * i], kind ? 255 : 0, 3);
  }
  Pure_Check(rgb, "mixed");
  Pure_Check(std::vector<uint8_t>(3 * 1000, 255), "white");
  Pure_Check(std::vector<uint8_t>(3 * 1000, 0), "black");
}

// Long runs of white, which the AVX2 ways take 32 dots at a time, broken
// by a black dot or by one grey dot at every position: every way gives the
// plain answer and bytes.
TEST(PureMap, LongWhiteRunsWithABlackOrGreyDotAnywhere) {
  const size_t count = 200;
  for (size_t at = 0; at < count; ++at) {
    for (int kind = 0; kind < 3; ++kind) {
      std::vector<uint8_t> rgb(3 * count, 255);
      uint8_t* d = &rgb[3 * at];
      if (kind == 0) d[0] = d[1] = d[2] = 0;                  // black
      else if (kind == 1) d[2] = 254;                          // grey: one byte off white
      else d[0] = 0;                                           // grey: mixed 0 and 255
      Pure_Check(rgb, "dot " + std::to_string(at) + " kind " + std::to_string(kind));
    }
  }
  Pure_Check(std::vector<uint8_t>(3 * 2072 * 1328, 255), "white 600 dpi panel");
}
