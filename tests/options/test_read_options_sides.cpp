// Tests of Job_ReadOptions: per-side keywords, UV files, lookup tables,
// card thickness and the yes/no switches.
// Copyright 2026 The rastertobrellian authors.
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "options/lut_file.h"
#include "support/read_options_harness.h"

namespace {

std::string UVPath(const std::string& name) { return std::string(BRELLIAN_CONF_DIR) + "/uv/" + name; }
std::string LUTPath(const std::string& name) {
  return std::string(BRELLIAN_LUT_DIR) + "/" + name + ".csv";
}

bool IsIdentity(const uint8_t table[3][256]) {
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < 256; ++i)
      if (table[c][i] != i) return false;
  return true;
}

}  // namespace

TEST_F(ReadOptionsTest, PerSideChoices) {
  UsePPD(GeneratedPPD(1060));
  Run("frontRibbon=Monochrome backRibbon=Grayscale frontResin=Preset10 backResin=CustomAreas "
      "frontUV=Page frontUVMAC=LowerLeft backUVMAC=UpperRight frontPO=Page backPO=Preset10 "
      "cardLaminate=Yes");
  EXPECT_EQ(0, task_->frontRibbon);
  EXPECT_EQ(1, task_->backRibbon);
  EXPECT_EQ(10, task_->frontResin);
  EXPECT_EQ(11, task_->backResin);
  EXPECT_EQ(1, task_->frontUV);
  EXPECT_EQ(0, task_->backUV);
  EXPECT_EQ(1, task_->frontUVMAC);
  EXPECT_EQ(0, task_->backUVMAC);
  EXPECT_EQ(1, task_->frontPO);
  EXPECT_EQ(11, task_->backPO);
  EXPECT_EQ(1, task_->cardLaminate);
  Run("frontResin=Page frontPO=CustomAreas backPO=None backRibbon=Color");
  EXPECT_EQ(0, task_->frontResin);
  EXPECT_EQ(12, task_->frontPO);
  EXPECT_EQ(0, task_->backPO);
  EXPECT_EQ(2, task_->backRibbon);
  EXPECT_TRUE(Logged("  backRibbon::[Color]"));
}

TEST_F(ReadOptionsTest, UVPresetWithoutFileNameIsCleared) {
  TBrellianSettings s;
  s.uvNames[0] = "one.png";
  UseSettings(s, "UV1");
  UsePPD(GeneratedPPD(1060));
  Run("frontUV=Preset3");
  EXPECT_EQ(0, task_->frontUV);
  EXPECT_EQ("", task_->frontUVFile);
  EXPECT_EQ(Position("  frontUV::[Preset3]") + 1, Position("  frontUV: clear preset (file not defined)"));
}

TEST_F(ReadOptionsTest, UVPresetFileFoundOrNot) {
  TBrellianSettings s;
  s.uvNames[0] = "logo.png";
  s.uvNames[1] = "missing.png";
  s.uvNames[2] = "../escape.png";
  UseSettings(s, "UV2");
  Test_MakeDirs(std::string(BRELLIAN_CONF_DIR) + "/uv");
  Test_WriteFile(UVPath("logo.png"), "png");
  Test_WriteFile(std::string(BRELLIAN_CONF_DIR) + "/escape.png", "png");
  unlink(UVPath("missing.png").c_str());
  UsePPD(GeneratedPPD(1060));
  Run("frontUV=Preset1 backUV=Preset2");
  EXPECT_EQ(2, task_->frontUV);
  EXPECT_EQ(UVPath("logo.png"), task_->frontUVFile);
  EXPECT_TRUE(Logged("  frontUV: filename(" + UVPath("logo.png") + ")"));
  EXPECT_EQ(0, task_->backUV);
  EXPECT_EQ("", task_->backUVFile);
  EXPECT_TRUE(Logged("  backUV: clear preset (file not found)(" + UVPath("missing.png") + ")"));
  Run("backUV=Preset3");
  EXPECT_EQ(0, task_->backUV);
  EXPECT_TRUE(Logged("  backUV: clear preset (file not found)(" + UVPath("../escape.png") + ")"));
}

TEST_F(ReadOptionsTest, BackLookupTableIsNotReadOn1030) {
  UsePPD(GeneratedPPD(1030));
  Run("backLUTTable=LUT1 frontLUTTable=Firmware");
  EXPECT_TRUE(Logged("  frontLUTTable::[Firmware]"));
  EXPECT_FALSE(Mentions("  backLUTTable::", true));
  EXPECT_EQ(0, task_->backLUTTable);
  UsePPD(GeneratedPPD(1035));
  Run("backLUTTable=Firmware");
  EXPECT_TRUE(Logged("  backLUTTable::[Firmware]"));
}

TEST_F(ReadOptionsTest, LookupTableFileIsLoaded) {
  TBrellianSettings s;
  s.lutNames[1] = "warm";
  UseSettings(s, "LUT1");
  Test_MakeDirs(BRELLIAN_LUT_DIR);
  std::string example = Test_ReadFile(std::string(BRELLIAN_SOURCE_DIR) + "/docs/examples/lut-warm.csv");
  ASSERT_FALSE(example.empty());
  Test_WriteFile(LUTPath("warm"), example);
  uint8_t expected[3][256];
  TLutError error;
  ASSERT_TRUE(Lut_Parse(example.data(), example.size(), expected, &error));
  UsePPD(GeneratedPPD(1060));
  Run("backLUTTable=LUT2");
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_EQ(2, task_->backLUTTable);
  EXPECT_EQ(0, memcmp(expected, task_->lutTable[SIDE_BACK], sizeof expected));
  EXPECT_TRUE(IsIdentity(task_->lutTable[SIDE_FRONT]));
  EXPECT_FALSE(Mentions("LUT Table"));
  unlink(LUTPath("warm").c_str());
}

TEST_F(ReadOptionsTest, MissingOrUnusableLookupTableFallsBackToFirmware) {
  TBrellianSettings s;
  s.lutNames[0] = "absent";
  s.lutNames[1] = "broken";
  s.lutNames[2] = "../lut/broken";
  UseSettings(s, "LUT2");
  Test_MakeDirs(BRELLIAN_LUT_DIR);
  unlink(LUTPath("absent").c_str());
  Test_WriteFile(LUTPath("broken"), "level,red,green,blue\n0,0,0,0\n1,1,1\n");
  UsePPD(GeneratedPPD(1060));
  Run("frontLUTTable=LUT1 backLUTTable=LUT2");
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(LoggedError("  LUT Table not found: (" + LUTPath("absent") + ")"));
  EXPECT_EQ(0, task_->backLUTTable);
  EXPECT_TRUE(LoggedError("  LUT Table not usable: (" + LUTPath("broken") +
                          ")(line 3: expected four fields)"));
  EXPECT_TRUE(IsIdentity(task_->lutTable[SIDE_BACK]));
  Run("frontLUTTable=LUT3");
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(LoggedError("  LUT Table not found: (" + LUTPath("../lut/broken") + ")"));
  unlink(LUTPath("broken").c_str());
}

TEST_F(ReadOptionsTest, CardThicknessFromKeywordOrSettings) {
  UsePPD(GeneratedPPD(1060));
  UseSerial("THICK1");
  const struct { int32_t setting; const char* choice; int32_t code; } cases[] = {
      {-1, "Default", 0}, {0, "Default", 2}, {9, "Default", 1}, {0, "Thin", 1}, {9, "Standard", 2},
  };
  for (const auto& c : cases) {
    TBrellianSettings s;
    s.cardThickness = c.setting;
    SaveSettings(s, "THICK1");
    Run((std::string("cardThickness=") + c.choice).c_str());
    EXPECT_EQ(c.code, task_->cardThickness) << c.setting << " " << c.choice;
  }
  RemoveSettings("THICK1");
}

TEST_F(ReadOptionsTest, YesNoSwitchesInTheirOrder) {
  UsePPD(GeneratedPPD(1060));
  Run("frontSecureErase=Yes backRotation=Yes entryCardFlip=Yes magEncodeCardFlip=No");
  EXPECT_EQ(1, task_->frontSecureErase);
  EXPECT_EQ(0, task_->backSecureErase);
  EXPECT_EQ(0, task_->frontRotation);
  EXPECT_EQ(1, task_->backRotation);
  EXPECT_EQ(1, task_->entryCardFlip);
  EXPECT_EQ(0, task_->magEncodeCardFlip);
  const char* order[] = {"  frontSecureErase::[Yes]", "  backSecureErase::[No]",
                         "  frontRotation::[No]", "  backRotation::[Yes]",
                         "  entryCardFlip::[Yes]", "  magEncodeCardFlip::[No]"};
  for (int i = 1; i < 6; ++i) EXPECT_EQ(Position(order[i - 1]) + 1, Position(order[i])) << order[i];
}
