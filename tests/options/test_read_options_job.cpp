// Tests of Job_ReadOptions: magnetic tracks, overlay mode over the stripe,
// plug-in, queue name and card eject.
// Copyright 2026 The rastertobrellian authors.
#include "support/read_options_harness.h"

namespace {

bool AllZero(const TMagTrack& t) {
  const uint8_t* b = reinterpret_cast<const uint8_t*>(&t);
  for (size_t i = 0; i < sizeof t; ++i)
    if (b[i]) return false;
  return true;
}

}  // namespace

TEST_F(ReadOptionsTest, MagneticTrackFromCustomData) {
  UsePPD(GeneratedPPD(1060));
  Run("magEncodeFormat2=ISO4-37 magEncodeData2=Custom.;1234=5678?");
  EXPECT_TRUE(Logged("  magEncodeFormat2::[ISO4-37]"));
  EXPECT_TRUE(Logged("  magEncodeData2::[Custom.;1234=5678?]"));
  const TMagTrack& t = task_->magTracks[1];
  EXPECT_EQ(180, t.format);
  EXPECT_EQ(11, t.length);
  EXPECT_EQ(11, t.codes[0]);
  EXPECT_EQ(15, t.codes[10]);
  EXPECT_EQ(1, task_->magEncode);
  EXPECT_TRUE(AllZero(task_->magTracks[0]));
  EXPECT_TRUE(AllZero(task_->magTracks[2]));
}

TEST_F(ReadOptionsTest, MagneticErrorStatusStillMarksTheJob) {
  UsePPD(GeneratedPPD(1060));
  Run("magEncodeFormat1=ISO6-76 magEncodeData1='Custom.ab'");
  EXPECT_EQ(3, task_->magTracks[0].format);
  EXPECT_EQ(0, task_->magTracks[0].length);
  EXPECT_EQ(1, task_->magEncode);
}

TEST_F(ReadOptionsTest, MagneticFormatWithoutDataEncodesNothing) {
  UsePPD(GeneratedPPD(1060));
  Run("magEncodeFormat3=ISO7-69");
  EXPECT_TRUE(Logged("  magEncodeData3::[None]"));
  EXPECT_TRUE(AllZero(task_->magTracks[2]));
  EXPECT_EQ(0, task_->magEncode);
}

TEST_F(ReadOptionsTest, MagneticDataWithoutFormatIsSkipped) {
  UsePPD(FixturePPD("odd-model.ppd"));
  Run("magEncodeData2=Custom.;1234=5678?");
  EXPECT_TRUE(AllZero(task_->magTracks[1]));
  EXPECT_FALSE(Mentions("magEncodeFormat2", true));
  EXPECT_FALSE(Mentions("magEncodeData2", true));
  // Track 1: fixed choices "iso6-79" and "ABC"; track 3: a format that
  // track 3 does not allow gives status 1.
  EXPECT_TRUE(Logged("  magEncodeFormat1::[iso6-79]"));
  EXPECT_TRUE(Logged("  magEncodeData1::[ABC]"));
  EXPECT_EQ(168, task_->magTracks[0].format);
  EXPECT_EQ(3, task_->magTracks[0].length);
  EXPECT_EQ(33, task_->magTracks[0].codes[0]);
  EXPECT_EQ(1, task_->magTracks[2].format);
  EXPECT_EQ(1, task_->magEncode);
}

TEST_F(ReadOptionsTest, MagPOModeFromKeywordOrSettings) {
  UsePPD(GeneratedPPD(1035));
  UseSerial("MPO1");
  const struct { int32_t setting; const char* choice; int32_t code; } cases[] = {
      {-1, "Default", 0}, {0, "Default", 2}, {4, "Default", 3},
      {0, "Auto", 1},     {0, "Disabled", 2}, {-1, "Enabled", 3},
  };
  for (const auto& c : cases) {
    TBrellianSettings s;
    s.magPOMode = c.setting;
    SaveSettings(s, "MPO1");
    Run((std::string("magPOMode=") + c.choice).c_str());
    EXPECT_EQ(c.code, task_->magPOMode) << c.setting << " " << c.choice;
  }
  RemoveSettings("MPO1");
}

TEST_F(ReadOptionsTest, PluginFromChoiceOrSettings) {
  TBrellianSettings s;
  s.plugin = "stored";
  UseSettings(s, "PLUG1");
  UsePPD(GeneratedPPD(1060));
  Run("");
  EXPECT_EQ("stored", task_->printerPlugin);
  EXPECT_EQ(Position("  printerPlugin::[Default]") + 1, Position("  printerPlugin::[stored]"));
  Run("printerPlugin=Custom.mine");
  EXPECT_EQ("mine", task_->printerPlugin);
  EXPECT_EQ(Position("  printerPlugin::[Custom.mine]") + 1, Position("  printerPlugin::[mine]"));
  UsePPD(FixturePPD("odd-model.ppd"));
  Run("");
  EXPECT_EQ("Acme", task_->printerPlugin);
}

TEST_F(ReadOptionsTest, PrinterNameFromTheEnvironment) {
  setenv("PRINTER", "card-desk", 1);
  Run("");
  EXPECT_EQ("card-desk", task_->printerName);
  EXPECT_TRUE(Logged("  printerName::[card-desk]"));
}

TEST_F(ReadOptionsTest, CardEjectExisting) {
  UsePPD(GeneratedPPD(1060));
  Run("cardEjectExisting=No");
  EXPECT_EQ(0, task_->cardEjectExisting);
  Run("cardEjectExisting=Yes");
  EXPECT_EQ(1, task_->cardEjectExisting);
  UsePPD(FixturePPD("odd-model.ppd"));
  Run("");
  EXPECT_EQ(1, task_->cardEjectExisting);
  EXPECT_TRUE(Logged("  cardEjectExisting::OPT::[NULL]"));
}
