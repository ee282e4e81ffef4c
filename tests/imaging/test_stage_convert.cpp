// Tests of Image_CUPSToPrinterRGB: refusals, turn, fit, placement, exactness.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

// 'Convert_Page()' - Convert a page of width x height (random bytes, rows of
// lineBytes) on model and expect the reference's bytes; returns the log.
std::string Convert_Page(int32_t model, uint32_t width, uint32_t height, uint32_t lineBytes,
                         uint32_t seed, uint32_t rowStep = 1) {
  auto task = Stage_MakeTask(model);
  cups_page_header2_t header = Stage_Header(width, height, lineBytes);
  std::vector<uint8_t> page = Stage_RandomBytes(static_cast<size_t>(lineBytes) * height, seed);
  Stage_SetPage(task.get(), &header, page);
  uint8_t* plain = nullptr;
  EXPECT_EQ(0, Ref_CUPSToPrinterRGB(task.get(), &plain, rowStep));
  TStageBuffer holdPlain(plain);
  uint8_t* fast = nullptr;
  int32_t result = -1;
  std::string log = Stage_CaptureLog([&] { result = Image_CUPSToPrinterRGB(task.get(), &fast); });
  TStageBuffer holdFast(fast);
  EXPECT_EQ(0, result);
  const auto g = Panel_Geometry(task.get());
  const size_t rowBytes = static_cast<size_t>(g.width) * 3;
  for (uint32_t y = 0; y < g.height; y += rowStep) {
    if (memcmp(plain + y * rowBytes, fast + y * rowBytes, rowBytes) == 0) continue;
    ADD_FAILURE() << width << "x" << height << " on " << model << ", row " << y;
    break;
  }
  return log;
}

// 'Convert_Refused()' - The log of a refused page and its result code.
std::string Convert_Refused(uint32_t width, uint32_t height, uint32_t lineBytes,
                            uint32_t colorSpace) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(width, height, lineBytes, colorSpace);
  Stage_SetPage(task.get(), &header, std::vector<uint8_t>(static_cast<size_t>(lineBytes) * 2));
  uint8_t* out = nullptr;
  int32_t result = -1;
  std::string log = Stage_CaptureLog([&] { result = Image_CUPSToPrinterRGB(task.get(), &out); });
  EXPECT_EQ(1, result);
  EXPECT_EQ(nullptr, out);
  return log;
}

}  // namespace

TEST(CUPSToPrinterRGB, PanelSizedPagePassesUnscaledAndIsHandedOut) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(1036, 664, 3108);
  std::vector<uint8_t> page = Stage_RandomImage(1036, 664, 11);
  Stage_SetPage(task.get(), &header, page);
  uint8_t* pageBuffer = task->pageBuffer;
  uint8_t* out = nullptr;
  std::string log = Stage_CaptureLog([&] { EXPECT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out)); });
  TStageBuffer hold(out);
  EXPECT_EQ("", log);
  EXPECT_EQ(pageBuffer, out);
  EXPECT_EQ(nullptr, task->pageBuffer);
  EXPECT_EQ(0, memcmp(page.data(), out, page.size()));
}

TEST(CUPSToPrinterRGB, PanelSizedPageWithPaddedRowsIsCopiedAsOneBlock) {
  // Rows of 3 W + 2 bytes: the first W x H x 3 bytes are taken as they lie.
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(1036, 664, 3110);
  std::vector<uint8_t> page = Stage_RandomBytes(static_cast<size_t>(3110) * 664, 12);
  Stage_SetPage(task.get(), &header, page);
  uint8_t* out = nullptr;
  EXPECT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out));
  TStageBuffer hold(out);
  EXPECT_NE(nullptr, task->pageBuffer);
  EXPECT_EQ(0, memcmp(page.data(), out, static_cast<size_t>(1036) * 664 * 3));
}

TEST(CUPSToPrinterRGB, PortraitPageIsTurnedNotResampled) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(664, 1036, 1992);
  std::vector<uint8_t> page = Stage_RandomImage(664, 1036, 13);
  Stage_SetPage(task.get(), &header, page);
  uint8_t* out = nullptr;
  std::string log = Stage_CaptureLog([&] { EXPECT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out)); });
  TStageBuffer hold(out);
  EXPECT_EQ("", log);
  // Working row k is page column 663 - k read top down.
  for (uint32_t k : {0u, 1u, 331u, 663u})
    for (uint32_t y : {0u, 1u, 500u, 1035u})
      ASSERT_EQ(0, memcmp(out + (static_cast<size_t>(k) * 1036 + y) * 3,
                          page.data() + static_cast<size_t>(y) * 1992 + 3 * (663 - k), 3));
  Convert_Page(1030, 664, 1036, 1992, 13);
}

TEST(CUPSToPrinterRGB, WidePageIsResampledToTheTopLeftOnWhite) {
  std::string log = Convert_Page(1030, 1000, 500, 3000, 14);
  EXPECT_EQ(" Image_CUPSToPrinterRGB --> AspectResize(1000,500)\n", log);
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(1000, 500, 3000);
  std::vector<uint8_t> page(static_cast<size_t>(3000) * 500, 0);   // black page
  Stage_SetPage(task.get(), &header, page);
  uint8_t* out = nullptr;
  ASSERT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out));
  TStageBuffer hold(out);
  for (size_t i = 0; i < static_cast<size_t>(518) * 1036 * 3; ++i) ASSERT_EQ(0, out[i]) << i;
  for (size_t i = static_cast<size_t>(518) * 1036 * 3; i < static_cast<size_t>(664) * 1036 * 3; ++i)
    ASSERT_EQ(255, out[i]) << i;
}

TEST(CUPSToPrinterRGB, ResampledPagesMatchReference) {
  Convert_Page(1030, 1012, 638, 3036, 21, 4);
  // At 600 dpi every 16th row is compared, to keep the reference quick.
  Convert_Page(1060, 2100, 1350, 6300, 22, 16);
  EXPECT_EQ(" Image_CUPSToPrinterRGB --> AspectResize(2022,1276)\n",
            Convert_Page(1060, 1276, 2022, 3829, 23, 16));   // portrait, padded rows
  Convert_Page(1060, 2022, 1276, 6066, 24, 16);              // CR80 at 600 dpi
}

TEST(CUPSToPrinterRGB, KCMYWithThreeBytesShowsFourPlanes) {
  EXPECT_EQ(" ERR: CUPS number planes = 4.  Only supports 1.\n",
            Convert_Refused(1036, 2, 3108, CUPS_CSPACE_KCMY));
}

TEST(CUPSToPrinterRGB, CMYAndKCMYcmShowTheirColorants) {
  EXPECT_EQ(" ERR: CUPS number planes = 3.  Only supports 1.\n",
            Convert_Refused(1036, 2, 3108, CUPS_CSPACE_CMY));
  EXPECT_EQ(" ERR: CUPS number planes = 6.  Only supports 1.\n",
            Convert_Refused(1036, 2, 3108, CUPS_CSPACE_KCMYcm));
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 4.  Only supports 3.\n",
            Convert_Refused(1036, 2, 4144, CUPS_CSPACE_KCMY));
}

TEST(CUPSToPrinterRGB, OneByteGrayPageShowsOneBytePerPixel) {
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 1.  Only supports 3.\n",
            Convert_Refused(1036, 2, 1036, CUPS_CSPACE_K));
}

TEST(CUPSToPrinterRGB, ZeroWidthReadsAsZeroBytesPerPixel) {
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 0.  Only supports 3.\n",
            Convert_Refused(0, 2, 3108, CUPS_CSPACE_RGB));
}

TEST(CUPSToPrinterRGB, PageLargerThanItsBufferIsRefused) {
  // 3 x 70000 bytes per line x 30000 rows is beyond the caps of the page
  // allocation: no buffer can hold it.
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(70000, 30000, 210000);
  std::vector<uint8_t> small(16);
  Stage_SetPage(task.get(), &header, small);
  uint8_t* out = nullptr;
  int32_t result = -1;
  EXPECT_EQ(" ERR: CUPSToPrinterRGB --> out of memory.\n",
            Stage_CaptureLog([&] { result = Image_CUPSToPrinterRGB(task.get(), &out); }));
  EXPECT_EQ(1, result);
  EXPECT_EQ(nullptr, out);
}

TEST(CUPSToPrinterRGB, MissingPageBufferIsRefused) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(1036, 664, 3108);
  task->pageHeader = &header;
  uint8_t* out = nullptr;
  EXPECT_EQ(" ERR: CUPSToPrinterRGB --> out of memory.\n",
            Stage_CaptureLog([&] { EXPECT_EQ(1, Image_CUPSToPrinterRGB(task.get(), &out)); }));
  EXPECT_EQ(nullptr, out);
}

TEST(CUPSToPrinterRGB, NullOutIsRefusedSilently) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(1036, 664, 3108);
  Stage_SetPage(task.get(), &header, std::vector<uint8_t>(3108 * 664));
  EXPECT_EQ("", Stage_CaptureLog([&] { EXPECT_EQ(1, Image_CUPSToPrinterRGB(task.get(), nullptr)); }));
}

TEST(CUPSToPrinterRGB, EmptyPageGivesWhitePanel) {
  auto task = Stage_MakeTask(1030);
  cups_page_header2_t header = Stage_Header(10, 0, 30);
  Stage_SetPage(task.get(), &header, std::vector<uint8_t>());
  uint8_t* out = nullptr;
  EXPECT_EQ(0, Image_CUPSToPrinterRGB(task.get(), &out));
  TStageBuffer hold(out);
  for (size_t i = 0; i < static_cast<size_t>(1036) * 664 * 3; ++i) ASSERT_EQ(255, out[i]);
}

TEST(CUPSToPrinterRGB, NoMemoryForThePanelIsLogged) {
  std::string text = Stage_LimitedRun(256 * 1024, [] {
    auto task = Stage_MakeTask(1030);
    cups_page_header2_t header = Stage_Header(100, 50, 300);
    Stage_SetPage(task.get(), &header, std::vector<uint8_t>(300 * 50, 7));
    uint8_t* out = nullptr;
    int32_t result = Image_CUPSToPrinterRGB(task.release(), &out);
    return out ? 99 : result;
  });
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ(" ERR: CUPSToPrinterRGB --> out of memory.\nexit=1", text);
}
