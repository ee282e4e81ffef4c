// WARNING lines for options the queue's installed options rule out, and for
// a UV preset file of another model's size: one job per case through the
// built filter.  The job still prints as asked: its stream and designed
// standard-error lines are those of the same job on a PPD without the
// constraints, and a job that does not hit the case has no warning.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "brellian_paths.h"
#include "support/jobs_support.h"
#include "support/process.h"
#include "support/warnings_support.h"

using namespace jobtest;
using namespace warntest;

namespace {

// 'Installed_Expect()' - options give exactly the warning line expected
// on the model's PPD, the job prints what the same job prints without the
// constraints, and allowed (the same job on a queue that has the part)
// prints with no warning.
void Installed_Expect(const std::vector<TRasterPage>& pages, int model, const std::string& options,
                      const std::string& allowed, const std::string& expected) {
  std::string uri = std::string("usbbr://Brellian/BR-") + std::to_string(model) + "?serial=" + kWarnSerial;
  TWarnRun run = Warn_Run(pages, options, uri, Test_GeneratedPPD(model));
  TWarnRun base = Warn_Run(pages, options, uri, Warn_UnconstrainedPPD(model));
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ(std::vector<std::string>{"WARNING: " + expected}, run.warnings);
  Warn_LogHasNo(run, "can't be printed as asked");
  TWarnRun fine = Warn_Run(pages, allowed, uri, Test_GeneratedPPD(model));
  EXPECT_TRUE(fine.warnings.empty()) << fine.warnings.front();
  EXPECT_EQ(0, fine.status);
}

const char* const kSent = "; it is sent to the printer as asked, which may refuse the card: ";
const char* const kFix = "leave it out, or, if the printer has what it needs, set the queue's installed option: "
                         "lpadmin -p warn -o ";

}  // namespace

TEST_F(TWarnJobs, LaminationWithoutLaminator) {
  Installed_Expect({Job_WhitePage()}, 1030, "cardLaminate=Yes", "cardLaminate=Yes laminator=Installed",
                   std::string("cardLaminate=Yes can't be printed as asked: no laminator is installed "
                               "(laminator=NotInstalled)") + kSent + kFix + "laminator=Installed");
}

TEST_F(TWarnJobs, MagneticEncodingWithoutEncoder) {
  // The track data is card data: the line names its option, not its value.
  Installed_Expect({Job_WhitePage()}, 1030, "magEncodeFormat2=ISO4-37 magEncodeData2=Custom.12345",
                   "magEncodeFormat2=ISO4-37 magEncodeData2=Custom.12345 magEncoder=Installed",
                   std::string("magEncodeFormat2=ISO4-37, magEncodeData2 can't be printed as asked: no magnetic "
                               "stripe encoder is installed (magEncoder=NotInstalled)") + kSent + kFix +
                       "magEncoder=Installed");
}

TEST_F(TWarnJobs, ColourOnABlackRibbon) {
  Installed_Expect({Job_WhitePage()}, 1030, "ribbonType=Black frontRibbon=Color", "ribbonType=Black frontRibbon=Monochrome",
                   std::string("frontRibbon=Color can't be printed as asked: the loaded ribbon has no colour panels "
                               "(ribbonType=Black)") + kSent + kFix + "ribbonType=YMCK");
}

TEST_F(TWarnJobs, UVPanelOnARibbonWithoutUV) {
  Installed_Expect({Job_WhitePage(), Job_WhitePage()}, 1030, "frontUV=Page", "frontUV=Page ribbonType=YMCK-UV",
                   std::string("frontUV=Page can't be printed as asked: the loaded ribbon has no UV panel "
                               "(ribbonType=YMCK)") + kSent + kFix + "ribbonType=YMCK-UV");
}

TEST_F(TWarnJobs, TwoSidedWithoutFlipTurnUnit) {
  std::vector<TRasterPage> pages = {Job_WhitePage(true), Job_WhitePage(true)};
  for (TRasterPage& page : pages) {
    page = Raster_MakeRGBPage(2072, 1328, 600, 255, 255, 255);
    Raster_FillRect(&page, 10, 20, 100, 50, 0, 0, 0);
    page.header.Duplex = CUPS_TRUE;
  }
  Installed_Expect(pages, 1060, "flipTurn=NotInstalled sides=two-sided-long-edge",
                   "flipTurn=Installed sides=two-sided-long-edge",
                   std::string("Duplex=DuplexNoTumble can't be printed as asked: no flip-turn unit is installed, so "
                               "the card has no back side (flipTurn=NotInstalled)") + kSent + kFix + "flipTurn=Installed");
}

TEST_F(TWarnJobs, BackSideOptionOnTheOneSidedModel) {
  Installed_Expect({Job_WhitePage()}, 1030, "backRibbon=Monochrome", "backRibbon=Color",
                   std::string("backRibbon=Monochrome can't be printed as asked: no flip-turn unit is installed, so "
                               "the card has no back side (flipTurn=NotInstalled)") + kSent +
                       "leave it out: the BR-1030 can't have it");
}

// A UV preset file of the 1060's panel used on a 1030: only its first
// 1036 x 664 bytes print (as designed), which the line says; a file of the
// 1030's own size gives the same stream and no line.
TEST_F(TWarnJobs, UVFileOfAnotherModelsPanel) {
  TBrellianSettings s = Warn_Settings();
  s.uvNames[0] = "warn-1060.uv";
  s.uvNames[1] = "warn-1030.uv";
  ASSERT_TRUE(s.Save());
  Job_UVFile("warn-1060.uv", static_cast<size_t>(2072) * 1328);
  Job_UVFile("warn-1030.uv", kDots);
  TWarnRun run = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset1");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset2");
  Warn_ExpectSameOutput(run, base);
  ASSERT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2 ENDSIDE ENDCARD ENDJOB", run.outline);
  std::string path = std::string(BRELLIAN_CONF_DIR) + "/uv/warn-1060.uv";
  EXPECT_EQ((std::vector<std::string>{"WARNING: Front UV panel is not the UV image that was made: frontUV=Preset1 "
                                      "names UV file " + path + " of 2751616 bytes (the size of a 2072 x 1328 panel, "
                                      "model 1060), more than the 1036 x 664 = 687904 of model 1030's panel, and "
                                      "only its first 687904 bytes are printed; make the UV image again for this "
                                      "model with brellian-uvimage"}),
            run.warnings);
  Warn_LogHasNo(run, "not the UV image");
}
