// Tests of the page and panel buffers: model tables, page allocation,
// rotation, fitting and luminance.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "log/log.h"
#include "status/tables.h"

namespace {

cups_page_header2_t Header(uint32_t width, uint32_t height, uint32_t lineBytes) {
  cups_page_header2_t h;
  memset(&h, 0, sizeof h);
  h.cupsWidth = width;
  h.cupsHeight = height;
  h.cupsBytesPerLine = lineBytes;
  return h;
}

// The plain 180-degree turn: row r read left to right becomes row H-1-r read
// right to left.
std::vector<uint8_t> Turned(const std::vector<uint8_t>& in, uint32_t w, uint32_t h, uint32_t e) {
  std::vector<uint8_t> out(in.size());
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x)
      memcpy(&out[((h - 1 - y) * w + (w - 1 - x)) * e], &in[(y * w + x) * e], e);
  return out;
}

std::vector<uint8_t> Distinct(size_t n) {
  std::vector<uint8_t> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = static_cast<uint8_t>(i * 7 + 3);
  return v;
}

}  // namespace

TEST(PanelTables, GeometryAndResolutionByModel) {
  Status_BuildTables();
  ASSERT_EQ(3u, g_panelGeometry.size());
  EXPECT_EQ(1036u, Panel_ModelGeometry(1030).width);
  EXPECT_EQ(664u, Panel_ModelGeometry(1030).height);
  EXPECT_EQ(1036u, Panel_ModelGeometry(1035).width);
  EXPECT_EQ(664u, Panel_ModelGeometry(1035).height);
  EXPECT_EQ(2072u, Panel_ModelGeometry(1060).width);
  EXPECT_EQ(1328u, Panel_ModelGeometry(1060).height);
  EXPECT_EQ(300u, Panel_ModelResolution(1030));
  EXPECT_EQ(300u, Panel_ModelResolution(1035));
  EXPECT_EQ(600u, Panel_ModelResolution(1060));
}

TEST(PanelTables, GeometryOfTheTasksModel) {
  Panel_BuildTables();
  TPrintingTask task(0, nullptr);
  task.printerModel = 1035;
  EXPECT_EQ(1036u, Panel_Geometry(&task).width);
  task.printerModel = 1060;
  EXPECT_EQ(1328u, Panel_Geometry(&task).height);
  task.printerModel = 999;
  EXPECT_EQ(0u, Panel_Geometry(&task).width);
  EXPECT_EQ(0u, g_panelGeometry.count(999));  // the lookup adds nothing
}

TEST(PageBuffer, ZeroHeightGivesAZeroByteBufferAndLogsIt) {
  Log_SetFileName("unit-panel.log");
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  TPrintingTask task(0, nullptr);
  cups_page_header2_t h = Header(640, 0, 1920);
  testing::internal::CaptureStderr();
  EXPECT_EQ(0, CUPS_AllocPage(&task, &h));
  EXPECT_EQ(" CUPS_AllocPage(640,0,1920)\n", testing::internal::GetCapturedStderr());
  EXPECT_NE(nullptr, task.pageBuffer);
  Log_SetOutputMask(0);
}

TEST(PageBuffer, BufferIsZeroFilledAndReplacesTheOldOne) {
  TPrintingTask task(0, nullptr);
  cups_page_header2_t h = Header(100, 50, 300);
  CUPS_AllocPage(&task, &h);
  memset(task.pageBuffer, 0xFF, 300 * 50);
  CUPS_AllocPage(&task, &h);
  for (size_t i = 0; i < 300 * 50; ++i) ASSERT_EQ(0, task.pageBuffer[i]) << i;
}

TEST(PageBuffer, SizeIsComputedIn64BitsAndCapped) {
  uint64_t bytes = 0;
  cups_page_header2_t h = Header(1, 0x10000, 0x10000);  // 4 GiB, wraps to 0 in 32 bits
  EXPECT_FALSE(CUPS_PageBytes(&h, &bytes));
  EXPECT_EQ(0x100000000ull, bytes);
  h = Header(1, 16, 16u * 1024 * 1024);  // exactly 16 MiB per line, 256 MiB
  EXPECT_TRUE(CUPS_PageBytes(&h, &bytes));
  EXPECT_EQ(256ull * 1024 * 1024, bytes);
  h = Header(1, 1, 16u * 1024 * 1024 + 1);  // line over the cap
  EXPECT_FALSE(CUPS_PageBytes(&h, &bytes));
  h = Header(1, 0x1000000, 0);  // too many rows, even of no bytes
  EXPECT_FALSE(CUPS_PageBytes(&h, &bytes));
  h = Header(1, 0xFFFFFF, 16);  // most rows; 256 MiB - 16
  EXPECT_TRUE(CUPS_PageBytes(&h, &bytes));
  h = Header(1, 0xFFFFFF, 17);  // over 256 MiB
  EXPECT_FALSE(CUPS_PageBytes(&h, &bytes));
}

TEST(PageBufferDeathTest, PageBeyondTheCapsEndsWithTheOutOfMemoryMessage) {
  TPrintingTask task(0, nullptr);
  cups_page_header2_t h = Header(0x10000, 0x10000, 0x30000);
  EXPECT_EXIT(CUPS_AllocPage(&task, &h), testing::ExitedWithCode(1),
              "^ERROR: Unable to allocate memory!\n$");
  EXPECT_EQ(nullptr, task.pageBuffer);
}

TEST(Rotate180, OneByOneChangesNothing) {
  uint8_t px[3] = {1, 2, 3};
  EXPECT_EQ(0, Image_Rotate180(nullptr, px, 1, 1, 3));
  EXPECT_EQ(1, px[0]);
  EXPECT_EQ(2, px[1]);
  EXPECT_EQ(3, px[2]);
}

TEST(Rotate180, ThreeByThreeIsTheExactTurnWithTheCentreUnchanged) {
  uint8_t px[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Image_Rotate180(nullptr, px, 3, 3, 1);
  const uint8_t expected[9] = {9, 8, 7, 6, 5, 4, 3, 2, 1};
  EXPECT_EQ(0, memcmp(expected, px, 9));
  uint8_t rgb[27];
  for (int i = 0; i < 27; ++i) rgb[i] = static_cast<uint8_t>(i);
  Image_Rotate180(nullptr, rgb, 3, 3, 3);
  EXPECT_EQ(24, rgb[0]);
  EXPECT_EQ(25, rgb[1]);
  EXPECT_EQ(26, rgb[2]);
  EXPECT_EQ(12, rgb[12]);  // centre pixel
  EXPECT_EQ(14, rgb[14]);
  EXPECT_EQ(0, rgb[24]);
}

TEST(Rotate180, MatchesThePlainTurnForManyShapesAndElementSizes) {
  for (uint32_t e : {1u, 2u, 3u, 4u, 5u, 64u})
    for (uint32_t w : {1u, 2u, 3u, 7u})
      for (uint32_t h : {1u, 2u, 5u, 6u}) {
        std::vector<uint8_t> img = Distinct(w * h * e);
        std::vector<uint8_t> expected = Turned(img, w, h, e);
        Image_Rotate180(nullptr, img.data(), w, h, e);
        EXPECT_EQ(expected, img) << w << "x" << h << " e" << e;
      }
}

TEST(Rotate180, TwoTurnsGiveTheInputBack) {
  std::vector<uint8_t> img = Distinct(1036 * 5 * 3);
  std::vector<uint8_t> copy = img;
  Image_Rotate180(nullptr, img.data(), 1036, 5, 3);
  EXPECT_NE(copy, img);
  Image_Rotate180(nullptr, img.data(), 1036, 5, 3);
  EXPECT_EQ(copy, img);
}

TEST(Rotate180, ElementsLargerThan64BytesAreLeftAlone) {
  std::vector<uint8_t> img = Distinct(65 * 4);
  std::vector<uint8_t> copy = img;
  EXPECT_EQ(0, Image_Rotate180(nullptr, img.data(), 2, 2, 65));
  EXPECT_EQ(copy, img);
}

TEST(FitSize, ExamplesKeepTheAspectRatio) {
  struct {
    uint32_t tw, th, w, h, ew, eh;
  } cases[] = {
      {1036, 664, 2072, 1328, 1036, 664},
      {1036, 664, 1000, 1000, 664, 664},
      {1036, 664, 518, 332, 1036, 664},   // equal ratios: scale sy
      {1036, 664, 2000, 100, 1036, 51},   // 100 * 0.518 = 51.8 -> 51
      {2072, 1328, 1, 1, 1328, 1328},
  };
  for (const auto& c : cases) {
    uint32_t w = c.w, h = c.h;
    Image_FitSize(nullptr, c.tw, c.th, &w, &h);
    EXPECT_EQ(c.ew, w) << c.w << "x" << c.h;
    EXPECT_EQ(c.eh, h) << c.w << "x" << c.h;
  }
}

TEST(FitSize, ZeroSizeIsLeftAsItIs) {
  uint32_t w = 0, h = 10;
  Image_FitSize(nullptr, 1036, 664, &w, &h);
  EXPECT_EQ(0u, w);
  EXPECT_EQ(10u, h);
}
