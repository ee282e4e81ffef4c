// Whole jobs through the filter: sides, page counts, refused pages.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "support/jobs_support.h"

using namespace jobtest;

namespace {

class TJobTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(Job_Settings().Save()); }
};

// 'Pixel()' - The bytes of dot (x, y) of a panel.
std::string Pixel(const TStreamPanel& panel, uint32_t x, uint32_t y) {
  size_t at = (static_cast<size_t>(y) * panel.width + x) * panel.bytesPerPixel;
  return Job_Pixels(panel).substr(at, panel.bytesPerPixel);
}

}  // namespace

TEST_F(TJobTest, SimplexColorKWithResinPageThreePagesMakeOneCard) {
  TJobRun run = Job_Run({Job_WhitePage(), Job_WhitePage(), Job_WhitePage()},
                        "frontRibbon=ColorK frontResin=Page");
  EXPECT_EQ(0, run.process.status);
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE1 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  EXPECT_NE(std::string::npos, run.process.err.find("PAGE: 3 1\n"));
  EXPECT_NE(std::string::npos, run.process.err.find("INFO: Ready to print.\n"));
  // The third page is read but not processed.
  EXPECT_EQ(2, Job_Count(run.log, ">>>> Page_Process"));
  ASSERT_EQ(2u, run.stream.panels.size());
  const TStreamPanel& black = run.stream.panels[1];
  EXPECT_EQ(PANEL_K, static_cast<int32_t>(black.panelType));
  EXPECT_EQ(35u, run.stream.panels[0].chunks);
  EXPECT_EQ(12u, black.chunks);
  // The black block of the page is solid black; white stays empty.
  EXPECT_EQ(std::string("\xFF"), Pixel(black, 10, 20));
  EXPECT_EQ(std::string("\xFF"), Pixel(black, 109, 69));
  EXPECT_EQ(std::string(1, '\0'), Pixel(black, 110, 69));
  EXPECT_EQ(1, Job_Count(run.log, "CMD: ICMD_IMAGE [2063712]"));
}

TEST_F(TJobTest, MonochromeSideIsOneBlackPanel) {
  TJobRun run = Job_Run({Job_WhitePage()}, "frontRibbon=Monochrome");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE1 ENDSIDE ENDCARD ENDJOB", run.outline);
  ASSERT_EQ(1u, run.stream.panels.size());
  EXPECT_EQ(std::string("\xFF"), Pixel(run.stream.panels[0], 50, 40));
  EXPECT_EQ(std::string(1, '\0'), Pixel(run.stream.panels[0], 5, 5));
}

TEST_F(TJobTest, GrayscaleSidePrintsItsColourPanelInGray) {
  TRasterPage red = Raster_MakeRGBPage(kW, kH, 300, 255, 0, 0);
  TJobRun run = Job_Run({red}, "frontRibbon=Grayscale");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  ASSERT_EQ(1u, run.stream.panels.size());
  EXPECT_EQ(std::string("\x4C\x4C\x4C"), Pixel(run.stream.panels[0], 500, 300));
}

TEST_F(TJobTest, ColourSideIsOnePageAsItStands) {
  TRasterPage page = Raster_MakeRGBPage(kW, kH, 300, 10, 20, 30);
  TJobRun run = Job_Run({page}, "frontRibbon=Color");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  ASSERT_EQ(1u, run.stream.panels.size());
  EXPECT_TRUE(Job_Pixels(run.stream.panels[0]) ==
              std::string(page.data.begin(), page.data.end()));
}

TEST_F(TJobTest, ColorKWithResinAreasTakesBothPanelsFromOnePage) {
  TJobRun run = Job_Run({Job_WhitePage(), Job_WhitePage()},
                        "frontRibbon=ColorK frontResin=CustomAreas");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE1 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  EXPECT_EQ(1, Job_Count(run.log, ">>>> Page_Process"));
  EXPECT_EQ(1, Job_Count(run.log, "Image_StripToResin --> include: entire card"));
}

TEST_F(TJobTest, PagesAfterTheCardIsCompleteAreReadButNotPrinted) {
  std::vector<TRasterPage> pages(5, Job_WhitePage());
  TJobRun run = Job_Run(pages, "");
  EXPECT_EQ(0, run.process.status);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  for (int i = 1; i <= 5; ++i)
    EXPECT_NE(std::string::npos, run.process.err.find("PAGE: " + std::to_string(i) + " 1\n"));
  EXPECT_EQ(1, Job_Count(run.log, ">>>> Page_Process"));
  EXPECT_EQ(1, Job_Count(run.log, "JCOMP:   1"));
}

TEST_F(TJobTest, RefusedKCMYPageIsSkippedAndTheNextPagePrints) {
  TRasterPage kcmy = Job_WhitePage();
  kcmy.header.cupsColorSpace = CUPS_CSPACE_KCMY;
  TJobRun run = Job_Run({kcmy, Job_WhitePage()}, "");
  EXPECT_EQ(0, run.process.status);
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(1, Job_Count(run.log, "ERR: CUPS number planes = 4.  Only supports 1."));
  EXPECT_EQ(2, Job_Count(run.log, ">>>> Page_Process"));
  EXPECT_EQ(1, Job_Count(run.log, "<<<< Page_Process"));
}

TEST_F(TJobTest, RefusedGrayPageIsSkippedAndTheNextPagePrints) {
  TRasterPage gray = Job_WhitePage();
  gray.header.cupsColorSpace = CUPS_CSPACE_SW;
  gray.header.cupsBitsPerPixel = 8;
  gray.header.cupsBytesPerLine = kW;
  gray.data.assign(kDots, 0x80);
  TJobRun run = Job_Run({gray, Job_WhitePage()}, "frontRibbon=Monochrome");
  EXPECT_EQ(0, run.process.status);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE1 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(1, Job_Count(run.log, "ERR: CUPS bytes per pixel = 1.  Only supports 3."));
  EXPECT_EQ(1, Job_Count(run.log, "BPP:       1"));
  EXPECT_EQ(1, Job_Count(run.log, "BPP:       3"));
}
