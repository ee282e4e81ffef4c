// WARNING lines for the spooler, one job per case through the built filter:
// the line names what was dropped and why, and the designed output (stream,
// designed standard-error lines, log) stays what it is without the line.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "brellian_paths.h"
#include "options/lut_file.h"
#include "test_jobs_support.h"

using namespace jobtest;

namespace {

const char* const kWarnSerial = "warn01";

// One filter run: its stream with the card ids zeroed, its standard-error
// lines split into WARNING lines and the designed rest, and its log.
struct TWarnRun {
  int status = -1;
  std::string stream;                  // card ids zeroed
  TStreamCheck check;
  std::string outline;
  std::vector<std::string> warnings;   // "WARNING: ..." lines
  std::vector<std::string> designed;   // every other standard-error line
  std::vector<std::string> log;        // log lines, time stamps and leading blanks removed
};

// 'Warn_SettingsPath()' - The settings file the filter reads for serial.
std::string Warn_SettingsPath(const std::string& serial) {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_br-1060_" + serial + ".dat";
}

// 'Warn_Settings()' - Empty settings for kWarnSerial; Save() writes them.
TBrellianSettings Warn_Settings() {
  TBrellianSettings s = Job_Settings();
  s.serialNumber = kWarnSerial;
  return s;
}

// 'Warn_Run()' - Run the 1030 filter on pages with options and the device
// URI uri (its serial selects the settings file).
TWarnRun Warn_Run(const std::vector<TRasterPage>& pages, const std::string& options,
                  const std::string& uri = std::string("usbbr://Brellian/BR-1030?serial=") + kWarnSerial) {
  TWarnRun run;
  std::string raster = Job_TestDir() + "/warn.ras";
  Test_MakeDirs(Job_TestDir());
  EXPECT_TRUE(Raster_WriteFile(pages, false, raster));
  Test_ResetLog();
  Test_SetLogLevelWord("EntryExit");
  TProcessOptions env;
  env.env["PPD"] = Job_PPD();
  env.env["DEVICE_URI"] = uri;
  env.env["PRINTER"] = "warn";
  TProcessResult p = Test_RunFilter({"42", "user", "title", "1", options, raster}, env);
  run.status = p.status;
  run.stream = p.out;
  Stream_Read(run.stream, &run.check);
  for (const TStreamRecord& r : run.check.records) {
    size_t at = r.type == ICMD_STARTCARD ? r.offset + STARTCARD_ID : r.type == ICMD_ENDCARD ? r.offset + 6 : 0;
    if (at != 0 && at + 8 <= run.stream.size()) run.stream.replace(at, 8, 8, '\0');
  }
  run.outline = Job_Outline(run.check);
  size_t start = 0;
  while (start < p.err.size()) {
    size_t end = p.err.find('\n', start);
    if (end == std::string::npos) end = p.err.size();
    std::string line = p.err.substr(start, end - start);
    (line.rfind("WARNING: ", 0) == 0 ? run.warnings : run.designed).push_back(line);
    start = end + 1;
  }
  for (const std::string& line : Test_LogMessages()) {
    size_t first = line.find_first_not_of(' ');
    run.log.push_back(first == std::string::npos ? std::string() : line.substr(first));
  }
  return run;
}

// 'Warn_DesignedLines()' - The designed standard error of a job of pages
// 1036 x 664 pages: PAGE and progress lines, then "INFO: Ready to print.".
std::vector<std::string> Warn_DesignedLines(int pages) {
  std::vector<std::string> lines;
  for (int p = 1; p <= pages; ++p) {
    lines.push_back("PAGE: " + std::to_string(p) + " 1");
    for (uint32_t row = 0; row < kH; row += 128)
      lines.push_back("INFO: Printing page " + std::to_string(p) + ", " + std::to_string(row * 100 / kH) +
                      "% complete...");
  }
  lines.push_back("INFO: Ready to print.");
  return lines;
}

// 'Warn_LogHasNo()' - No log line holds text (the warnings never go
// through the log).
void Warn_LogHasNo(const TWarnRun& run, const std::string& text) {
  for (const std::string& line : run.log) EXPECT_EQ(std::string::npos, line.find(text)) << line;
}

// 'Warn_ExpectSameOutput()' - The run's stream and designed standard error
// equal those of the run without the case's trigger, which has no warning.
void Warn_ExpectSameOutput(const TWarnRun& run, const TWarnRun& base) {
  EXPECT_TRUE(base.warnings.empty()) << base.warnings.front();
  EXPECT_TRUE(run.check.ok && run.check.complete);
  EXPECT_EQ(base.stream.size(), run.stream.size());
  EXPECT_TRUE(base.stream == run.stream) << run.outline << " / " << base.outline;
  EXPECT_EQ(base.designed, run.designed);
  EXPECT_EQ(0, run.status);
}

// 'Warn_Contains()' - True when lines hold line exactly.
bool Warn_Contains(const std::vector<std::string>& lines, const std::string& line) {
  return Test_Contains(lines, line);
}

class TWarnJobs : public ::testing::Test {
 protected:
  void SetUp() override {
    Status_BuildTables();
    unlink(Warn_SettingsPath(kWarnSerial).c_str());
    unlink(Warn_SettingsPath("nofile").c_str());
  }
  void TearDown() override { unlink(Warn_SettingsPath(kWarnSerial).c_str()); }
};

}  // namespace

TEST_F(TWarnJobs, NoSerialNumberWhilePresetsAreAskedFor) {
  std::string uri = "usbbr://Brellian/BR-1030";
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Preset1", uri);
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontUV=None", uri);
  Warn_ExpectSameOutput(run, base);
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontUV=Preset1 gives no UV: the device URI has no serial number "
                                      "(\"?serial=\"), so the printer's settings are not read"}),
            run.warnings);
  EXPECT_TRUE(Warn_Contains(run.log, "frontUV: clear preset (file not defined)"));
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
  EXPECT_TRUE(Warn_Contains(run.log, "TBrellianSettings::Load --> failed to open settings file (2)"));
  EXPECT_TRUE(Warn_Contains(run.log, "ERROR:   LUT Table not found: (" BRELLIAN_LUT_DIR "/.csv)"));
  Warn_LogHasNo(run, "own table is used");
}

TEST_F(TWarnJobs, OverlayPresetNotSetSendsAnEmptyOverlay) {
  TBrellianSettings s = Warn_Settings();
  s.poAreas[0][0][0] = "1mm 1mm 10mm 10mm";  // preset 1 only; preset 2 is empty
  ASSERT_TRUE(s.Save());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontPO=Preset2");
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontPO=Preset2 gives no overlay: overlay preset 2 is not set in "
                                      "the settings file " + Warn_SettingsPath(kWarnSerial)}),
            run.warnings);
  // As designed: the overlay panel is still sent, all 0.
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 IMAGE3 ENDSIDE ENDCARD ENDJOB", run.outline);
  ASSERT_EQ(2u, run.check.panels.size());
  EXPECT_TRUE(Job_Pixels(run.check.panels[1]) == std::string(kDots, '\0'));
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  // The same stream as custom overlay areas with no peel-off area.
  TWarnRun none = Warn_Run({Job_WhitePage()}, "frontPO=CustomAreas");
  EXPECT_TRUE(run.stream == none.stream);
  EXPECT_TRUE(Warn_Contains(run.log, "Front peel-off: preset 2: (peel-off)()"));
  Warn_LogHasNo(run, "gives no overlay");
}

TEST_F(TWarnJobs, UVFileNotFound) {
  TBrellianSettings s = Warn_Settings();
  s.uvNames[0] = "warn-missing.uv";
  ASSERT_TRUE(s.Save());
  unlink((Test_ConfDir() + "/uv/warn-missing.uv").c_str());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Preset1");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontUV=None");
  Warn_ExpectSameOutput(run, base);
  std::string path = std::string(BRELLIAN_CONF_DIR) + "/uv/warn-missing.uv";
  EXPECT_EQ((std::vector<std::string>{"WARNING: frontUV=Preset1 gives no UV: UV file " + path + " not found"}),
            run.warnings);
  EXPECT_TRUE(Warn_Contains(run.log, "frontUV: clear preset (file not found)(" + path + ")"));
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
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Preset2");
  // As designed: the side still announces UV, and the UV panel is missing
  // from the stream a whole file gives.
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontUV=Preset3");
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
  EXPECT_TRUE(Warn_Contains(run.log, "ERROR: Page_ProcessSubPage_UVManual --> unable to read file (" + path + ")"));
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
  EXPECT_TRUE(Warn_Contains(run.log, "ERROR:   LUT Table not found: (" + path + ")"));
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
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Page frontPO=Page");
  EXPECT_EQ((std::vector<std::string>{"WARNING: Front side printed without its UV panel and overlay panel: the job "
                                      "has no more pages, and frontUV=Page takes a page for the UV panel, frontPO="
                                      "Page takes a page for the overlay panel"}),
            run.warnings);
  EXPECT_EQ("STARTJOB STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD ENDJOB", run.outline);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  // Up to the end of the colour panel the stream is the three-page job's.
  TWarnRun three = Warn_Run({Job_WhitePage(), Job_WhitePage(), Job_WhitePage()}, "frontUV=Page frontPO=Page");
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
  EXPECT_TRUE(Warn_Contains(run.log, "ERR: CUPS bytes per pixel = 1.  Only supports 3."));
  Warn_LogHasNo(run, "is left out");
}

TEST_F(TWarnJobs, TrackDataWithoutCustomPrefix) {
  TWarnRun run = Warn_Run({Job_WhitePage()}, "magEncodeFormat1=ISO6-79 magEncodeData1=ABC123");
  TWarnRun base = Warn_Run({Job_WhitePage()}, "magEncodeFormat1=ISO6-79");
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
  EXPECT_TRUE(Warn_Contains(run.log, "printerPlugin::[]"));
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
  EXPECT_TRUE(Warn_Contains(run.log, "Image_StripToResin --> include: entire card"));
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
  EXPECT_TRUE(Warn_Contains(run.log, "Image_StripToResin --> include: 12,12 - 130,130"));
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
