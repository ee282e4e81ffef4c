// Tests of Page_PrintSidePanel: image records, chunking, tumble, log lines.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "imaging/page_process.h"
#include "support/process.h"
#include "support/page_process_support.h"

using namespace pagetest;

namespace {

using TSidePanelTest = TPageTest;

// Bytes of an ICMD_STARTIMAGE record.
std::string StartImage(uint16_t w, uint16_t h, uint8_t type) {
  const char bytes[] = {8, 0, 5, 0, 0, 0, static_cast<char>(w & 0xFF), static_cast<char>(w >> 8),
                        static_cast<char>(h & 0xFF), static_cast<char>(h >> 8),
                        static_cast<char>(type)};
  return std::string(bytes, sizeof bytes);
}

// Bytes of an ICMD_IMAGE header of n data bytes.
std::string ImageHeader(uint32_t n) {
  uint8_t h[6];
  Rec_Header(h, ICMD_IMAGE, n);
  return std::string(reinterpret_cast<char*>(h), 6);
}

const std::string kEndImage("\x09\x00\x00\x00\x00\x00", 6);

// A model id that no printer has, for geometries no model has.
constexpr int32_t kOddModel = 4242;

}  // namespace

TEST_F(TSidePanelTest, ColourPanel1036x664Is34FullRecordsAndOneShort) {
  std::vector<uint8_t> panel = Panel(3);
  EXPECT_EQ(0, Page_PrintSidePanel(&task, PANEL_COLOR, panel.data()));
  std::vector<std::string> log = StopLog();

  std::string expected = StartImage(1036, 664, 0);
  size_t offset = 0;
  for (int i = 0; i < 34; ++i, offset += 59052)
    expected += ImageHeader(59052) + std::string(reinterpret_cast<char*>(&panel[offset]), 59052);
  expected += ImageHeader(55944) + std::string(reinterpret_cast<char*>(&panel[offset]), 55944);
  expected += kEndImage;
  EXPECT_EQ(offset + 55944, panel.size());
  EXPECT_TRUE(Bytes() == expected);

  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_EQ(35u, panels[0].chunks.size());

  EXPECT_TRUE(Test_Contains(log, ">>>> Page_PrintSidePanel(0)(1036)(664)(19)(59052)"));
  EXPECT_TRUE(Test_Contains(log, "CMD: ICMD_IMAGE [2063712]"));
  EXPECT_TRUE(Test_Contains(log, "<<<< Page_PrintSidePanel[2063712]"));
}

TEST_F(TSidePanelTest, SingleChannelPanel1036IsWrittenIn59RowRecords) {
  std::vector<uint8_t> panel = Panel(1);
  Page_PrintSidePanel(&task, PANEL_UV, panel.data());
  std::vector<std::string> log = StopLog();
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_EQ(1036, panels[0].width);
  EXPECT_EQ(664, panels[0].height);
  EXPECT_EQ(PANEL_UV, panels[0].type);
  // 664 rows = 11 records of 59 rows and one of 15 rows.
  std::vector<size_t> chunks(11, 61124);
  chunks.push_back(15 * 1036);
  EXPECT_EQ(chunks, panels[0].chunks);
  EXPECT_TRUE(panels[0].data == std::string(panel.begin(), panel.end()));
  EXPECT_TRUE(Test_Contains(log, ">>>> Page_PrintSidePanel(2)(1036)(664)(59)(61124)"));
  EXPECT_TRUE(Test_Contains(log, "CMD: ICMD_IMAGE [687904]"));
}

TEST_F(TSidePanelTest, Model1060PanelsUse9And29RowRecords) {
  task.printerModel = 1060;
  std::vector<uint8_t> colour = Panel(3);
  std::vector<uint8_t> black = Panel(1);
  Page_PrintSidePanel(&task, PANEL_COLOR, colour.data());
  Page_PrintSidePanel(&task, PANEL_K, black.data());
  std::vector<std::string> log = StopLog();
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(2u, panels.size());
  // 1328 rows: 147 records of 9 rows and one of 5; 45 records of 29 rows
  // and one of 23.
  std::vector<size_t> colourChunks(147, 55944);
  colourChunks.push_back(5 * 2072 * 3);
  std::vector<size_t> blackChunks(45, 60088);
  blackChunks.push_back(23 * 2072);
  EXPECT_EQ(colourChunks, panels[0].chunks);
  EXPECT_EQ(blackChunks, panels[1].chunks);
  EXPECT_EQ(2072, panels[1].width);
  EXPECT_EQ(1328, panels[1].height);
  EXPECT_TRUE(panels[0].data == std::string(colour.begin(), colour.end()));
  EXPECT_TRUE(panels[1].data == std::string(black.begin(), black.end()));
  EXPECT_TRUE(Test_Contains(log, ">>>> Page_PrintSidePanel(0)(2072)(1328)(9)(55944)"));
  EXPECT_TRUE(Test_Contains(log, ">>>> Page_PrintSidePanel(1)(2072)(1328)(29)(60088)"));
  EXPECT_TRUE(Test_Contains(log, "CMD: ICMD_IMAGE [8254848]"));
  EXPECT_TRUE(Test_Contains(log, "CMD: ICMD_IMAGE [2751616]"));
}

TEST_F(TSidePanelTest, NullDataWritesNothing) {
  EXPECT_EQ(0, Page_PrintSidePanel(&task, PANEL_K, nullptr));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{">>>> Page_PrintSidePanel(1)(1036)(664)(59)(61124)",
                                      "<<<< Page_PrintSidePanel[nullptr]"}),
            log);
}

TEST_F(TSidePanelTest, TumbleTurnsOnlyTheBackSide) {
  task.tumble = 1;
  std::vector<uint8_t> front = Panel(3);
  std::vector<uint8_t> back = Panel(3);
  task.sideIndex = 0;
  Page_PrintSidePanel(&task, PANEL_COLOR, front.data());
  task.sideIndex = 1;
  Page_PrintSidePanel(&task, PANEL_COLOR, back.data());
  std::vector<std::string> log = StopLog();
  EXPECT_EQ(1, Lines_Count(log, "Tumble: Processing card rotation."));

  std::vector<uint8_t> original = Panel(3);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(2u, panels.size());
  EXPECT_TRUE(panels[0].data == std::string(original.begin(), original.end()));
  // The back panel went out turned: pixel i is the original pixel n - 1 - i,
  // its three bytes in their order.  The caller's buffer is the turned one.
  const size_t pixels = original.size() / 3;
  std::string turned;
  for (size_t i = 0; i < pixels; ++i)
    turned.append(reinterpret_cast<const char*>(&original[(pixels - 1 - i) * 3]), 3);
  EXPECT_TRUE(panels[1].data == turned);
  EXPECT_TRUE(std::string(back.begin(), back.end()) == turned);
}

TEST_F(TSidePanelTest, WithoutTumbleTheBackIsNotTurned) {
  task.sideIndex = 1;
  std::vector<uint8_t> back = Panel(1);
  Page_PrintSidePanel(&task, PANEL_PO, back.data());
  std::vector<std::string> log = StopLog();
  EXPECT_EQ(0, Lines_Count(log, "Tumble: Processing card rotation."));
  std::vector<uint8_t> original = Panel(1);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_TRUE(panels[0].data == std::string(original.begin(), original.end()));
}

TEST_F(TSidePanelTest, PanelWithFewerRowsThanOneRecordIsOneShortRecord) {
  g_panelGeometry[kOddModel] = {10, 3};
  task.printerModel = kOddModel;
  std::vector<uint8_t> panel = Panel(3);
  Page_PrintSidePanel(&task, PANEL_COLOR, panel.data());
  g_panelGeometry.erase(kOddModel);
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Bytes() == StartImage(10, 3, 0) + ImageHeader(90) +
                             std::string(panel.begin(), panel.end()) + kEndImage);
  EXPECT_TRUE(Test_Contains(log, ">>>> Page_PrintSidePanel(0)(10)(3)(2048)(61440)"));
}

TEST_F(TSidePanelTest, RowWiderThanOneRecordWritesNothing) {
  g_panelGeometry[kOddModel] = {20481, 2};  // 61443 bytes per colour row
  task.printerModel = kOddModel;
  std::vector<uint8_t> panel = Panel(3);
  EXPECT_EQ(0, Page_PrintSidePanel(&task, PANEL_COLOR, panel.data()));
  g_panelGeometry.erase(kOddModel);
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{
                ">>>> Page_PrintSidePanel(0)(20481)(2)(0)(0)",
                "Page_PrintSidePanel --> row of 61443 bytes exceeds 61440, panel not sent",
                "<<<< Page_PrintSidePanel[row too wide]"}),
            log);
}

TEST_F(TSidePanelTest, RowOfExactlyOneRecordIsOneRowPerRecord) {
  g_panelGeometry[kOddModel] = {20480, 2};
  task.printerModel = kOddModel;
  std::vector<uint8_t> panel = Panel(3);
  Page_PrintSidePanel(&task, PANEL_COLOR, panel.data());
  g_panelGeometry.erase(kOddModel);
  StopLog();
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_EQ((std::vector<size_t>{61440, 61440}), panels[0].chunks);
}
