// Process tests of the preset tools: one settings file per printer whatever
// the model, UV files of exactly the model's panel, lut.N set like uv.N,
// areas whose last value has no unit, and areas of four zeros.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "brellian_paths.h"
#include "options/settings.h"
#include "lib/png_io.h"
#include "support/process.h"
#include "support/scratch_dir.h"

namespace {

const std::string TOOLS = BRELLIAN_TOOLS_DIR;
const std::string SETTINGS = TOOLS + "/brellian-settings";
const std::string UVIMAGE = TOOLS + "/brellian-uvimage";
const std::string LUT = TOOLS + "/brellian-lut";

// 'Preset_File()' - The settings file the filter reads for serial.
std::string Preset_File(const std::string& serial) {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_br-1060_" + serial + ".dat";
}

// 'Preset_Read()' - The settings in the file at path.
TBrellianSettings Preset_Read(const std::string& path) {
  TBrellianSettings s;
  std::string bytes = Test_ReadFile(path);
  s.LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return s;
}

class PresetTools : public TScratchDirTest {
 protected:
  PresetTools() : TScratchDirTest("test-preset-model") {}
  void SetUp() override {
    TScratchDirTest::SetUp();
    for (const char* serial : {"pm1", "pm2", "pm3"}) unlink(Preset_File(serial).c_str());
  }
  void TearDown() override {
    TScratchDirTest::TearDown();
    for (const char* serial : {"pm1", "pm2", "pm3"}) unlink(Preset_File(serial).c_str());
  }
};

}  // namespace

TEST_F(PresetTools, EveryModelWritesTheOneFileTheFilterReads) {
  for (const char* model : {"1030", "1035", "1060", "BR-1030"}) {
    TProcessResult r = Test_RunProcess({SETTINGS, "--model", model, "--serial", "PM1", "set", "plugin", model});
    ASSERT_EQ(0, r.status) << model << ": " << r.err;
    EXPECT_EQ(model, Preset_Read(Preset_File("pm1")).plugin);
  }
  EXPECT_NE(0, access((std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_br-1030_pm1.dat").c_str(), F_OK));
  TProcessResult r = Test_RunProcess({SETTINGS, "--model", "X90", "--serial", "PM1", "path"});
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("brellian-settings: --model must be 1030, 1035, 1060 or a model's display name\n", r.err);
}

TEST_F(PresetTools, TheModelChoosesTheResolutionOfTheChecks) {
  // 0.03 mm is 0 dots at 300 dpi and 1 dot at 600 dpi.
  const std::string area = "0.03mm 0 0 0";
  TProcessResult r = Test_RunProcess({SETTINGS, "--model", "1060", "--serial", "PM2", "set", "po.1.keep.1", area});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);   // a last value of 0 needs no unit
  EXPECT_EQ(area, Preset_Read(Preset_File("pm2")).poAreas[0][1][0]);
  r = Test_RunProcess({SETTINGS, "--model", "1030", "--serial", "PM2", "set", "po.1.keep.2", area});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ(0u, r.err.find("brellian-settings: po.1.keep.2: \"0.03mm 0 0 0\" is no area: all four values are 0 "
                           "dots at 300 dpi"))
      << r.err;
  // The same with a file named by its path.
  EXPECT_EQ(0, Test_RunProcess({SETTINGS, "--model", "1060", "--file", dir + "/m.dat", "set", "po.1.keep.1", area})
                   .status);
  EXPECT_EQ(1, Test_RunProcess({SETTINGS, "--model", "1030", "--file", dir + "/m.dat", "set", "po.1.keep.1", area})
                   .status);
  // Without a model every model's resolution is checked.
  r = Test_RunProcess({SETTINGS, "--serial", "PM2", "set", "po.1.keep.2", area});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("", Preset_Read(Preset_File("pm2")).poAreas[0][1][1]);
}

TEST_F(PresetTools, AnAreaWhoseLastValueHasNoUnitIsNoted) {
  TProcessResult r = Test_RunProcess({SETTINGS, "--file", dir + "/s.dat", "set", "resin.3.include.1", "5 5 50 30"});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("brellian-settings: warning: resin.3.include.1: the last value \"30\" has no unit, so the filter reads "
            "it as 30 inches (a value without a unit before it reads as dots); write \"30px\" for dots or give its "
            "unit\n",
            r.err);
  EXPECT_EQ("5 5 50 30", Preset_Read(dir + "/s.dat").resinAreas[2][0][0]);
  r = Test_RunProcess({SETTINGS, "--file", dir + "/s.dat", "set", "resin.3.include.2", "5 5 50 30px"});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("", r.err);
  // Import notes every area of the text.
  Test_WriteFile(dir + "/t.txt", "po.2.peel-off.3 = 1mm 1mm 2mm 1.5\nresin.1.include.1 = 1mm 1mm 2mm 3mm\n");
  r = Test_RunProcess({SETTINGS, "--file", dir + "/s.dat", "import", dir + "/t.txt"});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("brellian-settings: warning: po.2.peel-off.3: the last value \"1.5\" has no unit, so the filter reads "
            "it as 1.5 inches (a value without a unit before it reads as dots); write \"1.5px\" for dots or give "
            "its unit\n",
            r.err);
}

TEST_F(PresetTools, AnAreaOfFourZerosIsRefusedAndTheWholeCardCanBeGiven) {
  TProcessResult r = Test_RunProcess({SETTINGS, "--file", dir + "/s.dat", "set", "po.1.peel-off.1", "0 0 0 0"});
  EXPECT_EQ(1, r.status);
  EXPECT_NE(std::string::npos, r.err.find("four zeros mean no area; for the whole card give a height past its "
                                          "edge, e.g. \"0 0 0 3in\""))
      << r.err;
  r = Test_RunProcess({SETTINGS, "--file", dir + "/s.dat", "set", "po.1.peel-off.1", "0 0 0 3in"});
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
}

TEST_F(PresetTools, UVCheckRefusesAnotherModelsPanel) {
  Test_WriteFile(dir + "/big.uv", std::string(static_cast<size_t>(2072) * 1328, '\x01'));
  TProcessResult r = Test_RunProcess({UVIMAGE, "--model", "1030", "check", dir + "/big.uv"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("", r.out);
  EXPECT_EQ("brellian-uvimage: " + dir + "/big.uv: 2751616 bytes (the size of the 2072 x 1328 panel of model 1060), "
            "but model 1030 takes exactly 1036 x 664 = 687904 (the filter would print its first bytes as a garbled "
            "UV image)\n",
            r.err);
  r = Test_RunProcess({UVIMAGE, "--model", "1060", "check", dir + "/big.uv"});
  EXPECT_EQ(0, r.status) << r.err;
  // to-png reads the same way: no picture of the wrong panel.
  r = Test_RunProcess({UVIMAGE, "--model", "1035", "to-png", dir + "/big.uv", dir + "/big.png"});
  EXPECT_EQ(1, r.status);
  EXPECT_NE(0, access((dir + "/big.png").c_str(), F_OK));
}

TEST_F(PresetTools, LutInstallSetsItsEntryLikeUVInstall) {
  TProcessResult r = Test_RunProcess({LUT, "--install", "pm-warm", "--serial", "PM3", "--preset", "2", "gamma", "1.1"});
  ASSERT_EQ(0, r.status) << r.err;
  std::string lut = std::string(BRELLIAN_LUT_DIR) + "/pm-warm.csv";
  EXPECT_EQ("installed " + lut + "\nset lut.2 = pm-warm in " + Preset_File("pm3") + "\n", r.out);
  EXPECT_EQ(0, Test_RunProcess({LUT, "check", lut}).status);

  std::vector<uint8_t> white(static_cast<size_t>(1036) * 664 * 3, 255);
  ASSERT_TRUE(Png_WriteRGB(dir + "/in.png", 1036, 664, white.data()));
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "--serial", "PM3", "--preset", "4", "install", dir + "/in.png",
                       "pm-mark.uv"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("installed " + std::string(BRELLIAN_CONF_DIR) + "/uv/pm-mark.uv\nset uv.4 = pm-mark.uv in " +
                Preset_File("pm3") + "\n",
            r.out);
  TBrellianSettings s = Preset_Read(Preset_File("pm3"));
  EXPECT_EQ("pm-warm", s.lutNames[1]);
  EXPECT_EQ("pm-mark.uv", s.uvNames[3]);
  unlink(lut.c_str());
  unlink((std::string(BRELLIAN_CONF_DIR) + "/uv/pm-mark.uv").c_str());

  EXPECT_EQ(2, Test_RunProcess({LUT, "--install", "x", "--serial", "PM3", "identity"}).status);   // no preset
  EXPECT_EQ(2, Test_RunProcess({LUT, "--serial", "PM3", "--preset", "1", "identity"}).status);   // no install
  EXPECT_EQ(2, Test_RunProcess({LUT, "--install", "x", "--serial", "PM3", "--preset", "4", "identity"}).status);
}
