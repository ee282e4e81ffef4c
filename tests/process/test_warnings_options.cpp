// WARNING lines about options a job asked for and did not get, one job per
// case through the built filter: the line names the option and why, and the
// designed output (stream, designed standard-error lines, log) is what the
// fallback gives without the line.
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

TEST_F(TWarnJobs, NoSerialNumberWhilePresetsAreAskedFor) {
  std::string uri = "usbbr://Brellian/BR-1030";
  TWarnRun run = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset1", uri);
  TWarnRun base = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=None", uri);
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontUV=Preset1 gives no UV: the device URI has no serial number "
                                      "(\"?serial=\"), so the printer's settings are not read"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "frontUV: clear preset (file not defined)"));
  Warn_LogHasNo(run, "gives no UV");
}

TEST_F(TWarnJobs, SettingsFileMissing) {
  std::string uri = "usbbr://Brellian/BR-1030?serial=nofile";
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT1", uri);
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontLUTTable=Firmware", uri);
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontLUTTable=LUT1 is left out, the printer's own table is used: "
                                      "there is no settings file " + Warn_SettingsPath("nofile")}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "TBrellianSettings::Load --> failed to open settings file (2)"));
  EXPECT_TRUE(Test_Contains(run.log, "ERROR:   LUT Table not found: (" BRELLIAN_LUT_DIR "/.csv)"));
  Warn_LogHasNo(run, "own table is used");
}

TEST_F(TWarnJobs, OverlayPresetNotSetSendsAnEmptyOverlay) {
  TBrellianSettings s = Warn_Settings();
  s.poAreas[0][0][0] = "1mm 1mm 10mm 10mm";  // preset 1 only; preset 2 is empty
  ASSERT_TRUE(s.Save());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-PO frontPO=Preset2");
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontPO=Preset2 gives no overlay: overlay preset 2 is not set in "
                                      "the settings file " + Warn_SettingsPath(kWarnSerial)}),
            run.warnings);
  // As designed: the overlay panel is still sent, all 0.
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE3 ENDSIDE ENDCARD ENDJOB", run.outline);
  ASSERT_EQ(2u, run.check.panels.size());
  EXPECT_TRUE(Job_Pixels(run.check.panels[1]) == std::string(kDots, '\0'));
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  // The same stream as custom overlay areas with no peel-off area.
  TWarnRun none = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-PO frontPO=CustomAreas");
  EXPECT_TRUE(run.stream == none.stream);
  EXPECT_TRUE(Test_Contains(run.log, "Front peel-off: preset 2: (peel-off)()"));
  Warn_LogHasNo(run, "gives no overlay");
}

TEST_F(TWarnJobs, UVFileNotFound) {
  TBrellianSettings s = Warn_Settings();
  s.uvNames[0] = "warn-missing.uv";
  ASSERT_TRUE(s.Save());
  unlink((Test_ConfDir() + "/uv/warn-missing.uv").c_str());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset1");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=None");
  Warn_ExpectSameOutput(run, base);
  std::string path = std::string(BRELLIAN_CONF_DIR) + "/uv/warn-missing.uv";
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontUV=Preset1 gives no UV: UV file " + path + " not found"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "frontUV: clear preset (file not found)(" + path + ")"));
  Warn_LogHasNo(run, "gives no UV");
}

TEST_F(TWarnJobs, UVFileShorterThanThePanel) {
  TBrellianSettings s = Warn_Settings();
  s.uvNames[1] = "warn-short.uv";
  ASSERT_TRUE(s.Save());
  s.uvNames[2] = "warn-whole.uv";
  ASSERT_TRUE(s.Save());
  Job_UVFile("warn-short.uv", kDots - 1);
  Job_UVFile("warn-whole.uv", kDots);
  TWarnRun run = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset2");
  // As designed: the side still announces UV, and the UV panel is missing
  // from the stream a whole file gives.
  TWarnRun base = Warn_Run({Job_WhitePage()}, "ribbonType=YMCK-UV frontUV=Preset3");
  EXPECT_TRUE(base.warnings.empty());
  ASSERT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE2 ENDSIDE ENDCARD ENDJOB", base.outline);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  size_t uvStart = base.check.panels[1].offset;
  size_t uvEnd = uvStart;
  for (const TStreamRecord& r : base.check.records)
    if (r.type == ICMD_ENDSIDE) uvEnd = r.offset;
  EXPECT_TRUE(run.stream == base.stream.substr(0, uvStart) + base.stream.substr(uvEnd));
  EXPECT_EQ(base.designed, run.designed);
  std::string path = std::string(BRELLIAN_CONF_DIR) + "/uv/warn-short.uv";
  EXPECT_EQ((std::vector<std::string>{"WARNING: Front side printed without its UV panel: frontUV=Preset2 names UV "
                                      "file " + path + ", and 687903 bytes, fewer than the 1036 x 664 = 687904 "
                                      "of model 1030's panel"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "ERROR: Page_ProcessSubPage_UVManual --> unable to read file (" + path + ")"));
  Warn_LogHasNo(run, "printed without");
}

TEST_F(TWarnJobs, LookupTableFileNotFound) {
  TBrellianSettings s = Warn_Settings();
  s.lutNames[1] = "warn-missing";
  ASSERT_TRUE(s.Save());
  unlink((std::string(BRELLIAN_LUT_DIR) + "/warn-missing.csv").c_str());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT2");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontLUTTable=Firmware");
  Warn_ExpectSameOutput(run, base);
  std::string path = std::string(BRELLIAN_LUT_DIR) + "/warn-missing.csv";
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontLUTTable=LUT2 is left out, the printer's own table is used: "
                                      "lookup table " + path + " not found"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "ERROR:   LUT Table not found: (" + path + ")"));
  Warn_LogHasNo(run, "own table is used");
}

TEST_F(TWarnJobs, LookupTableNotUsable) {
  TBrellianSettings s = Warn_Settings();
  s.lutNames[0] = "warn-bad";
  ASSERT_TRUE(s.Save());
  std::string path = std::string(BRELLIAN_LUT_DIR) + "/warn-bad.csv";
  Test_MakeDirs(BRELLIAN_LUT_DIR);
  Test_WriteFile(path, "level,red,green,blue\n0,0,0,0\n1,1,1\n");
  uint8_t table[3][LUT_ENTRIES];
  TLutError error{0, ""};
  ASSERT_EQ(-2, Lut_Load(path.c_str(), table, &error));
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT1");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontLUTTable=Firmware");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontLUTTable=LUT1 is left out, the printer's own table is used: "
                                      "lookup table " + path + " is not usable (line 3: " + error.reason + ")"}),
            run.warnings);
  EXPECT_EQ(3, error.line);
  Warn_LogHasNo(run, "own table is used");
}

TEST_F(TWarnJobs, TrackDataWithoutCustomPrefix) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "magEncoder=Installed magEncodeFormat1=ISO6-79 magEncodeData1=ABC123");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "magEncoder=Installed magEncodeFormat1=ISO6-79");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: magEncodeData1=ABC123 is left out: a text value is given as "
                                      "magEncodeData1=Custom.<text> (blanks written as +, or the value quoted)"}),
            run.warnings);
  EXPECT_EQ(std::string::npos, run.outline.find("MAGENCODE"));
  Warn_LogHasNo(run, "is left out");
}

TEST_F(TWarnJobs, TrackDataWithFormatNone) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "magEncodeFormat2=None magEncodeData2=Custom.1234");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "magEncodeFormat2=None");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: magEncodeData2 is left out: magEncodeFormat2 is None"}),
            run.warnings);
}

TEST_F(TWarnJobs, TrackDataOutsideTheCharacterSet) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "magEncodeFormat1=ISO6-79 magEncodeData1=Custom.AB-x");
  EXPECT_EQ((std::vector<std::string>{"WARNING: magEncodeData1 is not encoded: character 4 ('x') is not in the "
                                      "character set of ISO6-79"}),
            run.warnings);
  // As designed: the track goes out with its error status 3 and no data.
  EXPECT_EQ("STARTJOB STARTCARD MAGENCODE STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  const TStreamRecord& mag = run.check.records[2];
  ASSERT_EQ(ICMD_MAGENCODE, mag.type);
  EXPECT_EQ(3, static_cast<uint8_t>(run.stream[mag.offset + 6]));
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
}

TEST_F(TWarnJobs, PluginWithoutCustomPrefix) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "printerPlugin=myplugin");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: printerPlugin=myplugin is left out: a text value is given as "
                                      "printerPlugin=Custom.<text> (blanks written as +, or the value quoted)"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "printerPlugin::[]"));
}

TEST_F(TWarnJobs, CustomAreaCutAtTheFirstBlank) {
  // What lp makes of -o 'frontResinInclude1=Custom.5mm 30mm 50mm 15mm'.
  std::string options = "frontRibbon=ColorK frontResin=CustomAreas frontResinInclude1=Custom.5mm 30mm 50mm 15mm";
  TWarnRun run = Warn_Run({Job_WhitePage()}, options);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontResinInclude1=Custom.5mm is left out: it is not four values "
                                      "left, top, width and height, each a number with a unit px, mm, cm, in or \" "
                                      "(e.g. 5mm+30mm+50mm+15mm)"}),
            run.warnings);
  TWarnRun plus = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=CustomAreas "
                                              "frontResinInclude1=Custom.5mm+30mm+50mm+15mm");
  EXPECT_TRUE(plus.warnings.empty());
  // As designed the cut area is no area: resin on every black dot, as with
  // no include area at all.
  TWarnRun none = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=CustomAreas");
  EXPECT_TRUE(run.stream == none.stream);
  EXPECT_EQ(none.designed, run.designed);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontResin=CustomAreas: none of frontResinInclude1-5 gives an "
                                      "area, so resin goes on the black dots of the whole side"}),
            none.warnings);
}

TEST_F(TWarnJobs, ResinPresetWithoutColorK) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontRibbon=Color frontResin=Preset1");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontRibbon=Color");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontResin=Preset1 is left out: resin areas are printed only with "
                                      "frontRibbon=ColorK"}),
            run.warnings);
}

TEST_F(TWarnJobs, ResinPresetWithoutAreas) {
  ASSERT_TRUE(Warn_Settings().Save());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=Preset4");
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontResin=Preset4 has no areas: resin preset 4 is not set in the "
                                      "settings file " + Warn_SettingsPath(kWarnSerial) +
                                      "; resin goes on the black dots of the whole side"}),
            run.warnings);
  // As designed: no include area means the whole card, at the side's flag.
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE1 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_TRUE(Test_Contains(run.log, "Image_StripToResin --> include: entire card"));
  // The same stream as custom areas with none given (flag 0 in both).
  TWarnRun none = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=CustomAreas");
  EXPECT_TRUE(run.stream == none.stream);
  EXPECT_EQ(none.designed, run.designed);
}

TEST_F(TWarnJobs, ResinPresetAreaThatIsNoArea) {
  TBrellianSettings s = Warn_Settings();
  s.resinAreas[1][0][0] = "1 2 3";  // written by another program: three values
  s.resinAreas[1][0][1] = "1mm 1mm 10mm 10mm";
  ASSERT_TRUE(s.Save());
  s.resinAreas[2][0][0] = "1mm 1mm 10mm 10mm";  // preset 3: the good area alone
  ASSERT_TRUE(s.Save());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=Preset2");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontRibbon=ColorK frontResin=Preset3");
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontResin=Preset2: area resin.2.include.1 \"1 2 3\" of the "
                                      "printer's settings is left out: it is not four values left, top, width and "
                                      "height, each a number with a unit px, mm, cm, in or \" (e.g. "
                                      "5mm+30mm+50mm+15mm)"}),
            run.warnings);
  EXPECT_TRUE(Test_Contains(run.log, "Image_StripToResin --> include: 12,12 - 130,130"));
}

TEST_F(TWarnJobs, WarningTextsAreOneLineEach) {
  // A job option holding a line break can't make a second status line.
  TWarnRun run = Warn_Run({Job_WhitePage()}, "printerPlugin='a\nERROR: b'");
  ASSERT_EQ(1u, run.warnings.size());
  EXPECT_EQ("WARNING: printerPlugin=a?ERROR: b is left out: a text value is given as printerPlugin=Custom.<text> "
            "(blanks written as +, or the value quoted)",
            run.warnings[0]);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
}
