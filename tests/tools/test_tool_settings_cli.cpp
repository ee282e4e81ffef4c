// Process tests of brellian-settings: files, refusals, interrupted writes, and the filter reading the result.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <dirent.h>

#include "brellian_paths.h"
#include "jobstream/stream_reader.h"
#include "options/settings.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/scratch_dir.h"

namespace {

const std::string SETTINGS = BRELLIAN_TOOLS_DIR "/brellian-settings";

class SettingsTool : public TScratchDirTest {
 protected:
  SettingsTool() : TScratchDirTest("test-settings-cli"), file(dir + "/s.dat") {}

  static TProcessResult Run(const std::vector<std::string>& args, const TProcessOptions& o = TProcessOptions()) {
    std::vector<std::string> argv{SETTINGS};
    argv.insert(argv.end(), args.begin(), args.end());
    return Test_RunProcess(argv, o);
  }
  // 'Entries()' - The names in dir, sorted.
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    DIR* d = opendir(dir.c_str());
    while (struct dirent* e = d ? readdir(d) : nullptr)
      if (std::string(e->d_name) != "." && std::string(e->d_name) != "..") names.push_back(e->d_name);
    if (d) closedir(d);
    std::sort(names.begin(), names.end());
    return names;
  }
  std::string file;
};

}  // namespace

TEST_F(SettingsTool, CreateSetAndShowAFileAtAPath) {
  TProcessResult r = Run({"--file", file, "create"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("created " + file + "\n", r.out);
  EXPECT_EQ(TBrellianSettings().SaveToBytes(), Test_ReadFile(file));
  r = Run({"--file", file, "create"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: " + file + " exists (--force replaces it)\n", r.err);

  r = Run({"--file", file, "set", "resin.1.include.1", "-5mm 5mm 50mm 30mm", "flag.1", "40", "mag-po-mode",
           "enabled"});
  ASSERT_EQ(0, r.status) << r.err;
  TBrellianSettings s;
  s.resinAreas[0][0][0] = "-5mm 5mm 50mm 30mm";
  s.flags[0] = 40;
  s.magPOMode = 1;
  EXPECT_EQ(s.SaveToBytes(), Test_ReadFile(file));
  r = Run({"--file", file, "show"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("Settings file: " + file + "\nresin.1.include.1 = -5mm 5mm 50mm 30mm\nflag.1 = 40\nmag-po-mode = enabled\n",
            r.out);
}

TEST_F(SettingsTool, RefusedValuesAreNamedAndLeaveTheFileAsItWas) {
  ASSERT_EQ(0, Run({"--file", file, "set", "flag.2", "9"}).status);
  std::string before = Test_ReadFile(file);
  TProcessResult r = Run({"--file", file, "set", "flag.2", "10", "po.3.keep.1", "1 2 3"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: po.3.keep.1: \"1 2 3\" is not an area: it needs four values (left, top, width, "
            "height), each a number with a unit px, mm, cm, in or \", e.g. \"5mm 5mm 50mm 30mm\"\n",
            r.err);
  r = Run({"--file", file, "set", "po.3.keep.1", "0px 0px 0mm 0in"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: po.3.keep.1: \"0px 0px 0mm 0in\" is no area: all four values are 0 dots at 300 "
            "dpi (a width or height of 0 reaches the card's edge, but four zeros mean no area; for the whole card "
            "give a height past its edge, e.g. \"0 0 0 3in\", and an empty value clears the entry)\n",
            r.err);
  r = Run({"--file", file, "set", "flag.10", "2x"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: flag.10: \"2x\" is not a number from 0 to 255\n", r.err);
  r = Run({"--file", file, "set", "flag.11", "2"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: unknown key \"flag.11\" (\"keys\" lists them)\n", r.err);
  Test_WriteFile(dir + "/bad.txt", "flag.1 = 1\ncard-thickness = 1.5\n");
  r = Run({"--file", file, "import", dir + "/bad.txt"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-settings: " + dir +
                "/bad.txt: line 2: card-thickness: \"1.5\" is not \"unset\", \"standard\", \"thin\" or a whole number\n",
            r.err);
  EXPECT_EQ(before, Test_ReadFile(file));
  EXPECT_EQ((std::vector<std::string>{"bad.txt", "s.dat"}), Entries());
}

TEST_F(SettingsTool, ExportAndImportRoundTripByteForByte) {
  ASSERT_EQ(0, Run({"--file", file, "set", "po.10.peel-off.3", "1in 1in 0 0", "uv.5", "front.uv", "plugin",
                    " padded ", "card-thickness", "7", "lut.2", "warm"})
                   .status);
  TProcessResult text = Run({"--file", file, "export"});
  ASSERT_EQ(0, text.status) << text.err;
  EXPECT_NE(std::string::npos, text.out.find("\nplugin = \" padded \"\ncard-thickness = 7\nmag-po-mode = unset\n"));
  ASSERT_EQ(0, Run({"--file", file, "export", dir + "/t.txt"}).status);
  EXPECT_EQ(text.out, Test_ReadFile(dir + "/t.txt"));
  TProcessOptions in;
  in.input = text.out;
  TProcessResult r = Run({"--file", dir + "/copy.dat", "import", "-"}, in);
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(Test_ReadFile(file), Test_ReadFile(dir + "/copy.dat"));
  EXPECT_EQ(text.out, Run({"--file", dir + "/copy.dat", "export"}).out);
}

TEST_F(SettingsTool, AFailedRenameLeavesTheOldFileAndNoTemporaryFile) {
  ASSERT_EQ(0, Run({"--file", file, "set", "flag.1", "1"}).status);
  std::string before = Test_ReadFile(file);
  TProcessOptions fault;
  fault.env["BRELLIAN_TOOL_FAULT"] = "rename";
  TProcessResult r = Run({"--file", file, "set", "flag.1", "2"}, fault);
  EXPECT_EQ(3, r.status);
  EXPECT_EQ(0u, r.err.find("brellian-settings: cannot rename " + dir + "/.s.dat.")) << r.err;
  EXPECT_NE(std::string::npos, r.err.find(" to " + file + ": Input/output error\n")) << r.err;
  EXPECT_EQ(before, Test_ReadFile(file));
  EXPECT_EQ(std::vector<std::string>{"s.dat"}, Entries());
}

TEST_F(SettingsTool, ATerminationBeforeTheRenameLeavesTheOldFileAndNoTemporaryFile) {
  ASSERT_EQ(0, Run({"--file", file, "set", "flag.1", "1"}).status);
  std::string before = Test_ReadFile(file);
  TProcessOptions fault;
  fault.env["BRELLIAN_TOOL_FAULT"] = "term";
  TProcessResult r = Run({"--file", file, "set", "flag.1", "2"}, fault);
  EXPECT_EQ(128 + SIGTERM, r.status);
  EXPECT_EQ(before, Test_ReadFile(file));
  EXPECT_EQ(std::vector<std::string>{"s.dat"}, Entries());
  // A new file is not left half made either.
  r = Run({"--file", dir + "/new.dat", "create"}, fault);
  EXPECT_EQ(128 + SIGTERM, r.status);
  EXPECT_EQ(std::vector<std::string>{"s.dat"}, Entries());
}

TEST_F(SettingsTool, APrinterFileIsNamedAsTheFilterLooksItUp) {
  TProcessResult r = Run({"--serial", "AB12", "path"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(BRELLIAN_SETTINGS_DIR "/brellian_br-1060_ab12.dat\n", r.out);
  // The model chooses the checks, never the file: the filter reads the
  // same file whatever the printer's model.
  r = Run({"--model", "1030", "--serial", "Q9", "path"});
  EXPECT_EQ(BRELLIAN_SETTINGS_DIR "/brellian_br-1060_q9.dat\n", r.out);
  r = Run({"--serial", "a/b", "path"});
  EXPECT_EQ(3, r.status);
  EXPECT_EQ("brellian-settings: \"a/b\" can't name a settings file (1-64 bytes, no \"/\", no leading \".\", no "
            "control characters)\n",
            r.err);
  EXPECT_EQ(2, Run({"path"}).status);
  EXPECT_EQ(2, Run({"--serial", "x", "--file", file, "path"}).status);
}

// The file written by the tool is the one the filter reads, and the presets
// chosen by the job's options are in force.
TEST_F(SettingsTool, TheFilterReadsThePresetsTheToolWrote) {
  const std::string serial = "PRESETTOOL1";
  TProcessResult r = Run({"--serial", serial, "--force", "create"});
  ASSERT_EQ(0, r.status) << r.err;
  r = Run({"--serial", serial, "set", "resin.2.include.1", "5mm 5mm 50mm 30mm", "resin.2.exclude.3",
           "custom.2.5cm 0 3in 1.5in", "flag.1", "77", "po.1.peel-off.2", "10 20 30 40", "plugin", "plugX",
           "card-thickness", "thin", "mag-po-mode", "disabled"});
  ASSERT_EQ(0, r.status) << r.err;

  std::string raster;
  ASSERT_TRUE(Raster_WriteStream({Raster_MakeRGBPage(1036, 664, 300, 255, 255, 255)}, false, &raster));
  Test_ResetLog();
  TProcessOptions o;
  o.input = raster;
  o.env["PPD"] = Test_GeneratedPPD(1030);
  o.env["DEVICE_URI"] = "brellian://printer?serial=" + serial;
  r = Test_RunFilter({"5", "user", "title", "1",
                      "frontRibbon=ColorK frontResin=Preset2 frontPO=Preset1 printerPlugin=Default "
                      "cardThickness=Default magPOMode=Default"},
                     o);
  EXPECT_EQ(0, r.status) << r.err;
  // Log lines are indented by their nesting; compare them without it.
  std::vector<std::string> log;
  for (const std::string& l : Test_LogMessages()) log.push_back(l.substr(std::min(l.size(), l.find_first_not_of(' '))));
  for (const char* line : {
           "serialNumber::[PRESETTOOL1]",
           "Front resin: preset 2: (include)(5mm 5mm 50mm 30mm)(77)",
           "Front resin: preset 2: (include)()(77)",
           "Front resin: preset 2: (exclude)(custom.2.5cm 0 3in 1.5in)(77)",
           "Parse area: (5mm 5mm 50mm 30mm)(300) --> (59,59)(591,354)",
           "Parse area: (custom.2.5cm 0 3in 1.5in)(300) --> (295,0)(900,450)",
           "Front peel-off: preset 1: (peel-off)(10 20 30 40)",
           "Parse area: (10 20 30 40)(300) --> (10,20)(30,12000)",
           "printerPlugin::[plugX]",
       })
    EXPECT_TRUE(Test_Contains(log, line)) << line;
  // The plug-in of the settings reaches the job header.
  TStreamCheck check;
  Stream_Read(r.out, &check);
  ASSERT_FALSE(check.records.empty());
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(check.records[0], &job));
  EXPECT_EQ("plugX", job.plugin);
  // Card thickness "thin" gives 1 ("Thin"), overlay mode "disabled" 2 ("Disabled").
  bool card = false;
  for (const TStreamRecord& rec : check.records) {
    TStartCardFields fields;
    if (!Stream_DecodeStartCard(rec, &fields)) continue;
    card = true;
    EXPECT_EQ(1, fields.cardThickness);
    EXPECT_EQ(2, fields.magPOMode);
  }
  EXPECT_TRUE(card);
  Test_RemoveTree(BRELLIAN_SETTINGS_DIR "/brellian_br-1060_presettool1.dat");
}

TEST(PresetToolsHelp, EveryToolPrintsAManualPageToStandardOutput) {
  for (const char* tool : {"brellian-settings", "brellian-uvimage", "brellian-lut", "brellian-preview"}) {
    TProcessResult r = Test_RunProcess({std::string(BRELLIAN_TOOLS_DIR "/") + tool, "--help"});
    EXPECT_EQ(0, r.status) << tool;
    EXPECT_EQ("", r.err) << tool;
    for (const char* part : {"Usage: ", "Example", "Exit status: 0 "})
      EXPECT_NE(std::string::npos, r.out.find(part)) << tool << ": " << part;
    r = Test_RunProcess({std::string(BRELLIAN_TOOLS_DIR "/") + tool, "--no-such-option"});
    EXPECT_EQ(2, r.status) << tool;
  }
}
