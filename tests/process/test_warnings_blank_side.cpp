// The WARNING line for a card side that prints nothing: a side whose colour
// and black panels hold no printed dot (a white page, or a document that
// lies outside the page) is said, and the job still prints as designed.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/jobs_support.h"
#include "support/process.h"
#include "support/warnings_support.h"

using namespace jobtest;
using namespace warntest;

namespace {

const char* const kSeeGuide =
    " prints nothing: its pages have no dot to print on the card (a white page, or a document that lies "
    "outside the page). See \"Where the document goes\" in the user guide.";

// 'BlankPage()' - A white panel-sized page, duplex as given.
TRasterPage BlankPage(bool duplex = false) {
  TRasterPage page = Raster_MakeRGBPage(kW, kH, 300, 255, 255, 255);
  page.header.Duplex = duplex ? CUPS_TRUE : CUPS_FALSE;
  return page;
}

}  // namespace

TEST_F(TWarnJobs, AWhiteColourPageIsSaidToPrintNothing) {
  TWarnRun run = Warn_Run({BlankPage()}, "frontRibbon=Color");
  EXPECT_EQ(std::vector<std::string>{std::string("WARNING: Front side") + kSeeGuide}, run.warnings);
  // The job prints as designed: the same records and lines as a page with
  // something on it, which has no warning.
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontRibbon=Color");
  EXPECT_TRUE(base.warnings.empty()) << base.warnings.front();
  EXPECT_EQ(base.outline, run.outline);
  EXPECT_EQ(base.designed, run.designed);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  EXPECT_EQ(base.stream.size(), run.stream.size());
  Warn_LogHasNo(run, "prints nothing");
}

TEST_F(TWarnJobs, AMonochromeSideWithoutABlackDotIsSaidToPrintNothing) {
  TWarnRun run = Warn_Run({BlankPage()}, "frontRibbon=Monochrome");
  EXPECT_EQ(std::vector<std::string>{std::string("WARNING: Front side") + kSeeGuide}, run.warnings);
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontRibbon=Monochrome");
  EXPECT_TRUE(base.warnings.empty()) << base.warnings.front();
  EXPECT_EQ(base.outline, run.outline);
  EXPECT_EQ(base.designed, run.designed);
}

TEST_F(TWarnJobs, OnlyTheBlankBackOfADuplexCardIsSaid) {
  TWarnRun run = Warn_Run({Job_WhitePage(true), BlankPage(true)}, "frontRibbon=Color backRibbon=Color");
  EXPECT_EQ(std::vector<std::string>{std::string("WARNING: Back side") + kSeeGuide}, run.warnings);
  TWarnRun base = Warn_Run({Job_WhitePage(true), Job_WhitePage(true)}, "frontRibbon=Color backRibbon=Color");
  EXPECT_TRUE(base.warnings.empty()) << base.warnings.front();
  EXPECT_EQ(base.outline, run.outline);
  EXPECT_EQ(base.designed, run.designed);
}
