// WARNING lines about pages and panels a job did not get, one job per case
// through the built filter: the line says what is missing and why, and the
// designed output (stream, designed standard-error lines, log) stays.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "brellian_paths.h"
#include "jobstream/records.h"
#include "options/lut_file.h"
#include "support/jobs_support.h"
#include "support/process.h"
#include "support/warnings_support.h"

using namespace jobtest;
using namespace warntest;

TEST_F(TWarnJobs, ColorKWithResinPageAndOnePageHasNoBlackPanel) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=Page");
  EXPECT_EQ((std::vector<std::string>{"WARNING: Front side printed without its black panel: the job has no more "
                                      "pages, and frontRibbon=ColorK with frontResin=Page takes a page for the "
                                      "black panel"}),
            run.warnings);
  // As designed: the side announces a black panel and ends with the colour one.
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  // With the black page the same job prints both panels and warns nothing.
  TWarnRun two = Warn_Run({Job_WhitePage(), Job_WhitePage()}, "frontRibbon=ColorK frontResin=Page");
  EXPECT_TRUE(two.warnings.empty());
  EXPECT_EQ(0, run.stream.compare(0, run.check.panels[0].offset, two.stream, 0, run.check.panels[0].offset));
  Warn_LogHasNo(run, "printed without");
}

TEST_F(TWarnJobs, UVAndOverlayPagesMissing) {
  // No ribbon has both a UV and an overlay panel: the PPD's constraints are
  // left out, so that only the warnings about pages are seen.
  std::string uri = std::string("usbbr://Brellian/BR-1030?serial=") + kWarnSerial;
  std::string ppd = Warn_UnconstrainedPPD(1030);
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Page frontPO=Page", uri, ppd);
  EXPECT_EQ((std::vector<std::string>{"WARNING: Front side printed without its UV panel and overlay panel: the job "
                                      "has no more pages, and frontUV=Page takes a page for the UV panel, frontPO="
                                      "Page takes a page for the overlay panel"}),
            run.warnings);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  // Up to the end of the colour panel the stream is the three-page job's.
  TWarnRun three = Warn_Run({Job_WhitePage(), Job_WhitePage(), Job_WhitePage()}, "frontUV=Page frontPO=Page", uri, ppd);
  EXPECT_TRUE(three.warnings.empty());
  ASSERT_EQ(3u, three.check.panels.size());
  size_t end = three.check.panels[1].offset;
  EXPECT_EQ(0, run.stream.compare(0, end, three.stream, 0, end));
}

TEST_F(TWarnJobs, DuplexJobWithoutABackPage) {
  TWarnRun run = Warn_Run({Job_WhitePage(true)}, "");
  EXPECT_EQ((std::vector<std::string>{"WARNING: Back side not printed: the job asks for two-sided printing "
                                      "(Duplex) and has no page for the back"}),
            run.warnings);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  TWarnRun both = Warn_Run({Job_WhitePage(true), Job_WhitePage(true)}, "");
  EXPECT_TRUE(both.warnings.empty());
}

TEST_F(TWarnJobs, PagesBeyondTheCard) {
  TWarnRun base = Warn_Run({Job_WhitePage()}, "");
  TWarnRun one = Warn_Run({Job_WhitePage(), Job_WhitePage()}, "");
  TWarnRun three = Warn_Run({Job_WhitePage(), Job_WhitePage(), Job_WhitePage(), Job_WhitePage()}, "");
  EXPECT_TRUE(base.warnings.empty());
  EXPECT_EQ((std::vector<std::string>{
                "WARNING: Page 2 not printed: a job prints one card, and the card was complete after page 1"}),
            one.warnings);
  EXPECT_EQ((std::vector<std::string>{"WARNING: 3 pages not printed (pages 2 to 4): a job prints one card, and the "
                                      "card was complete after page 1"}),
            three.warnings);
  // The stream is the one-page job's; the spooler still gets every PAGE line.
  EXPECT_TRUE(one.stream == base.stream);
  EXPECT_TRUE(three.stream == base.stream);
  EXPECT_EQ(Warn_DesignedLines(4), three.designed);
  Warn_LogHasNo(three, "not printed");
}

TEST_F(TWarnJobs, PageThatIsNotRGBIsLeftOut) {
  TRasterPage gray = Job_WhitePage();
  gray.header.cupsColorSpace = CUPS_CSPACE_W;
  gray.header.cupsBitsPerPixel = 8;
  gray.header.cupsBytesPerLine = kW;
  gray.data.resize(static_cast<size_t>(kW) * kH);
  TWarnRun run = Warn_Run({gray, Job_WhitePage()}, "");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "");
  EXPECT_EQ((std::vector<std::string>{"WARNING: Page 1 is left out: it is not 8-bit RGB (colour space 0, 8 bits "
                                      "per pixel), the only raster the printer takes; the next page takes its "
                                      "place"}),
            run.warnings);
  EXPECT_TRUE(run.stream == base.stream);
  EXPECT_EQ(Warn_DesignedLines(2), run.designed);
  EXPECT_TRUE(Test_Contains(run.log, "ERR: CUPS bytes per pixel = 1.  Only supports 3."));
  Warn_LogHasNo(run, "is left out");
}
