// Tests of Job_ReadOptions: the whole option trace, line by line.
// Copyright 2026 The rastertobrellian authors.
#include "support/read_options_harness.h"

TEST_F(ReadOptionsTest, TraceOfA1030WithItsDefaults) {
  RemoveSettings("TRACE1");
  UseSerial("TRACE1");
  UsePPD(GeneratedPPD(1030));
  Run("");
  std::vector<std::string> expected = {
      " >>>> PPD OPTIONS",
      In("serialNumber::[TRACE1]"),
      In("TBrellianSettings::Load --> failed to open settings file (2)"),
      In("PPD::[" + GeneratedPPD(1030) + "]"),
      In("Command line PPD options"),
      In("  NONE"),
      In("Marked PPD options"),
  };
  const char* keywordLines[] = {
      "ribbonType::[YMCK]", "flipTurn::[NotInstalled]", "laminator::[NotInstalled]",
      "magEncoder::[NotInstalled]", "icEncoder::[NotInstalled]",
      "icEncoderContactless::[NotInstalled]", "printerModel::[1030]", "cardThickness::[Default]",
      "frontRibbon::[Color]", "backRibbon::[Color]", "frontResin::[Page]", "backResin::[Page]",
      "frontUV::[None]", "backUV::[None]", "frontUVMAC::[UpperRight]", "backUVMAC::[UpperRight]",
      "frontPO::[None]", "backPO::[None]", "cardLaminate::[No]", "frontLUTTable::[Firmware]",
      "frontSecureErase::[No]", "backSecureErase::[No]", "frontRotation::[No]",
      "backRotation::[No]", "entryCardFlip::[No]", "magEncodeCardFlip::[No]",
      "magPOMode::[Default]", "magEncodeFormat1::[None]", "magEncodeData1::[None]",
      "magEncodeFormat2::[None]", "magEncodeData2::[None]", "magEncodeFormat3::[None]",
      "magEncodeData3::[None]", "printerPlugin::[Default]", "printerPlugin::[]",
      "printerName::[]", "cardEjectExisting::[Yes]",
  };
  for (const char* l : keywordLines) expected.push_back(In(std::string("  ") + l));
  expected.push_back(" <<<< PPD OPTIONS");
  EXPECT_EQ(expected, lines_);
  EXPECT_EQ(0, task_->magEncode);
  EXPECT_EQ(0, task_->magPOMode);
  EXPECT_EQ(0, task_->cardThickness);
}

TEST_F(ReadOptionsTest, TraceWithoutPPD) {
  Run("ignored=1");
  std::vector<std::string> expected = {
      " >>>> PPD OPTIONS", In("serialNumber::[]"), In("PPD::[NULL]"), In("Marked PPD options"),
      In("  printerModel::[PPD]::[NULL][1060]"),
  };
  const char* missing[] = {
      "cardThickness", "frontRibbon", "backRibbon", "frontResin", "backResin", "frontUV",
      "backUV", "frontUVMAC", "backUVMAC", "frontPO", "backPO", "cardLaminate",
      "frontLUTTable", "backLUTTable", "frontSecureErase", "backSecureErase", "frontRotation",
      "backRotation", "entryCardFlip", "magEncodeCardFlip", "magPOMode", "printerPlugin",
  };
  for (const char* k : missing) expected.push_back(In(std::string("  ") + k + "::OPT::[NULL]"));
  expected.push_back(In("  printerPlugin::[]"));
  expected.push_back(In("  printerName::[]"));
  expected.push_back(In("  cardEjectExisting::OPT::[NULL]"));
  expected.push_back(" <<<< PPD OPTIONS");
  EXPECT_EQ(expected, lines_);
}

TEST_F(ReadOptionsTest, PPDWithoutTheFiltersKeywords) {
  UsePPD(FixturePPD("no-options.ppd"));
  Run("frontRibbon=ColorK");
  EXPECT_TRUE(Logged("  ribbonType::OPT::[NULL]"));
  EXPECT_TRUE(Logged("  icEncoderContactless::OPT::[NULL]"));
  EXPECT_TRUE(Logged("  printerModel::[1035]"));
  EXPECT_TRUE(Logged("  frontRibbon::OPT::[NULL]"));
  EXPECT_TRUE(Logged("  backLUTTable::OPT::[NULL]"));
  EXPECT_FALSE(Mentions("magEncodeFormat", true));
  EXPECT_FALSE(Mentions("magEncodeData", true));
  EXPECT_EQ(2, task_->frontRibbon);
  EXPECT_EQ(1035, task_->printerModel);
  EXPECT_EQ(1, task_->flipTurn);
  EXPECT_EQ(1, task_->cardEjectExisting);
}
