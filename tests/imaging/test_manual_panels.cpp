// Tests of the preset overlay panel (peel-off areas) and the preset UV panel.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include "imaging/page_process.h"
#include "support/process.h"
#include "support/page_process_support.h"

using namespace pagetest;

namespace {

constexpr size_t kDots = 1036 * 664;  // one-byte panel of the 1030 model

// A model id that no printer has, whose panel cannot be allocated.
constexpr int32_t kHugeModel = 4243;

class TManualPanelTest : public TPageTest {
 protected:
  void SetUp() override {
    TPageTest::SetUp();
    uvDir = Test_ConfDir() + "/uv";
    Test_MakeDirs(uvDir);
  }

  // 'Area()' - Set area k of group g of side s.
  void Area(int32_t s, int32_t g, int32_t k, uint32_t l, uint32_t t, uint32_t r, uint32_t b) {
    task.poAreas[s][g][k] = TArea{l, t, r, b};
  }

  // 'OnlyPanel()' - The one panel written, checked for its type and size.
  std::string OnlyPanel(uint8_t type) {
    std::vector<TStreamPanel> panels = Stream_Panels(Records());
    EXPECT_EQ(1u, panels.size());
    if (panels.size() != 1) return std::string();
    EXPECT_EQ(type, panels[0].type);
    EXPECT_EQ(1036, panels[0].width);
    EXPECT_EQ(664, panels[0].height);
    EXPECT_TRUE(panels[0].ended);
    return panels[0].data;
  }

  // 'UVFile()' - Write a UV preset file of size bytes (byte i = i * 13 + 5)
  // and make it the UV file of side s.
  std::string UVFile(int32_t s, const std::string& name, size_t size) {
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(i * 13 + 5);
    std::string path = uvDir + "/" + name;
    unlink(path.c_str());
    Test_WriteFile(path, data);
    (s ? task.backUVFile : task.frontUVFile) = path;
    (s ? task.backUV : task.frontUV) = 3;
    return data;
  }

  std::string uvDir;
};

// 'Fill()' - The panel with value on the rectangle x0 <= x < x1,
// y0 <= y < y1.
std::string Fill(std::string panel, int x0, int y0, int x1, int y1, char value) {
  for (int y = y0; y < y1; ++y)
    for (int x = x0; x < x1; ++x) panel[static_cast<size_t>(y) * 1036 + x] = value;
  return panel;
}

}  // namespace

TEST_F(TManualPanelTest, PresetWithoutPeelOffAreasSendsAnAllZeroPanel) {
  task.frontPO = 4;
  EXPECT_EQ(0, Page_ProcessSubPage_POManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == std::string(kDots, '\0'));
  EXPECT_EQ((std::vector<std::string>{">>>> Page_ProcessSubPage_POManual(4)",
                                      ">>>> Page_PrintSidePanel(3)(1036)(664)(59)(61124)",
                                      "CMD: ICMD_STARTIMAGE", "CMD: ICMD_IMAGE [687904]",
                                      "CMD: ICMD_ENDIMAGE", "<<<< Page_PrintSidePanel[687904]",
                                      "<<<< Page_ProcessSubPage_POManual"}),
            Lines_WithoutWriter(log));
}

TEST_F(TManualPanelTest, KeepAreaInsidePeelOffAreaLeavesAHole) {
  task.frontPO = 12;
  Area(0, AREA_GROUP_PEELOFF, 0, 10, 20, 30, 40);  // columns 10-39, rows 20-59
  Area(0, AREA_GROUP_KEEP, 0, 15, 25, 5, 5);       // columns 15-19, rows 25-29
  EXPECT_EQ(0, Page_ProcessSubPage_POManual(&task));
  std::vector<std::string> log = StopLog();
  std::string expected = Fill(std::string(kDots, '\0'), 10, 20, 40, 60, '\xFF');
  expected = Fill(expected, 15, 25, 20, 30, '\0');
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == expected);
  EXPECT_TRUE(Test_Contains(log, "Page_ProcessSubPage_POManual --> include: 10,20 - 40,60"));
  EXPECT_TRUE(Test_Contains(log, "Page_ProcessSubPage_POManual --> exclude: 15,25 - 20,30"));
}

TEST_F(TManualPanelTest, KeepAreaAloneChangesNothing) {
  task.frontPO = 2;
  Area(0, AREA_GROUP_KEEP, 2, 0, 0, 100, 100);
  Page_ProcessSubPage_POManual(&task);
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == std::string(kDots, '\0'));
  EXPECT_TRUE(Test_Contains(log, "Page_ProcessSubPage_POManual --> exclude: 0,0 - 100,100"));
}

TEST_F(TManualPanelTest, AllZeroAreaIsEmptyAndZeroExtentsReachTheEdge) {
  task.frontPO = 12;
  Area(0, AREA_GROUP_PEELOFF, 0, 0, 0, 0, 0);
  Area(0, AREA_GROUP_PEELOFF, 1, 0, 0, 0, 100);
  Page_ProcessSubPage_POManual(&task);
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == Fill(std::string(kDots, '\0'), 0, 0, 1036, 100, '\xFF'));
  int includes = 0;
  for (const std::string& line : log)
    includes += line.rfind("Page_ProcessSubPage_POManual --> include:", 0) == 0;
  EXPECT_EQ(1, includes);
  EXPECT_TRUE(Test_Contains(log, "Page_ProcessSubPage_POManual --> include: 0,0 - 1036,100"));
}

TEST_F(TManualPanelTest, AreasAreTakenInSlotOrderSkippingEmptyOnes) {
  task.frontPO = 12;
  Area(0, AREA_GROUP_PEELOFF, 0, 1, 2, 3, 4);
  Area(0, AREA_GROUP_PEELOFF, 2, 1000, 600, 100, 100);  // cut at the panel's edge
  Area(0, AREA_GROUP_KEEP, 4, 2, 3, 1, 1);
  Page_ProcessSubPage_POManual(&task);
  std::vector<std::string> log = StopLog();
  std::vector<std::string> areaLines;
  for (const std::string& line : log)
    if (line.rfind("Page_ProcessSubPage_POManual --> ", 0) == 0) areaLines.push_back(line);
  EXPECT_EQ((std::vector<std::string>{"Page_ProcessSubPage_POManual --> include: 1,2 - 4,6",
                                      "Page_ProcessSubPage_POManual --> include: 1000,600 - 1036,664",
                                      "Page_ProcessSubPage_POManual --> exclude: 2,3 - 3,4"}),
            areaLines);
  std::string expected = Fill(std::string(kDots, '\0'), 1, 2, 4, 6, '\xFF');
  expected = Fill(expected, 1000, 600, 1036, 664, '\xFF');
  expected = Fill(expected, 2, 3, 3, 4, '\0');
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == expected);
}

TEST_F(TManualPanelTest, BackSideUsesItsOwnAreasAndRotation) {
  task.sideIndex = 1;
  task.backPO = 3;
  task.backRotation = 1;
  Area(0, AREA_GROUP_PEELOFF, 0, 0, 0, 0, 0);
  Area(1, AREA_GROUP_PEELOFF, 0, 0, 0, 1, 1);  // the first dot only
  Area(0, AREA_GROUP_PEELOFF, 1, 5, 5, 5, 5);  // front area: not used
  Page_ProcessSubPage_POManual(&task);
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Test_Contains(log, ">>>> Page_ProcessSubPage_POManual(3)"));
  std::string expected(kDots, '\0');
  expected[kDots - 1] = '\xFF';  // turned by 180 degrees
  EXPECT_TRUE(OnlyPanel(PANEL_PO) == expected);
}

#if !defined(__SANITIZE_ADDRESS__)
TEST_F(TManualPanelTest, OverlayPanelOutOfMemoryReturns37AndSendsNothing) {
  g_panelGeometry[kHugeModel] = {0xFFFFFFFFu, 0xFFFFFFFFu};
  task.printerModel = kHugeModel;
  task.frontPO = 2;
  EXPECT_EQ(37, Page_ProcessSubPage_POManual(&task));
  g_panelGeometry.erase(kHugeModel);
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{">>>> Page_ProcessSubPage_POManual(2)",
                                      "<<<< Page_ProcessSubPage_POManual[out of memory]"}),
            log);
}
#endif

TEST_F(TManualPanelTest, UVFileOfExactSizeIsSentAsItStands) {
  std::string data = UVFile(0, "exact.uv", kDots);
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_UV) == data);
  EXPECT_EQ(">>>> Page_ProcessSubPage_UVManual(3)(" + uvDir + "/exact.uv)", log.front());
  EXPECT_EQ("<<<< Page_ProcessSubPage_UVManual", log.back());
}

TEST_F(TManualPanelTest, UVFileOneByteShortIsRefused) {
  UVFile(0, "short.uv", kDots - 1);
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{
                ">>>> Page_ProcessSubPage_UVManual(3)(" + uvDir + "/short.uv)",
                "ERROR: Page_ProcessSubPage_UVManual --> unable to read file (" + uvDir +
                    "/short.uv)",
                "<<<< Page_ProcessSubPage_UVManual"}),
            log);
}

TEST_F(TManualPanelTest, UVFileOneByteLongIsAcceptedAndItsFirstBytesSent) {
  std::string data = UVFile(0, "long.uv", kDots + 1);
  Page_ProcessSubPage_UVManual(&task);
  StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_UV) == data.substr(0, kDots));
}

TEST_F(TManualPanelTest, WithRotationTheFirstByteOfTheFileIsTheLastDotSent) {
  task.frontRotation = 1;
  std::string data = UVFile(0, "turned.uv", kDots);
  Page_ProcessSubPage_UVManual(&task);
  StopLog();
  std::string sent = OnlyPanel(PANEL_UV);
  ASSERT_EQ(kDots, sent.size());
  EXPECT_EQ(data[0], sent[kDots - 1]);
  EXPECT_TRUE(std::string(data.rbegin(), data.rend()) == sent);
}

TEST_F(TManualPanelTest, BackSideReadsTheBackUVFile) {
  task.sideIndex = 1;
  UVFile(0, "front.uv", kDots - 5);  // too short: would be refused
  std::string back = UVFile(1, "back.uv", kDots);
  Page_ProcessSubPage_UVManual(&task);
  StopLog();
  EXPECT_TRUE(OnlyPanel(PANEL_UV) == back);
}

TEST_F(TManualPanelTest, MissingUVFileIsReported) {
  task.frontUV = 2;
  task.frontUVFile = uvDir + "/missing.uv";
  unlink(task.frontUVFile.c_str());
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_TRUE(Test_Contains(
      log, "ERROR: Page_ProcessSubPage_UVManual --> file not found (" + uvDir + "/missing.uv)"));
}

TEST_F(TManualPanelTest, SymbolicLinkAndDirectoryAreNotOpened) {
  std::string target = uvDir + "/target.uv";
  Test_WriteFile(target, std::string(kDots, '\x11'));
  std::string link = uvDir + "/link.uv";
  unlink(link.c_str());
  ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
  task.frontUV = 2;
  task.frontUVFile = link;
  Page_ProcessSubPage_UVManual(&task);
  task.frontUVFile = uvDir;
  Page_ProcessSubPage_UVManual(&task);
  std::vector<std::string> log = StopLog();
  unlink(link.c_str());
  EXPECT_EQ("", Bytes());
  EXPECT_TRUE(Test_Contains(
      log, "ERROR: Page_ProcessSubPage_UVManual --> unable to open file (" + link + ")(40)"));
  EXPECT_TRUE(Test_Contains(
      log, "ERROR: Page_ProcessSubPage_UVManual --> unable to open file (" + uvDir + ")(22)"));
}

#if !defined(__SANITIZE_ADDRESS__)
TEST_F(TManualPanelTest, UVPanelOutOfMemoryIsReported) {
  UVFile(0, "nomem.uv", 16);
  g_panelGeometry[kHugeModel] = {0xFFFFFFFFu, 0xFFFFFFFFu};
  task.printerModel = kHugeModel;
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  g_panelGeometry.erase(kHugeModel);
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_TRUE(Test_Contains(log, "ERROR: Page_ProcessSubPage_UVManual --> out of memory"));
}
#endif
