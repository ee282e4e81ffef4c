// Whole jobs through the filter: UV and overlay panels, duplex, rotation.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include "lib/sample_card.h"
#include "support/jobs_support.h"

using namespace jobtest;

namespace {

class TJobPanelTest : public ::testing::Test {
 protected:
  void SetUp() override { settings = Job_Settings(); }

  // 'Save()' - Store the settings for the next job.
  void Save() { ASSERT_TRUE(settings.Save()); }

  TBrellianSettings settings;
};

// 'Rows()' - A one-byte panel with 255 on columns x0 <= x < x1 of rows
// y0 <= y < y1, 0 elsewhere.
std::string Rows(int x0, int y0, int x1, int y1) {
  std::string panel(kDots, '\0');
  for (int y = y0; y < y1; ++y)
    for (int x = x0; x < x1; ++x) panel[static_cast<size_t>(y) * kW + x] = '\xFF';
  return panel;
}

// 'Turned()' - The pixels of an image of bpp-byte pixels turned by 180
// degrees.
std::string Turned(const std::string& pixels, size_t bpp) {
  std::string out;
  out.reserve(pixels.size());
  for (size_t i = pixels.size(); i >= bpp; i -= bpp) out.append(pixels, i - bpp, bpp);
  return out;
}

}  // namespace

TEST_F(TJobPanelTest, UVAndOverlayPagesFollowTheColourPage) {
  Save();
  TJobRun run = Job_Run({Job_WhitePage(), Job_WhitePage(), Job_WhitePage()},
                        "frontUV=Page frontPO=Page");
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2 IMAGE3 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(3u, run.stream.panels.size());
  // Black page dots give 255 on the UV and the overlay panel.
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == Rows(10, 20, 110, 70));
  EXPECT_TRUE(Job_Pixels(run.stream.panels[2]) == Rows(10, 20, 110, 70));
}

TEST_F(TJobPanelTest, UVAndOverlayPresetsFollowTheOnlyPage) {
  settings.uvNames[0] = "exact.uv";
  settings.poAreas[0][0][0] = "0px 0px 0px 100px";
  Save();
  std::string uv = Job_UVFile("exact.uv", kDots);
  TJobRun run = Job_Run({Job_WhitePage()}, "frontUV=Preset1 frontPO=Preset1");
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2 IMAGE3 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(3u, run.stream.panels.size());
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == uv);
  EXPECT_TRUE(Job_Pixels(run.stream.panels[2]) == Rows(0, 0, kW, 100));
  EXPECT_EQ(1, Job_Count(run.log, "Page_ProcessSubPage_POManual --> include: 0,0 - 1036,100"));
}

TEST_F(TJobPanelTest, UVPresetWithOverlayPageIsSentAfterTheColourPage) {
  settings.uvNames[1] = "second.uv";
  Save();
  std::string uv = Job_UVFile("second.uv", kDots + 1);  // one byte long: accepted
  TJobRun run = Job_Run({Job_WhitePage(), Job_WhitePage()}, "frontUV=Preset2 frontPO=Page");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2 IMAGE3 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(3u, run.stream.panels.size());
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == uv.substr(0, kDots));
  EXPECT_EQ(2, Job_Count(run.log, ">>>> Page_Process"));
}

TEST_F(TJobPanelTest, UVFileOneByteShortSendsNoUVPanel) {
  settings.uvNames[0] = "short.uv";
  Save();
  Job_UVFile("short.uv", kDots - 1);
  TJobRun run = Job_Run({Job_WhitePage()}, "frontUV=Preset1");
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(1, Job_Count(run.log, "ERROR: Page_ProcessSubPage_UVManual --> unable to read file (" +
                                      Test_ConfDir() + "/uv/short.uv)"));
}

TEST_F(TJobPanelTest, CustomPeelOffAndKeepAreasMakeTheOverlayPanel) {
  Save();
  TJobRun run = Job_Run({Job_WhitePage()},
                        "frontPO=CustomAreas frontPeelOff1='Custom.10px 20px 30px 40px' "
                        "frontNonPeelOff1='Custom.15px 25px 5px 5px'");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE3 ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(2u, run.stream.panels.size());
  std::string expected = Rows(10, 20, 40, 60);
  for (int y = 25; y < 30; ++y)
    for (int x = 15; x < 20; ++x) expected[static_cast<size_t>(y) * kW + x] = '\0';
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == expected);
}

TEST_F(TJobPanelTest, DuplexWithoutTumbleSendsBothSidesUnturned) {
  Save();
  TRasterPage front = Job_WhitePage(true);
  TRasterPage back = Raster_MakeRGBPage(kW, kH, 300, 40, 50, 60);
  Raster_SetPixel(&back, 0, 0, 1, 2, 3);
  back.header.Duplex = CUPS_TRUE;
  TJobRun run = Job_Run({front, back, Job_WhitePage(true)}, "backRibbon=Color");
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE STARTSIDE LUTTABLE IMAGE0 "
            "ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(2u, run.stream.panels.size());
  EXPECT_EQ(1, run.stream.panels[1].side);
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == std::string(back.data.begin(), back.data.end()));
  EXPECT_EQ(0, Job_Count(run.log, "Tumble: Processing card rotation."));
}

TEST_F(TJobPanelTest, DuplexWithTumbleTurnsOnlyTheBackSide) {
  Save();
  TRasterPage front = Job_WhitePage(true, true);
  TRasterPage back = Job_WhitePage(true, true);
  TJobRun run = Job_Run({front, back}, "backRibbon=Monochrome");
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE STARTSIDE LUTTABLE IMAGE1 "
            "ENDSIDE ENDCARD ENDJOB",
            run.outline);
  ASSERT_EQ(2u, run.stream.panels.size());
  EXPECT_TRUE(Job_Pixels(run.stream.panels[0]) ==
              std::string(front.data.begin(), front.data.end()));
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == Turned(Rows(10, 20, 110, 70), 1));
  EXPECT_EQ(1, Job_Count(run.log, "Tumble: Processing card rotation."));
}

TEST_F(TJobPanelTest, RotationTurnsTheSideAndItsPresetPanels) {
  settings.uvNames[0] = "turn.uv";
  settings.poAreas[0][0][0] = "0px 0px 0px 100px";
  Save();
  std::string uv = Job_UVFile("turn.uv", kDots);
  TRasterPage page = Job_WhitePage();
  TJobRun run = Job_Run({page}, "frontRotation=Yes frontUV=Preset1 frontPO=Preset1");
  ASSERT_EQ(3u, run.stream.panels.size());
  std::string pixels(page.data.begin(), page.data.end());
  EXPECT_TRUE(Job_Pixels(run.stream.panels[0]) == Turned(pixels, 3));
  EXPECT_TRUE(Job_Pixels(run.stream.panels[1]) == Turned(uv, 1));
  EXPECT_EQ(uv[0], Job_Pixels(run.stream.panels[1])[kDots - 1]);
  EXPECT_TRUE(Job_Pixels(run.stream.panels[2]) == Turned(Rows(0, 0, kW, 100), 1));
  EXPECT_EQ(1, Job_Count(run.log, "ROTATE:    yes"));
}

TEST_F(TJobPanelTest, SampleCardWithAllPanelsGivesEveryPanelKindOnBothSides) {
  Save();
  TJobRun run = Job_Run(Raster_MakeSampleCardAllPanelsJob(kW, kH, 300),
                        "frontRibbon=ColorK backRibbon=ColorK frontResin=Page backResin=Page frontUV=Page backUV=Page "
                        "frontPO=Page backPO=Page");
  EXPECT_EQ(0, run.process.status);
  EXPECT_TRUE(run.stream.complete) << run.stream.error;
  EXPECT_EQ(
      "STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE1 IMAGE2 IMAGE3 ENDSIDE "
      "STARTSIDE LUTTABLE IMAGE0 IMAGE1 IMAGE2 IMAGE3 ENDSIDE ENDCARD ENDJOB",
      run.outline);
  ASSERT_EQ(8u, run.stream.panels.size());
  // The back overlay page is dark all over: overlay on every dot.
  EXPECT_TRUE(Job_Pixels(run.stream.panels[7]) == std::string(kDots, '\xFF'));
  // The UV emblem glows on some dots and not on others, the same on both sides.
  std::string uv = Job_Pixels(run.stream.panels[2]);
  EXPECT_NE(std::string::npos, uv.find('\xFF'));
  EXPECT_NE(std::string::npos, uv.find('\0'));
  EXPECT_TRUE(uv == Job_Pixels(run.stream.panels[6]));
}

// The page buffer of a later page reuses the memory of an earlier one: the
// rows a short page never delivers must read as white (the filter's fill
// for rows that never arrived), never as the earlier page's dots, which
// are black here.
TEST_F(TJobPanelTest, RowsAShortPageNeverDeliversAreWhiteNotTheEarlierPage) {
  Save();
  TRasterPage front = Raster_MakeRGBPage(kW, kH, 300, 0, 0, 0);
  front.header.Duplex = CUPS_TRUE;
  for (size_t cut : {size_t{10} * kW * 3, size_t{10} * kW * 3 + kW}) {  // whole rows, and mid-row
    TRasterPage back = Raster_MakeRGBPage(kW, kH, 300, 255, 255, 255);
    back.header.Duplex = CUPS_TRUE;
    back.data.resize(cut);
    TJobRun run = Job_Run({front, back}, "");
    EXPECT_EQ(0, run.process.status);
    ASSERT_EQ(2u, run.stream.panels.size());
    std::string pixels = Job_Pixels(run.stream.panels[1]);
    ASSERT_EQ(kDots * 3, pixels.size());
    // Ten white rows read, the half row and the rows after it white as well.
    EXPECT_TRUE(pixels == std::string(kDots * 3, '\xFF')) << cut;
    EXPECT_EQ(std::string::npos, pixels.find('\0')) << cut;
    EXPECT_NE(std::string::npos, run.process.err.find("WARNING: Page 2 is cut short: 10 of its 664 rows")) << cut;
  }
}
