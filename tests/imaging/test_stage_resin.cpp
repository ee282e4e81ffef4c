// Tests of Area_ToSpan and Image_StripToResin: spans, masks, thresholds, logs.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

constexpr uint32_t W = 1036, H = 664;
constexpr size_t kDots = static_cast<size_t>(W) * H;

TArea Resin_Area(int32_t l, int32_t t, int32_t r, int32_t b) {
  return TArea{static_cast<uint32_t>(l), static_cast<uint32_t>(t), static_cast<uint32_t>(r),
               static_cast<uint32_t>(b)};
}

// 'Resin_Run()' - Strip rgb to resin on task; stores the log; returns the
// panel (empty when null).
std::vector<uint8_t> Resin_Run(TPrintingTask* task, const std::vector<uint8_t>& rgb,
                               std::string* log) {
  uint8_t* out = nullptr;
  int32_t result = -1;
  *log = Stage_CaptureLog([&] { result = Image_StripToResin(task, rgb.data(), &out); });
  EXPECT_EQ(0, result);
  TStageBuffer hold(out);
  if (!out) return {};
  return std::vector<uint8_t>(out, out + kDots);
}

// 'Resin_Expect()' - Every dot is 255 exactly where inside(x, y) holds.
template <typename F>
void Resin_Expect(const std::vector<uint8_t>& panel, F inside) {
  ASSERT_EQ(kDots, panel.size());
  for (uint32_t y = 0; y < H; ++y)
    for (uint32_t x = 0; x < W; ++x)
      ASSERT_EQ(inside(x, y) ? 255 : 0, panel[y * W + x]) << x << "," << y;
}

}  // namespace

TEST(AreaToSpan, ZeroExtentsReachTheEdges) {
  TArea a = Resin_Area(100, 50, 0, 0);
  int32_t x0, y0, x1, y1;
  Area_ToSpan(&a, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{100, 50, 1036, 664}), (std::vector<int32_t>{x0, y0, x1, y1}));
}

TEST(AreaToSpan, RightAndBottomAreExtents) {
  TArea a = Resin_Area(10, 20, 30, 40);
  int32_t x0, y0, x1, y1;
  Area_ToSpan(&a, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{10, 20, 40, 60}), (std::vector<int32_t>{x0, y0, x1, y1}));
}

TEST(AreaToSpan, CutAtThePanelAndNegativeCornerIsZero) {
  int32_t x0, y0, x1, y1;
  TArea past = Resin_Area(1000, 600, 500, 500);
  Area_ToSpan(&past, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{1000, 600, 1036, 664}), (std::vector<int32_t>{x0, y0, x1, y1}));
  TArea negative = Resin_Area(-5, -7, 20, 30);
  Area_ToSpan(&negative, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{0, 0, 20, 30}), (std::vector<int32_t>{x0, y0, x1, y1}));
  TArea negativeExtent = Resin_Area(50, 50, -10, 5);
  Area_ToSpan(&negativeExtent, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{50, 50, 40, 55}), (std::vector<int32_t>{x0, y0, x1, y1}));
  TArea huge = Resin_Area(0x7FFFFFF0, 3, 0x7FFFFFF0, 4);
  Area_ToSpan(&huge, W, H, &x0, &y0, &x1, &y1);
  EXPECT_EQ((std::vector<int32_t>{0x7FFFFFF0, 3, 1036, 7}), (std::vector<int32_t>{x0, y0, x1, y1}));
}

TEST(StripToResin, NoAreasTakesTheEntireCard) {
  auto task = Stage_MakeTask(1030);
  task->resinFlag[0] = 100;
  std::vector<uint8_t> rgb = Stage_RandomImage(W, H, 61);
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), rgb, &log);
  EXPECT_EQ(" Image_StripToResin --> include: entire card\n Image_StripToResin --> exclude: none\n",
            log);
  Resin_Expect(k, [&](uint32_t x, uint32_t y) {
    return Image_Luminance(rgb[(y * W + x) * 3], rgb[(y * W + x) * 3 + 1], rgb[(y * W + x) * 3 + 2]) <= 100;
  });
}

TEST(StripToResin, FlagZeroTakesOnlyLuminanceZero) {
  auto task = Stage_MakeTask(1030);
  task->resinFlag[0] = 0;
  std::vector<uint8_t> rgb(kDots * 3, 255);
  const uint8_t dots[][3] = {{0, 0, 0}, {0, 0, 1}, {0, 0, 8}, {0, 0, 9},
                             {3, 0, 0}, {4, 0, 0}, {0, 1, 0}, {0, 2, 0}};
  const bool takes[] = {true, true, true, false, true, false, true, false};
  for (size_t i = 0; i < 8; ++i) memcpy(&rgb[i * 3], dots[i], 3);
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), rgb, &log);
  // 0.114 x 8 = 0.912 truncates to 0, 0.114 x 9 = 1.026 to 1; 0.299 x 3 =
  // 0.897 and 0.587 take resin, 0.299 x 4 = 1.196 and 1.174 do not.
  Resin_Expect(k, [&](uint32_t x, uint32_t y) { return y == 0 && x < 8 && takes[x]; });
}

TEST(StripToResin, Flag255TakesEveryDotInsideTheMask) {
  auto task = Stage_MakeTask(1030);
  task->resinFlag[0] = 255;
  task->resinAreas[0][AREA_GROUP_INCLUDE][0] = Resin_Area(100, 50, 0, 0);
  std::vector<uint8_t> rgb(kDots * 3, 255);
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), rgb, &log);
  EXPECT_EQ(" Image_StripToResin --> include: 100,50 - 1036,664\n Image_StripToResin --> exclude: none\n",
            log);
  Resin_Expect(k, [](uint32_t x, uint32_t y) { return x >= 100 && y >= 50; });
}

TEST(StripToResin, ExtentsAreaCoversTenToThirtyNine) {
  auto task = Stage_MakeTask(1030);
  task->resinFlag[0] = 255;
  task->resinAreas[0][AREA_GROUP_INCLUDE][0] = Resin_Area(10, 20, 30, 40);
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), std::vector<uint8_t>(kDots * 3, 0), &log);
  EXPECT_EQ(" Image_StripToResin --> include: 10,20 - 40,60\n Image_StripToResin --> exclude: none\n", log);
  Resin_Expect(k, [](uint32_t x, uint32_t y) { return x >= 10 && x <= 39 && y >= 20 && y <= 59; });
}

TEST(StripToResin, ExcludeCutsHolesInIncludeAndInTheEntireCard) {
  auto task = Stage_MakeTask(1030);
  task->resinFlag[0] = 255;
  task->resinAreas[0][AREA_GROUP_EXCLUDE][0] = Resin_Area(20, 30, 10, 10);
  std::vector<uint8_t> black(kDots * 3, 0);
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), black, &log);
  EXPECT_EQ(" Image_StripToResin --> include: entire card\n Image_StripToResin --> exclude: 20,30 - 30,40\n", log);
  auto hole = [](uint32_t x, uint32_t y) { return x >= 20 && x < 30 && y >= 30 && y < 40; };
  Resin_Expect(k, [&](uint32_t x, uint32_t y) { return !hole(x, y); });
  // Exclusion wins whatever the slot order: include in a later slot.
  task->resinAreas[0][AREA_GROUP_INCLUDE][4] = Resin_Area(0, 0, 100, 100);
  k = Resin_Run(task.get(), black, &log);
  Resin_Expect(k, [&](uint32_t x, uint32_t y) { return x < 100 && y < 100 && !hole(x, y); });
}

TEST(StripToResin, EmptySlotsAreSkippedAndLinesFollowSlotOrder) {
  auto task = Stage_MakeTask(1030);
  task->sideIndex = 1;   // the back side's areas and flag
  task->resinFlag[1] = 255;
  task->resinAreas[1][AREA_GROUP_INCLUDE][1] = Resin_Area(1, 2, 3, 4);
  task->resinAreas[1][AREA_GROUP_INCLUDE][3] = Resin_Area(500, 600, 1000, 1000);
  task->resinAreas[1][AREA_GROUP_EXCLUDE][0] = Resin_Area(-3, 0, 2, 0);
  task->resinAreas[1][AREA_GROUP_EXCLUDE][2] = Resin_Area(510, 610, 5, 5);
  task->resinAreas[0][AREA_GROUP_INCLUDE][0] = Resin_Area(0, 0, 1, 1);   // front: unused
  std::string log;
  std::vector<uint8_t> k = Resin_Run(task.get(), std::vector<uint8_t>(kDots * 3, 0), &log);
  EXPECT_EQ(
      " Image_StripToResin --> include: 1,2 - 4,6\n"
      " Image_StripToResin --> include: 500,600 - 1036,664\n"
      " Image_StripToResin --> exclude: 0,0 - 2,664\n"
      " Image_StripToResin --> exclude: 510,610 - 515,615\n",
      log);
  Resin_Expect(k, [](uint32_t x, uint32_t y) {
    bool in = (x >= 1 && x < 4 && y >= 2 && y < 6) || (x >= 500 && y >= 600);
    bool out = x < 2 || (x >= 510 && x < 515 && y >= 610 && y < 615);
    return in && !out;
  });
}

TEST(StripToResin, NullArgumentsLogNothing) {
  auto task = Stage_MakeTask(1030);
  std::vector<uint8_t> rgb(kDots * 3);
  uint8_t* out = nullptr;
  int32_t a = -1, b = -1;
  EXPECT_EQ("", Stage_CaptureLog([&] {
              a = Image_StripToResin(task.get(), rgb.data(), nullptr);
              b = Image_StripToResin(task.get(), nullptr, &out);
            }));
  EXPECT_EQ(25, a);
  EXPECT_EQ(1, b);
  EXPECT_EQ(nullptr, out);
}

TEST(StripToResin, NoMemoryForThePanel) {
  std::vector<uint8_t> rgb(kDots * 3);
  std::string text = Stage_LimitedRun(256 * 1024, [&rgb] {
    auto task = Stage_MakeTask(1030);
    uint8_t* out = rgb.data();
    int32_t result = Image_StripToResin(task.release(), rgb.data(), &out);
    return out ? 99 : result;
  });
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ(" Image_StripToResin: Unable to allocate memory!\nexit=1", text);
}

TEST(StripToResin, NoMemoryForTheMaskLeavesAZeroPanel) {
  std::vector<uint8_t> rgb(kDots * 3);
  std::string text = Stage_LimitedRun(kDots + 400 * 1024, [&rgb] {
    auto task = Stage_MakeTask(1030);
    uint8_t* out = nullptr;
    int32_t result = Image_StripToResin(task.release(), rgb.data(), &out);
    if (!out) return 99;
    for (size_t i = 0; i < kDots; ++i)
      if (out[i] != 0) return 98;
    return result;
  });
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ(" Image_StripToResin: Unable to allocate memory!\nexit=1", text);
}

TEST(StripToResin, RandomImagesAndAreasMatchReference) {
  for (int32_t model : {1030, 1060}) {
    auto task = Stage_MakeTask(model);
    TPanelGeometry g = Panel_Geometry(task.get());
    std::vector<uint8_t> rgb = Stage_RandomImage(g.width, g.height, 70 + model);
    std::vector<uint8_t> pick = Stage_RandomBytes(64, 71 + model);
    for (int32_t round = 0; round < 3; ++round) {
      for (int32_t a = 0; a < AREAS_PER_GROUP; ++a)
        for (int32_t grp = 0; grp < 2; ++grp) {
          const uint8_t* p = &pick[(a * 2 + grp) * 3];
          bool used = (p[0] + round) % 3 == 0;
          task->resinAreas[0][grp][a] =
              used ? Resin_Area(p[1] * 9 - 100, p[2] * 6 - 50, p[0] * 5, (p[1] ^ p[2]) * 4) : TArea{0, 0, 0, 0};
        }
      task->resinFlag[0] = static_cast<uint8_t>(round * 100 + 20);
      uint8_t* fast = nullptr;
      uint8_t* plain = nullptr;
      EXPECT_EQ(0, Image_StripToResin(task.get(), rgb.data(), &fast));
      EXPECT_EQ(0, Ref_StripToResin(task.get(), rgb.data(), &plain));
      TStageBuffer x(fast), y(plain);
      EXPECT_EQ(0, memcmp(fast, plain, static_cast<size_t>(g.width) * g.height)) << model << " " << round;
    }
  }
}
