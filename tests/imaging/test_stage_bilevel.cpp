// Tests of Image_Bilevel: lightening, diffusion arithmetic, bounds, logs.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

// Made-up models with tiny panels, for the bounds of the diffusion.
constexpr int32_t kModel1x5 = 9101, kModel5x1 = 9102, kModel3x3 = 9103, kModel2x2 = 9104,
                  kModel7x4 = 9105, kModel3x7 = 9106;

// 'Bilevel_Run()' - Image_Bilevel's panel for rgb on model.
std::vector<uint8_t> Bilevel_Run(int32_t model, const std::vector<uint8_t>& rgb,
                                 const TDiffusionKernel& kernel, int32_t threshold) {
  auto task = Stage_MakeTask(model);
  TPanelGeometry g = Panel_Geometry(task.get());
  uint8_t* out = nullptr;
  Image_Bilevel(task.get(), rgb.data(), &out, kernel, threshold);
  TStageBuffer hold(out);
  EXPECT_NE(nullptr, out);
  if (!out) return {};
  return std::vector<uint8_t>(out, out + static_cast<size_t>(g.width) * g.height);
}

// 'Bilevel_Reference()' - Ref_Bilevel's panel for the same.
std::vector<uint8_t> Bilevel_Reference(int32_t model, const std::vector<uint8_t>& rgb,
                                       const TDiffusionKernel& kernel, int32_t threshold) {
  auto task = Stage_MakeTask(model);
  TPanelGeometry g = Panel_Geometry(task.get());
  uint8_t* out = nullptr;
  Ref_Bilevel(task.get(), rgb.data(), &out, kernel, threshold);
  TStageBuffer hold(out);
  return std::vector<uint8_t>(out, out + static_cast<size_t>(g.width) * g.height);
}

// 'Bilevel_Flat()' - A W x H image of one dot value on model.
std::vector<uint8_t> Bilevel_Flat(int32_t model, uint8_t r, uint8_t g, uint8_t b) {
  auto task = Stage_MakeTask(model);
  TPanelGeometry geo = Panel_Geometry(task.get());
  std::vector<uint8_t> rgb(static_cast<size_t>(geo.width) * geo.height * 3);
  for (size_t i = 0; i < rgb.size(); i += 3) {
    rgb[i] = r;
    rgb[i + 1] = g;
    rgb[i + 2] = b;
  }
  return rgb;
}

// The Floyd-Steinberg taps in a kernel of their own, which takes the
// generic path.
const TDiffusionTap kSameTaps[] = {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}};
const TDiffusionKernel kGenericFS = {16, 4, kSameTaps};

class Bilevel : public ::testing::Test {
 protected:
  void SetUp() override {
    Stage_MakeTask(1030);
    g_panelGeometry[kModel1x5] = {1, 5};
    g_panelGeometry[kModel5x1] = {5, 1};
    g_panelGeometry[kModel3x3] = {3, 3};
    g_panelGeometry[kModel2x2] = {2, 2};
    g_panelGeometry[kModel7x4] = {7, 4};
    g_panelGeometry[kModel3x7] = {3, 7};
  }
  void TearDown() override {
    for (int32_t m : {kModel1x5, kModel5x1, kModel3x3, kModel2x2, kModel7x4, kModel3x7})
      g_panelGeometry.erase(m);
  }
};

}  // namespace

TEST_F(Bilevel, AllWhiteGivesAllZero) {
  auto task = Stage_MakeTask(1030);
  std::vector<uint8_t> white = Bilevel_Flat(1030, 255, 255, 255);
  uint8_t* out = nullptr;
  std::string log = Stage_CaptureLog(
      [&] { Image_Bilevel(task.get(), white.data(), &out, g_floydSteinbergKernel, 127); });
  TStageBuffer hold(out);
  EXPECT_EQ(" >>>> Image_Bilevel\n <<<< Image_Bilevel\n", log);
  ASSERT_NE(nullptr, out);
  for (size_t i = 0; i < white.size() / 3; ++i) ASSERT_EQ(0, out[i]) << i;
}

TEST_F(Bilevel, AllBlackPrintsFirstDotAndPushes44ToTheNext) {
  std::vector<uint8_t> black = Bilevel_Flat(1030, 0, 0, 0);
  std::vector<uint8_t> mono = Bilevel_Run(1030, black, g_floydSteinbergKernel, 127);
  EXPECT_EQ(255, mono[0]);   // 102 < 127
  EXPECT_EQ(0, mono[1]);     // 102 + 44 = 146
  // (1,0) sits at exactly 146: printed under threshold 147, not under 146.
  EXPECT_EQ(255, Bilevel_Run(1030, black, g_floydSteinbergKernel, 147)[1]);
  EXPECT_EQ(0, Bilevel_Run(1030, black, g_floydSteinbergKernel, 146)[1]);
  EXPECT_EQ(255, Bilevel_Run(1030, black, kGenericFS, 147)[1]);
  EXPECT_EQ(0, Bilevel_Run(1030, black, kGenericFS, 146)[1]);
  EXPECT_EQ(Bilevel_Reference(1030, black, g_floydSteinbergKernel, 127), mono);
}

TEST_F(Bilevel, OnlyTheFirstSampleCounts) {
  std::vector<uint8_t> mono = Bilevel_Run(1030, Bilevel_Flat(1030, 255, 0, 0), g_floydSteinbergKernel, 127);
  EXPECT_EQ(std::vector<uint8_t>(mono.size(), 0), mono);
  EXPECT_EQ(Bilevel_Run(1030, Bilevel_Flat(1030, 0, 0, 0), g_floydSteinbergKernel, 127),
            Bilevel_Run(1030, Bilevel_Flat(1030, 0, 255, 255), g_floydSteinbergKernel, 127));
}

TEST_F(Bilevel, LastRowAndColumnTakeNoError) {
  for (int32_t model : {1030, kModel7x4}) {
    auto task = Stage_MakeTask(model);
    TPanelGeometry g = Panel_Geometry(task.get());
    std::vector<uint8_t> rgb = Stage_RandomImage(g.width, g.height, 31);
    std::vector<uint8_t> pick = Stage_RandomBytes(static_cast<size_t>(g.width) * g.height, 32);
    for (uint32_t y = 0; y < g.height; ++y)
      for (uint32_t x = 0; x < g.width; ++x)
        if (y == g.height - 1 || x == g.width - 1)
          rgb[(static_cast<size_t>(y) * g.width + x) * 3] = (pick[y * g.width + x] & 1) ? 41 : 42;
    for (const TDiffusionKernel* k : {&g_floydSteinbergKernel, &kGenericFS}) {
      std::vector<uint8_t> mono = Bilevel_Run(model, rgb, *k, 127);
      for (uint32_t y = 0; y < g.height; ++y)
        for (uint32_t x = 0; x < g.width; ++x)
          if (y == g.height - 1 || x == g.width - 1) {
            uint8_t v = rgb[(static_cast<size_t>(y) * g.width + x) * 3];
            ASSERT_EQ(v <= 41 ? 255 : 0, mono[y * g.width + x]) << x << "," << y;
          }
      EXPECT_EQ(Bilevel_Reference(model, rgb, *k, 127), mono);
    }
  }
}

TEST_F(Bilevel, NegativeErrorDividesTowardZero) {
  // (0,0): sample 0 lightens to 102, not printed under threshold 100, so
  // e = -153 and (1,0) gets -1071 / 16 = -66.  (1,0): sample 107 lightens
  // to 166 and ends at 100, not printed; with -67 it would be 99, printed.
  const TDiffusionTap right[] = {{1, 0, 7}};
  const TDiffusionKernel rightOnly = {16, 1, right};
  std::vector<uint8_t> rgb = Bilevel_Flat(1030, 255, 255, 255);
  rgb[0] = 0;
  rgb[3] = 107;
  for (const TDiffusionKernel* k : {&g_floydSteinbergKernel, &kGenericFS, &rightOnly}) {
    std::vector<uint8_t> mono = Bilevel_Run(1030, rgb, *k, 100);
    EXPECT_EQ(0, mono[0]);
    EXPECT_EQ(0, mono[1]);
  }
  rgb[3] = 106;   // lightens to 165, ends at 99: printed
  EXPECT_EQ(255, Bilevel_Run(1030, rgb, g_floydSteinbergKernel, 100)[1]);
}

TEST_F(Bilevel, SingleRowOrColumnIsThresholdedAlone) {
  for (int32_t model : {kModel1x5, kModel5x1}) {
    std::vector<uint8_t> rgb = {0, 0, 0, 41, 0, 0, 42, 0, 0, 100, 0, 0, 30, 0, 0};
    std::vector<uint8_t> want = {255, 255, 0, 0, 255};
    EXPECT_EQ(want, Bilevel_Run(model, rgb, g_floydSteinbergKernel, 127));
    EXPECT_EQ(want, Bilevel_Run(model, rgb, kGenericFS, 127));
  }
}

TEST_F(Bilevel, NullImageLogsGrayBitsAndGivesNull) {
  auto task = Stage_MakeTask(1030);
  uint8_t* out = reinterpret_cast<uint8_t*>(&task);
  std::string log = Stage_CaptureLog(
      [&] { Image_Bilevel(task.get(), nullptr, &out, g_floydSteinbergKernel, 127); });
  EXPECT_EQ(nullptr, out);
  EXPECT_EQ(
      " >>>> Image_Bilevel\n      ERROR: Image_Bilevel --> (grayBits) out of memory\n"
      " <<<< Image_Bilevel[2][nullptr]\n",
      log);
}

TEST_F(Bilevel, NoMemoryForThePanelLogsMonoBuffer) {
  std::string text = Stage_LimitedRun(256 * 1024, [] {
    auto task = Stage_MakeTask(1030);
    std::vector<uint8_t> rgb(16);
    uint8_t* out = rgb.data();
    Image_Bilevel(task.release(), rgb.data(), &out, g_floydSteinbergKernel, 127);
    return out ? 99 : 0;
  });
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ(
      " >>>> Image_Bilevel\n      ERROR: Image_Bilevel --> (monoBuffer) out of memory\n"
      " <<<< Image_Bilevel[1][nullptr]\nexit=0",
      text);
}

TEST_F(Bilevel, RandomImagesMatchReference) {
  const TDiffusionTap wide[] = {{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8},
                                {1, 1, 4}, {2, 1, 2}, {0, 2, 3}, {-1, 0, 5}, {0, -1, 9}};
  const TDiffusionKernel wideKernel = {42, 10, wide};
  uint32_t seed = 40;
  for (int32_t model : {1030, 1060, kModel3x3, kModel2x2, kModel7x4, kModel3x7}) {
    auto task = Stage_MakeTask(model);
    TPanelGeometry g = Panel_Geometry(task.get());
    std::vector<uint8_t> rgb = Stage_RandomImage(g.width, g.height, ++seed);
    for (int32_t threshold : {127, 0, 200, 256}) {
      if (model == 1060 && threshold != 127) continue;
      EXPECT_EQ(Bilevel_Reference(model, rgb, g_floydSteinbergKernel, threshold),
                Bilevel_Run(model, rgb, g_floydSteinbergKernel, threshold))
          << model << " threshold " << threshold;
      EXPECT_EQ(Bilevel_Reference(model, rgb, wideKernel, threshold),
                Bilevel_Run(model, rgb, wideKernel, threshold))
          << model << " wide kernel, threshold " << threshold;
    }
  }
}

TEST_F(Bilevel, DarkSmoothImageMatchesReference) {
  // Mostly dark levels keep the working bytes near 0, where clamping bites.
  auto task = Stage_MakeTask(1030);
  TPanelGeometry g = Panel_Geometry(task.get());
  std::vector<uint8_t> rgb(static_cast<size_t>(g.width) * g.height * 3);
  for (uint32_t y = 0; y < g.height; ++y)
    for (uint32_t x = 0; x < g.width; ++x) rgb[(static_cast<size_t>(y) * g.width + x) * 3] = (x + y) % 60;
  EXPECT_EQ(Bilevel_Reference(1030, rgb, g_floydSteinbergKernel, 127),
            Bilevel_Run(1030, rgb, g_floydSteinbergKernel, 127));
  EXPECT_EQ(Bilevel_Reference(1030, rgb, g_floydSteinbergKernel, 250),
            Bilevel_Run(1030, rgb, g_floydSteinbergKernel, 250));
}
