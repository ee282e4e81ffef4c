// Tests of Job_ReadOptions: the whole option trace, line by line.
// Copyright 2026 The rastertobrellian authors.
#include "support/read_options_harness.h"

namespace {

// 'Trace_In()' - A log line one level inside the option reader.
std::string Trace_In(const std::string& message) { return "      " + message; }

// 'Trace_WithoutBlackMode()' - The 1030's PPD without the black rendering
// options and with the designed resin default "Page", in the build tree.
std::string Trace_WithoutBlackMode() {
  std::istringstream in(Test_ReadFile(Test_GeneratedPPD(1030)));
  std::string out, line;
  while (std::getline(in, line)) {
    if (line.find("BlackMode") != std::string::npos) continue;
    if (line.rfind("*DefaultfrontResin:", 0) == 0) line = "*DefaultfrontResin: Page";
    if (line.rfind("*DefaultbackResin:", 0) == 0) line = "*DefaultbackResin: Page";
    out += line + "\n";
  }
  std::string path = std::string(BRELLIAN_BINARY_DIR) + "/trace-designed1030.ppd";
  Test_WriteFile(path, out);
  return path;
}

// 'Trace_Defaults()' - The trace of a 1030 job with no options on ppd:
// each keyword with its default, and the black rendering lines after
// cardLaminate when blackMode.
std::vector<std::string> Trace_Defaults(const std::string& ppd, const char* resin, bool blackMode) {
  std::vector<std::string> expected = {
      " >>>> PPD OPTIONS",
      Trace_In("serialNumber::[TRACE1]"),
      Trace_In("TBrellianSettings::Load --> failed to open settings file (2)"),
      Trace_In("PPD::[" + ppd + "]"),
      Trace_In("Command line PPD options"),
      Trace_In("  NONE"),
      Trace_In("Marked PPD options"),
  };
  std::vector<std::string> keywordLines = {
      "ribbonType::[YMCK]", "flipTurn::[NotInstalled]", "laminator::[NotInstalled]",
      "magEncoder::[NotInstalled]", "icEncoder::[NotInstalled]",
      "icEncoderContactless::[NotInstalled]", "printerModel::[1030]", "cardThickness::[Default]",
      "frontRibbon::[Color]", "backRibbon::[Color]", std::string("frontResin::[") + resin + "]",
      std::string("backResin::[") + resin + "]",
      "frontUV::[None]", "backUV::[None]", "frontUVMAC::[UpperRight]", "backUVMAC::[UpperRight]",
      "frontPO::[None]", "backPO::[None]", "cardLaminate::[No]", "frontLUTTable::[Firmware]",
      "frontSecureErase::[No]", "backSecureErase::[No]", "frontRotation::[No]",
      "backRotation::[No]", "entryCardFlip::[No]", "magEncodeCardFlip::[No]",
      "magPOMode::[Default]", "magEncodeFormat1::[None]", "magEncodeData1::[None]",
      "magEncodeFormat2::[None]", "magEncodeData2::[None]", "magEncodeFormat3::[None]",
      "magEncodeData3::[None]", "printerPlugin::[Default]", "printerPlugin::[]",
      "printerName::[]", "cardEjectExisting::[Yes]",
  };
  for (const std::string& l : keywordLines) {
    expected.push_back(Trace_In("  " + l));
    if (blackMode && l == "cardLaminate::[No]") {
      expected.push_back(Trace_In("  frontBlackMode::[SolidBlack]"));
      expected.push_back(Trace_In("  backBlackMode::[SolidBlack]"));
    }
  }
  expected.push_back(" <<<< PPD OPTIONS");
  return expected;
}

}  // namespace

// A PPD without the added black rendering options gives the designed trace
// and the designed rendering.
TEST_F(ReadOptionsTest, TraceWithoutTheBlackRenderingOptionsIsTheDesignedOne) {
  RemoveSettings("TRACE1");
  UseSerial("TRACE1");
  std::string ppd = Trace_WithoutBlackMode();
  UsePPD(ppd);
  Run("");
  EXPECT_EQ(Trace_Defaults(ppd, "Page", false), lines_);
  EXPECT_EQ(0, task_->frontBlackMode);
  EXPECT_EQ(0, task_->backBlackMode);
  EXPECT_EQ(0, task_->frontResin);
}

// The shipped PPD: resin "Card" and the "SolidBlack" rendering by default.
TEST_F(ReadOptionsTest, ShippedDefaultsAreCardResinAndSolidBlack) {
  RemoveSettings("TRACE1");
  UseSerial("TRACE1");
  UsePPD(GeneratedPPD(1030));
  Run("backBlackMode=Diffuse");
  EXPECT_EQ(12, task_->frontResin);
  EXPECT_EQ(12, task_->backResin);
  EXPECT_EQ(1, task_->frontBlackMode);
  EXPECT_EQ(0, task_->backBlackMode);
  EXPECT_EQ(0, task_->resinFlag[0]);
}

TEST_F(ReadOptionsTest, TraceOfA1030WithItsDefaults) {
  RemoveSettings("TRACE1");
  UseSerial("TRACE1");
  UsePPD(GeneratedPPD(1030));
  Run("");
  EXPECT_EQ(Trace_Defaults(GeneratedPPD(1030), "Card", true), lines_);
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
