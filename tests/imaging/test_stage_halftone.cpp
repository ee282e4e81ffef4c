// Tests of Image_Halftone: the purity test, both paths, codes and logs.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

constexpr size_t kDots = static_cast<size_t>(1036) * 664;

// 'Halftone_Text()' - White 1036 x 664 image with black "text" blocks.
std::vector<uint8_t> Halftone_Text() {
  std::vector<uint8_t> rgb(kDots * 3, 255);
  for (uint32_t y = 100; y < 140; ++y)
    for (uint32_t x = 50; x < 600; ++x)
      if ((x / 7) % 3 != 0) memset(&rgb[(static_cast<size_t>(y) * 1036 + x) * 3], 0, 3);
  return rgb;
}

// 'Halftone_Run()' - Run Image_Halftone on rgb; stores the log and the
// result code; returns the panel (empty when null).
std::vector<uint8_t> Halftone_Run(const std::vector<uint8_t>& rgb, std::string* log,
                                  int32_t* result) {
  auto task = Stage_MakeTask(1030);
  uint8_t* out = nullptr;
  *log = Stage_CaptureLog([&] { *result = Image_Halftone(task.get(), rgb.data(), &out); });
  TStageBuffer hold(out);
  if (!out) return {};
  return std::vector<uint8_t>(out, out + kDots);
}

const char* const kPureLog = " >>>> Image_Halftone\n <<<< Image_Halftone[success]\n";
const char* const kDiffusedLog =
    " >>>> Image_Halftone\n      >>>> Image_Bilevel\n      <<<< Image_Bilevel\n"
    " <<<< Image_Halftone[success]\n";

}  // namespace

TEST(Halftone, AllWhiteTakesThePurePathToAllZero) {
  std::string log;
  int32_t result = -1;
  std::vector<uint8_t> k = Halftone_Run(std::vector<uint8_t>(kDots * 3, 255), &log, &result);
  EXPECT_EQ(0, result);
  EXPECT_EQ(kPureLog, log);
  EXPECT_EQ(std::vector<uint8_t>(kDots, 0), k);
}

TEST(Halftone, BlackTextOnWhitePrintsExactlyTheText) {
  std::vector<uint8_t> rgb = Halftone_Text();
  std::string log;
  int32_t result = -1;
  std::vector<uint8_t> k = Halftone_Run(rgb, &log, &result);
  EXPECT_EQ(kPureLog, log);
  ASSERT_EQ(kDots, k.size());
  for (size_t i = 0; i < kDots; ++i) ASSERT_EQ(rgb[3 * i] == 0 ? 255 : 0, k[i]) << i;
}

TEST(Halftone, OneGreyDotDithersTheText) {
  std::vector<uint8_t> rgb = Halftone_Text();
  memset(&rgb[(static_cast<size_t>(600) * 1036 + 900) * 3], 128, 3);
  std::string log;
  int32_t result = -1;
  std::vector<uint8_t> k = Halftone_Run(rgb, &log, &result);
  EXPECT_EQ(0, result);
  EXPECT_EQ(kDiffusedLog, log);
  size_t textDots = 0, printed = 0;
  for (size_t i = 0; i < kDots; ++i)
    if (rgb[3 * i] == 0) {
      ++textDots;
      printed += k[i] == 255;
    }
  EXPECT_GT(printed, 0u);
  EXPECT_LT(printed, textDots);   // dithered, not solid
  auto task = Stage_MakeTask(1030);
  uint8_t* plain = nullptr;
  Ref_Bilevel(task.get(), rgb.data(), &plain, g_floydSteinbergKernel, 127);
  TStageBuffer hold(plain);
  EXPECT_EQ(0, memcmp(plain, k.data(), kDots));
}

TEST(Halftone, AnyUnequalOrMidDotIsGrey) {
  const uint8_t greys[][3] = {{255, 255, 0}, {0, 0, 1}, {0, 255, 0}, {254, 254, 254}};
  for (const auto& grey : greys) {
    for (size_t where : {size_t(0), size_t(5000), kDots - 1}) {   // the last dot too
      std::vector<uint8_t> rgb = Halftone_Text();
      memcpy(&rgb[where * 3], grey, 3);
      std::string log;
      int32_t result = -1;
      Halftone_Run(rgb, &log, &result);
      EXPECT_EQ(kDiffusedLog, log) << int(grey[0]) << "," << int(grey[1]) << "," << int(grey[2])
                                   << " at " << where;
    }
  }
}

TEST(Halftone, NullArgumentsGive25) {
  auto task = Stage_MakeTask(1030);
  std::vector<uint8_t> rgb(kDots * 3, 255);
  uint8_t* out = nullptr;
  int32_t result = -1;
  EXPECT_EQ(" >>>> Image_Halftone\n <<<< Image_Halftone[1][nullptr]\n",
            Stage_CaptureLog([&] { result = Image_Halftone(task.get(), rgb.data(), nullptr); }));
  EXPECT_EQ(25, result);
  EXPECT_EQ(" >>>> Image_Halftone\n <<<< Image_Halftone[2][nullptr]\n",
            Stage_CaptureLog([&] { result = Image_Halftone(task.get(), nullptr, &out); }));
  EXPECT_EQ(25, result);
  EXPECT_EQ(nullptr, out);
}

TEST(Halftone, NoMemoryOnThePurePathGives1) {
  std::vector<uint8_t> rgb(kDots * 3, 255);
  std::string text = Stage_LimitedRun(256 * 1024, [&rgb] {
    auto task = Stage_MakeTask(1030);
    uint8_t* out = rgb.data();
    int32_t result = Image_Halftone(task.release(), rgb.data(), &out);
    return out ? 99 : result;
  });
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ(" >>>> Image_Halftone\n <<<< Image_Halftone[3][nullptr]\nexit=1", text);
}

TEST(Halftone, RandomAndPureImagesMatchReference) {
  for (int32_t model : {1030, 1060}) {
    auto task = Stage_MakeTask(model);
    TPanelGeometry g = Panel_Geometry(task.get());
    size_t dots = static_cast<size_t>(g.width) * g.height;
    std::vector<uint8_t> random = Stage_RandomImage(g.width, g.height, 50 + model);
    std::vector<uint8_t> pure(dots * 3);
    for (size_t i = 0; i < dots; ++i) memset(&pure[3 * i], (random[3 * i] & 1) ? 255 : 0, 3);
    for (const auto* rgb : {&random, &pure}) {
      uint8_t* fast = nullptr;
      uint8_t* plain = nullptr;
      EXPECT_EQ(0, Image_Halftone(task.get(), rgb->data(), &fast));
      EXPECT_EQ(0, Ref_Halftone(task.get(), rgb->data(), &plain));
      TStageBuffer a(fast), b(plain);
      ASSERT_NE(nullptr, fast);
      EXPECT_EQ(0, memcmp(fast, plain, dots)) << model;
    }
  }
}
