// Tests of Job_ReadOptions: defaults, no PPD, model, accessories, copies,
// serial number and the settings file it picks.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "support/read_options_harness.h"

TEST_F(ReadOptionsTest, WithoutPPDTheRecordHoldsItsDefaults) {
  TBrellianSettings s;
  s.cardThickness = 0;
  s.magPOMode = 5;
  s.plugin = "plugS";
  UseSettings(s, "NOPPD1");
  setenv("PRINTER", "queue1", 1);
  Run("frontRibbon=Monochrome", "3");
  EXPECT_EQ(0, task_->ribbonType);
  EXPECT_EQ(1, task_->flipTurn);
  EXPECT_EQ(0, task_->laminator);
  EXPECT_EQ(0, task_->magEncoder);
  EXPECT_EQ(0, task_->icEncoder);
  EXPECT_EQ(1060, task_->printerModel);
  EXPECT_EQ(Status_ModelName(1060), task_->modelName);
  EXPECT_EQ(2, task_->frontRibbon);
  EXPECT_EQ(2, task_->backRibbon);
  for (int side = 0; side < 2; ++side) {
    EXPECT_EQ(0, task_->resin(side));
    EXPECT_EQ(0, task_->uv(side));
    EXPECT_EQ(0, task_->po(side));
    EXPECT_EQ(0, task_->rotation(side));
    EXPECT_EQ(0, task_->lutCode(side));
    EXPECT_EQ(0, task_->uvMAC(side));
    EXPECT_EQ(0, task_->secureErase(side));
    EXPECT_EQ("", task_->uvFile(side));
    EXPECT_EQ(0, task_->resinFlag[side]);
  }
  EXPECT_EQ(1, task_->cardEjectExisting);
  EXPECT_EQ(2, task_->cardThickness);     // settings 0: "Standard"
  EXPECT_EQ(3, task_->magPOMode);         // settings 5: "Enabled"
  EXPECT_EQ("plugS", task_->printerPlugin);
  EXPECT_EQ(3, task_->copies);
  EXPECT_EQ("queue1", task_->printerName);
  EXPECT_EQ("NOPPD1", task_->serialNumber);
  EXPECT_EQ(0, task_->cardLaminate);
  EXPECT_EQ(0, task_->entryCardFlip);
  EXPECT_EQ(0, task_->magEncodeCardFlip);
  EXPECT_EQ(0, task_->magEncode);
  const uint8_t* tracks = reinterpret_cast<const uint8_t*>(task_->magTracks);
  for (size_t i = 0; i < sizeof task_->magTracks; ++i) ASSERT_EQ(0, tracks[i]);
  EXPECT_TRUE(Logged("PPD::[NULL]"));
  EXPECT_TRUE(Logged("  printerModel::[PPD]::[NULL][1060]"));
  EXPECT_FALSE(Mentions("Command line PPD options"));
  EXPECT_FALSE(Mentions("magEncodeFormat"));
  EXPECT_TRUE(Logged("  cardEjectExisting::OPT::[NULL]"));
}

TEST_F(ReadOptionsTest, UnreadablePPDIsTheNoPPDCase) {
  UsePPD(FixturePPD("does-not-exist.ppd"));
  Run("");
  EXPECT_TRUE(Logged("PPD::[" + FixturePPD("does-not-exist.ppd") + "]"));
  EXPECT_TRUE(Logged("  printerModel::[PPD]::[NULL][1060]"));
  EXPECT_EQ(1, task_->flipTurn);
  EXPECT_EQ(1060, task_->printerModel);
}

TEST_F(ReadOptionsTest, ModelNumberOutsideTheFamilyGives1060) {
  UsePPD(FixturePPD("odd-model.ppd"));
  Run("");
  EXPECT_EQ(1060, task_->printerModel);
  EXPECT_EQ(Status_ModelName(1060), task_->modelName);
  EXPECT_TRUE(Logged("  printerModel::[1031]"));
  EXPECT_EQ(1, task_->flipTurn);   // the model decides, not the keyword
}

TEST_F(ReadOptionsTest, ModelDecidesTheFlipTurnUnit) {
  UsePPD(GeneratedPPD(1030));
  Run("flipTurn=Installed");
  EXPECT_TRUE(Logged("  flipTurn::[Installed]"));
  EXPECT_EQ(1030, task_->printerModel);
  EXPECT_EQ(Status_ModelName(1030), task_->modelName);
  EXPECT_EQ(0, task_->flipTurn);

  UsePPD(GeneratedPPD(1035));
  Run("flipTurn=NotInstalled");
  EXPECT_TRUE(Logged("  flipTurn::[NotInstalled]"));
  EXPECT_TRUE(Logged("  printerModel::[1035]"));
  EXPECT_EQ(1, task_->flipTurn);
  EXPECT_EQ(Status_ModelName(1035), task_->modelName);
}

TEST_F(ReadOptionsTest, ContactlessEncoderResultReplacesTheContactOne) {
  UsePPD(GeneratedPPD(1060));
  Run("icEncoder=Installed icEncoderContactless=NotInstalled");
  EXPECT_EQ(0, task_->icEncoder);
  Run("icEncoder=NotInstalled icEncoderContactless=Installed");
  EXPECT_EQ(1, task_->icEncoder);
  EXPECT_LT(Position("  icEncoder::[NotInstalled]"), Position("  icEncoderContactless::[Installed]"));
}

TEST_F(ReadOptionsTest, RibbonTypesAndAccessories) {
  UsePPD(GeneratedPPD(1060));
  const struct { const char* choice; int32_t code; } ribbons[] = {
      {"Black", 4}, {"YMCK", 0}, {"YMCKK", 1}, {"YMCK-UV", 3}, {"YMCK-PO", 2}};
  for (const auto& r : ribbons) {
    Run((std::string("ribbonType=") + r.choice).c_str());
    EXPECT_EQ(r.code, task_->ribbonType) << r.choice;
  }
  Run("laminator=Installed magEncoder=Installed");
  EXPECT_EQ(1, task_->laminator);
  EXPECT_EQ(1, task_->magEncoder);
  Run("");
  EXPECT_EQ(0, task_->laminator);
  EXPECT_EQ(0, task_->magEncoder);
  EXPECT_EQ(0, task_->ribbonType);
}

TEST_F(ReadOptionsTest, ChoicesAreComparedWithoutRegardToCase) {
  UsePPD(FixturePPD("odd-model.ppd"));
  Run("");
  EXPECT_TRUE(Logged("  ribbonType::[ymck-uv]"));
  EXPECT_EQ(3, task_->ribbonType);
  EXPECT_TRUE(Logged("  frontRibbon::[COLORK]"));
  EXPECT_EQ(3, task_->frontRibbon);
  EXPECT_TRUE(Logged("  backRibbon::[Rainbow]"));
  EXPECT_EQ(2, task_->backRibbon);          // unknown choice: default
  Run("backRibbon=GRAYSCALE ribbonType=black");
  EXPECT_EQ(1, task_->backRibbon);
  EXPECT_EQ(4, task_->ribbonType);
}

TEST_F(ReadOptionsTest, Copies) {
  const struct { const char* text; int32_t copies; } cases[] = {
      {"0", 1}, {"-3", 1}, {"abc", 1}, {"", 1}, {"7", 7}, {"12x", 12}, {"99999999999", 2147483647}};
  for (const auto& c : cases) {
    Run("", c.text);
    EXPECT_EQ(c.copies, task_->copies) << c.text;
  }
  Run("", nullptr);
  EXPECT_EQ(1, task_->copies);
}

TEST_F(ReadOptionsTest, SerialNumberComesFromTheDeviceURI) {
  setenv("DEVICE_URI", "usbbr://Brellian/BR-1060?serial=X1&y=2", 1);
  Run("");
  EXPECT_EQ("X1&y=2", task_->serialNumber);
  EXPECT_TRUE(Logged("serialNumber::[X1&y=2]"));
  EXPECT_TRUE(Mentions("TBrellianSettings::Load --> failed to open settings file (2)"));
}

TEST_F(ReadOptionsTest, WithoutSerialNoSettingsFileIsRead) {
  setenv("DEVICE_URI", "usbbr://Brellian/BR-1060", 1);
  Run("");
  EXPECT_EQ("", task_->serialNumber);
  EXPECT_TRUE(Logged("serialNumber::[]"));
  EXPECT_FALSE(Mentions("TBrellianSettings"));
  unsetenv("DEVICE_URI");
  Run("");
  EXPECT_FALSE(Mentions("TBrellianSettings"));
}

TEST_F(ReadOptionsTest, SettingsFileIsTheDefaultModelsEvenOnAnotherModel) {
  TBrellianSettings s;
  s.plugin = "fromDefault";
  s.cardThickness = 3;
  UseSettings(s, "SAME1");
  UsePPD(GeneratedPPD(1030));
  Run("");
  EXPECT_EQ(1030, task_->printerModel);
  EXPECT_EQ("fromDefault", task_->printerPlugin);
  EXPECT_EQ(1, task_->cardThickness);     // settings 3: "Thin"
}

TEST_F(ReadOptionsTest, SerialThatWouldLeaveTheDirectoryIsRefused) {
  setenv("DEVICE_URI", "usbbr://Brellian/x?serial=../../etc", 1);
  Run("");
  EXPECT_TRUE(Logged("TBrellianSettings::Load --> failed to open settings file (22)"));
  EXPECT_EQ("", task_->printerPlugin);
}

TEST_F(ReadOptionsTest, CommandLineOptionsAreTracedInOrder) {
  UsePPD(GeneratedPPD(1060));
  // The order is that of cupsParseOptions, which keeps options sorted by name.
  Run("frontRibbon=ColorK  cardLaminate=yes");
  int cmd = Position("Command line PPD options");
  ASSERT_GE(cmd, 0);
  EXPECT_EQ(In("  cardLaminate::[yes]"), lines_[cmd + 1]);
  EXPECT_EQ(In("  frontRibbon::[ColorK]"), lines_[cmd + 2]);
  EXPECT_EQ(In("Marked PPD options"), lines_[cmd + 3]);
  EXPECT_EQ(1, task_->cardLaminate);
  Run("");
  cmd = Position("Command line PPD options");
  EXPECT_EQ(In("  NONE"), lines_[cmd + 1]);
}
