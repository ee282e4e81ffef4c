// Tests of Job_ReadOptions: resin and overlay areas from presets and from
// custom PPD values as the spooler passes them.
// Copyright 2026 The rastertobrellian authors.
#include "support/read_options_harness.h"

namespace {

void ExpectArea(const TArea& a, uint32_t l, uint32_t t, uint32_t r, uint32_t b) {
  EXPECT_EQ(l, a.left);
  EXPECT_EQ(t, a.top);
  EXPECT_EQ(r, a.right);
  EXPECT_EQ(b, a.bottom);
}

}  // namespace

TEST_F(ReadOptionsTest, CustomResinAreaWithEscapedBlanks) {
  UsePPD(GeneratedPPD(1060));
  Run("frontRibbon=ColorK frontResin=CustomAreas frontResinInclude1=Custom.5mm\\ 5mm\\ 50mm\\ 30mm");
  EXPECT_EQ(3, task_->frontRibbon);
  EXPECT_EQ(11, task_->frontResin);
  EXPECT_EQ(0, task_->resinFlag[SIDE_FRONT]);
  ExpectArea(task_->resinAreas[SIDE_FRONT][AREA_GROUP_INCLUDE][0], 118, 118, 1181, 709);
  EXPECT_TRUE(Logged("  frontResinInclude1::[Custom.5mm 5mm 50mm 30mm]"));
  int parsed = Position("Parse area: (Custom.5mm 5mm 50mm 30mm)(600) --> (118,118)(1181,709)");
  EXPECT_EQ(Position("  frontResinInclude1::[Custom.5mm 5mm 50mm 30mm]") + 1, parsed);
  // The other custom keywords hold the placeholder choice: empty areas.
  EXPECT_EQ(parsed + 1, Position("  frontResinInclude2::[None]"));
  EXPECT_TRUE(Logged("  frontResinExclude5::[None]"));
  for (int k = 1; k < AREAS_PER_GROUP; ++k)
    EXPECT_TRUE(Area_IsEmpty(&task_->resinAreas[SIDE_FRONT][AREA_GROUP_INCLUDE][k]));
  EXPECT_FALSE(Mentions("backResinInclude1::", true));
}

TEST_F(ReadOptionsTest, CustomAreasInQuotesAt300Dpi) {
  UsePPD(GeneratedPPD(1035));
  Run("backResin=CustomAreas backResinExclude5='Custom.2.5cm 0 3in 1.5in' "
      "backPO=CustomAreas backNonPeelOff2=\"Custom.10 20 30 40\" backPeelOff1=Custom.1\\ 2\\ 3");
  ExpectArea(task_->resinAreas[SIDE_BACK][AREA_GROUP_EXCLUDE][4], 295, 0, 900, 450);
  ExpectArea(task_->poAreas[SIDE_BACK][AREA_GROUP_KEEP][1], 10, 20, 30, 12000);
  EXPECT_TRUE(Area_IsEmpty(&task_->poAreas[SIDE_BACK][AREA_GROUP_PEELOFF][0]));
  EXPECT_TRUE(Logged("  backPeelOff1::[Custom.1 2 3]"));
  EXPECT_TRUE(Logged("Parse area: (Custom.10 20 30 40)(300) --> (10,20)(30,12000)"));
  EXPECT_LT(Position("  backPeelOff5::[None]"), Position("  backNonPeelOff1::[None]"));
}

TEST_F(ReadOptionsTest, CustomAreaKeywordsMissingFromThePPD) {
  UsePPD(FixturePPD("no-options.ppd"));
  Run("");
  // frontResin is missing too, so no area keyword is read at all.
  EXPECT_FALSE(Mentions("frontResinInclude1", true));
}

TEST_F(ReadOptionsTest, ResinPresetUsesTheSidesFlagByte) {
  TBrellianSettings s;
  s.flags[0] = 40;
  s.flags[1] = 41;
  s.flags[2] = 99;
  s.resinAreas[2][0][0] = "1in 1in 1in 1in";
  s.resinAreas[2][1][2] = "5mm 5mm 50mm 30mm";
  s.resinAreas[0][0][0] = "2in 2in 2in 2in";
  UseSettings(s, "RESIN1");
  UsePPD(GeneratedPPD(1060));
  Run("frontResin=Preset3 backResin=Preset1");
  EXPECT_EQ(40, task_->resinFlag[SIDE_FRONT]);
  EXPECT_EQ(41, task_->resinFlag[SIDE_BACK]);
  ExpectArea(task_->resinAreas[SIDE_FRONT][AREA_GROUP_INCLUDE][0], 600, 600, 600, 600);
  ExpectArea(task_->resinAreas[SIDE_FRONT][AREA_GROUP_EXCLUDE][2], 118, 118, 1181, 709);
  ExpectArea(task_->resinAreas[SIDE_BACK][AREA_GROUP_INCLUDE][0], 1200, 1200, 1200, 1200);
  int first = Position("  Front resin: preset 3: (include)(1in 1in 1in 1in)(40)");
  ASSERT_GE(first, 0);
  EXPECT_EQ(In("Parse area: (1in 1in 1in 1in)(600) --> (600,600)(600,600)"), lines_[first + 1]);
  EXPECT_EQ(In("  Front resin: preset 3: (include)()(40)"), lines_[first + 2]);
  EXPECT_TRUE(Logged("  Front resin: preset 3: (exclude)(5mm 5mm 50mm 30mm)(40)"));
  EXPECT_TRUE(Logged("  Back resin: preset 1: (include)(2in 2in 2in 2in)(41)"));
  EXPECT_LT(Position("  Front resin: preset 3: (exclude)()(40)"),
            Position("  Back resin: preset 1: (include)(2in 2in 2in 2in)(41)"));
}

TEST_F(ReadOptionsTest, OverlayPresetAreas) {
  TBrellianSettings s;
  s.poAreas[0][0][1] = "0 0 100px 100px";
  s.poAreas[9][1][0] = "1in 0in 1in 0.5in";
  UseSettings(s, "PO1");
  UsePPD(GeneratedPPD(1030));
  Run("frontPO=Preset1 backPO=Preset10");
  ExpectArea(task_->poAreas[SIDE_FRONT][AREA_GROUP_PEELOFF][1], 0, 0, 100, 100);
  ExpectArea(task_->poAreas[SIDE_BACK][AREA_GROUP_KEEP][0], 300, 0, 300, 150);
  EXPECT_TRUE(Logged("  Front peel-off: preset 1: (peel-off)(0 0 100px 100px)"));
  EXPECT_TRUE(Logged("  Back peel-off: preset 10: (keep)(1in 0in 1in 0.5in)"));
  EXPECT_TRUE(Logged("Parse area: (1in 0in 1in 0.5in)(300) --> (300,0)(300,150)"));
}

TEST_F(ReadOptionsTest, WithoutSerialPresetsAreEmpty) {
  setenv("DEVICE_URI", "usbbr://Brellian/x", 1);
  UsePPD(GeneratedPPD(1060));
  Run("frontResin=Preset1 frontPO=Preset2 frontUV=Preset1 frontLUTTable=LUT2 cardThickness=Default "
      "magPOMode=Default");
  EXPECT_FALSE(Mentions("TBrellianSettings"));
  EXPECT_TRUE(Logged("  Front resin: preset 1: (include)()(0)"));
  EXPECT_TRUE(Logged("  Front peel-off: preset 2: (keep)()"));
  EXPECT_FALSE(Mentions("Parse area"));
  for (int g = 0; g < 2; ++g)
    for (int k = 0; k < AREAS_PER_GROUP; ++k) {
      EXPECT_TRUE(Area_IsEmpty(&task_->resinAreas[SIDE_FRONT][g][k]));
      EXPECT_TRUE(Area_IsEmpty(&task_->poAreas[SIDE_FRONT][g][k]));
    }
  EXPECT_EQ(1, task_->frontResin);
  EXPECT_EQ(3, task_->frontPO);
  EXPECT_EQ(0, task_->frontUV);
  EXPECT_TRUE(Logged("  frontUV: clear preset (file not defined)"));
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(LoggedError(std::string("  LUT Table not found: (") + BRELLIAN_LUT_DIR + "/.csv)"));
  EXPECT_EQ(0, task_->cardThickness);
  EXPECT_EQ(0, task_->magPOMode);
}
