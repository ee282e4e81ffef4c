// Tests of Page_Process: the panels a side's pages become and what follows.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>
#include <unistd.h>

#include "imaging/page_process.h"
#include "support/process.h"
#include "support/page_process_support.h"

using namespace pagetest;

namespace {

constexpr uint32_t kW = 1036;
constexpr uint32_t kH = 664;
constexpr size_t kDots = static_cast<size_t>(kW) * kH;

class TPageProcessTest : public TPageTest {
 protected:
  TPageProcessTest() { memset(&header, 0, sizeof header); }

  // 'Page()' - Process one panel-sized RGB page whose every dot is (r, g, b)
  // but the top-left dot, which is black, as the page loop would: count
  // it, hold it in pageBuffer, free it afterwards.  Returns what
  // Page_Process returned.
  int32_t Page(uint8_t r, uint8_t g, uint8_t b, uint32_t bytesPerPixel = 3) {
    header.cupsWidth = kW;
    header.cupsHeight = kH;
    header.cupsBitsPerColor = 8;
    header.cupsBitsPerPixel = 8 * bytesPerPixel;
    header.cupsBytesPerLine = kW * bytesPerPixel;
    header.cupsColorSpace = bytesPerPixel == 3 ? CUPS_CSPACE_RGB : CUPS_CSPACE_SW;
    size_t size = static_cast<size_t>(header.cupsBytesPerLine) * kH;
    task.pageBuffer = static_cast<uint8_t*>(malloc(size));
    for (size_t i = 0; i + 2 < size; i += 3) {
      task.pageBuffer[i] = r;
      task.pageBuffer[i + 1] = g;
      task.pageBuffer[i + 2] = b;
    }
    memset(task.pageBuffer, 0, bytesPerPixel);
    task.pageCount++;
    int32_t result = Page_Process(&task, &header);
    free(task.pageBuffer);
    task.pageBuffer = nullptr;
    return result;
  }

  // 'Outline()' - The outline of what was written since the last call.
  std::string Outline() {
    std::string bytes = Bytes();
    std::string fresh = bytes.substr(seen);
    seen = bytes.size();
    return Stream_Outline(Stream_Split(fresh));
  }

  cups_page_header2_t header;
  size_t seen = 0;
};

}  // namespace

TEST_F(TPageProcessTest, SimplexColorKWithResinPageTakesAColourAndABlackPage) {
  task.frontRibbon = 3;
  task.frontResin = 0;
  EXPECT_EQ(0, Page(200, 200, 200));
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0", Outline());
  EXPECT_EQ(1, task.subPage);
  EXPECT_EQ(1, task.sideOpen);
  EXPECT_EQ(0, task.jobComplete);
  EXPECT_EQ(0, Page(200, 200, 200));
  EXPECT_EQ("IMAGE1 ENDSIDE ENDCARD", Outline());
  EXPECT_EQ(1, task.jobComplete);
  EXPECT_EQ(0, task.cardOpen);
  EXPECT_EQ(0, task.sideOpen);
  // The page loop reads a third page but no longer hands it over: the card
  // is complete.
}

TEST_F(TPageProcessTest, ColourSideEndsAfterOnePage) {
  task.frontRibbon = 2;
  EXPECT_EQ(0, Page(10, 20, 30));
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD", Outline());
  EXPECT_EQ(1, task.jobComplete);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  ASSERT_EQ(kDots * 3, panels[0].data.size());
  EXPECT_EQ(std::string("\0\0\0\x0A\x14\x1E", 6), panels[0].data.substr(0, 6));
}

TEST_F(TPageProcessTest, ColorKWithResinAreasSendsColourAndResinFromOnePage) {
  task.frontRibbon = 3;
  task.frontResin = 11;
  task.resinFlag[0] = 0;
  EXPECT_EQ(0, Page(255, 255, 255));
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE1 ENDSIDE ENDCARD", Outline());
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(2u, panels.size());
  std::string resin(kDots, '\0');
  resin[0] = '\xFF';  // only the black dot takes resin
  EXPECT_TRUE(panels[1].data == resin);
}

TEST_F(TPageProcessTest, MonochromeSideIsOneBlackPage) {
  task.frontRibbon = 0;
  EXPECT_EQ(0, Page(255, 255, 255));
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE1 ENDSIDE ENDCARD", Outline());
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  std::string black(kDots, '\0');
  black[0] = '\xFF';
  EXPECT_TRUE(panels[0].data == black);
}

TEST_F(TPageProcessTest, GrayscaleSidePrintsItsColourPanelInGray) {
  task.frontRibbon = 1;
  EXPECT_EQ(0, Page(255, 0, 0));
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD", Outline());
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_EQ(std::string("\0\0\0\x4C\x4C\x4C\x4C\x4C\x4C", 9), panels[0].data.substr(0, 9));
}

TEST_F(TPageProcessTest, UVAndOverlayPagesFollowTheColourPage) {
  task.frontUV = 1;
  task.frontPO = 1;
  Page(255, 255, 255);
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0", Outline());
  EXPECT_EQ(PANEL_UV, task.subPage);
  Page(255, 0, 0);
  EXPECT_EQ("IMAGE2", Outline());
  EXPECT_EQ(PANEL_PO, task.subPage);
  Page(255, 255, 255);
  EXPECT_EQ("IMAGE3 ENDSIDE ENDCARD", Outline());
  EXPECT_EQ(1, task.jobComplete);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(3u, panels.size());
  // UV and overlay from a page: the inverted luminance, so black gives 255.
  EXPECT_EQ(std::string("\xFF\xB3\xB3", 3), panels[1].data.substr(0, 3));
  EXPECT_EQ(std::string("\xFF\0\0", 3), panels[2].data.substr(0, 3));
}

TEST_F(TPageProcessTest, OverlayPageWithUVPresetSendsThePresetAtOnce) {
  std::string uvPath = Test_ConfDir() + "/uv/page-process.uv";
  Test_MakeDirs(Test_ConfDir() + "/uv");
  Test_WriteFile(uvPath, std::string(kDots, '\x42'));
  task.frontUV = 3;
  task.frontUVFile = uvPath;
  task.frontPO = 1;
  Page(255, 255, 255);
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2", Outline());
  EXPECT_EQ(1, task.sideOpen);
  EXPECT_EQ(PANEL_PO, task.subPage);
  Page(255, 255, 255);
  EXPECT_EQ("IMAGE3 ENDSIDE ENDCARD", Outline());
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(3u, panels.size());
  EXPECT_TRUE(panels[1].data == std::string(kDots, '\x42'));
}

TEST_F(TPageProcessTest, UVAndOverlayPresetsFollowTheLastPageThenTheSideEnds) {
  task.frontRibbon = 0;
  task.frontUV = 2;
  task.frontUVFile = Test_ConfDir() + "/uv/no-such-file.uv";
  task.frontPO = 12;
  task.poAreas[0][AREA_GROUP_PEELOFF][0] = TArea{0, 0, 1, 1};
  Page(255, 255, 255);
  // The UV file is missing: only the overlay preset panel follows.
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE1 IMAGE3 ENDSIDE ENDCARD", Outline());
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Test_Contains(log, "ERROR: Page_ProcessSubPage_UVManual --> file not found (" +
                                     task.frontUVFile + ")"));
}

TEST_F(TPageProcessTest, OverlayPresetFollowsTheUVPage) {
  task.frontUV = 1;
  task.frontPO = 2;
  Page(255, 255, 255);
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0", Outline());
  Page(255, 255, 255);
  EXPECT_EQ("IMAGE2 IMAGE3 ENDSIDE ENDCARD", Outline());
}

TEST_F(TPageProcessTest, DuplexCardTakesTheBackSideFromTheNextPage) {
  task.duplex = 1;
  task.frontRibbon = 2;
  task.backRibbon = 0;
  Page(255, 255, 255);
  EXPECT_EQ("STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE", Outline());
  EXPECT_EQ(1, task.sideIndex);
  EXPECT_EQ(1, task.cardOpen);
  EXPECT_EQ(0, task.jobComplete);
  Page(255, 255, 255);
  EXPECT_EQ("STARTSIDE LUTTABLE IMAGE1 ENDSIDE ENDCARD", Outline());
  EXPECT_EQ(1, task.jobComplete);
  uint32_t side = 0;
  for (const TStreamRecord& r : Records()) {
    if (r.type != ICMD_STARTSIDE) continue;
    EXPECT_EQ(side++, Rec_Get32(reinterpret_cast<const uint8_t*>(r.payload.data())));
  }
  EXPECT_EQ(2u, side);
}

TEST_F(TPageProcessTest, TumbleTurnsTheBackSideOnly) {
  task.duplex = 1;
  task.tumble = 1;
  Page(255, 255, 255);
  Page(255, 255, 255);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(2u, panels.size());
  // The black dot stays first on the front and becomes the last on the back.
  EXPECT_EQ(std::string("\0\0\0\xFF", 4), panels[0].data.substr(0, 4));
  EXPECT_EQ(std::string("\xFF\xFF\xFF", 3), panels[1].data.substr(0, 3));
  EXPECT_EQ(std::string("\xFF\0\0\0", 4), panels[1].data.substr(kDots * 3 - 4));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ(1, Lines_Count(log, "Tumble: Processing card rotation."));
}

TEST_F(TPageProcessTest, RotationTurnsTheSideImage) {
  task.frontRotation = 1;
  Page(255, 255, 255);
  std::vector<TStreamPanel> panels = Stream_Panels(Records());
  ASSERT_EQ(1u, panels.size());
  EXPECT_EQ(std::string("\xFF\xFF\xFF", 3), panels[0].data.substr(0, 3));
  EXPECT_EQ(std::string("\xFF\0\0\0", 4), panels[0].data.substr(kDots * 3 - 4));
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Test_Contains(log, "ROTATE:    yes"));
}

TEST_F(TPageProcessTest, StateLinesComeFirst) {
  task.frontRibbon = 3;
  task.frontResin = 4;
  task.frontUV = 1;
  task.frontPO = 12;
  Page(255, 255, 255);
  std::vector<std::string> log = StopLog();
  ASSERT_GE(log.size(), 10u);
  EXPECT_EQ((std::vector<std::string>{">>>> Page_Process", "PAGE:      1", "SIDE:      0",
                                      "SIDEPANEL: 0", "ROTATE:    no", "COLOR:     3",
                                      "RESIN:     4", "UV:        1", "PO:        12",
                                      "BPP:       3"}),
            std::vector<std::string>(log.begin(), log.begin() + 10));
  EXPECT_EQ("<<<< Page_Process", log.back());
}

TEST_F(TPageProcessTest, UnconvertiblePageWritesNothingAndChangesNothing) {
  EXPECT_EQ(1, Page(0, 0, 0, 1));
  EXPECT_EQ("", Bytes());
  EXPECT_EQ(0, task.cardOpen);
  EXPECT_EQ(0, task.subPage);
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Test_Contains(log, "BPP:       1"));
  EXPECT_EQ(0, Lines_Count(log, "<<<< Page_Process"));
  // The next page is taken as the same panel.
}

TEST_F(TPageProcessTest, HeaderWithoutWidthLogsZeroBytesPerPixel) {
  header.cupsWidth = 0;
  header.cupsHeight = 0;
  header.cupsBytesPerLine = 3;
  header.cupsColorSpace = CUPS_CSPACE_RGB;
  EXPECT_EQ(1, Page_Process(&task, &header));
  std::vector<std::string> log = StopLog();
  EXPECT_TRUE(Test_Contains(log, "BPP:       0"));
  EXPECT_EQ("", Bytes());
}

TEST_F(TPageProcessTest, SubPageOutsideThePanelsWritesNoPanelAndKeepsTheState) {
  Page(255, 255, 255);  // opens nothing further: a colour side ends
  task.jobComplete = 0;
  task.cardOpen = 1;
  task.sideOpen = 1;
  task.subPage = 7;
  Outline();
  EXPECT_EQ(0, Page(255, 255, 255));
  EXPECT_EQ("", Outline());
  EXPECT_EQ(7, task.subPage);
  EXPECT_EQ(1, task.sideOpen);
  EXPECT_EQ(0, task.jobComplete);
}
