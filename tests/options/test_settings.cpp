// Tests of the settings store file format: exact bytes, versions and
// damaged images.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "support/process.h"
#include "support/settings_support.h"

using namespace settings_test;

TEST(SettingsStore, ResetState) {
  TBrellianSettings s;
  EXPECT_EQ("", s.modelName);
  EXPECT_EQ("", s.resinAreas[9][1][4]);
  EXPECT_EQ(0, s.flags[9]);
  EXPECT_EQ(-1, s.cardThickness);
  EXPECT_EQ(-1, s.magPOMode);
}

TEST(SettingsStore, SaveWritesTheExactFormat) {
  TBrellianSettings s;
  for (int i = 0; i < 10; ++i) s.flags[i] = static_cast<uint8_t>(i + 1);
  s.resinAreas[0][0][0] = "5mm 5mm 50mm 30mm";
  for (int i = 0; i < 5; ++i) s.lutNames[i] = "lut" + std::to_string(i + 1);
  for (int i = 0; i < 5; ++i) s.uvNames[i] = "uv" + std::to_string(i + 1) + ".png";
  s.plugin = "plugA";
  s.cardThickness = 0;
  s.magPOMode = 7;
  EXPECT_EQ(Image(0x00010002), s.SaveToBytes());
}

TEST(SettingsStore, Version10001HasPluginButNoNumbers) {
  TBrellianSettings s = FromBytes(Image(0x00010001));
  EXPECT_EQ("plugA", s.plugin);
  EXPECT_EQ(-1, s.cardThickness);
  EXPECT_EQ(-1, s.magPOMode);
  EXPECT_EQ("5mm 5mm 50mm 30mm", s.resinAreas[0][0][0]);
  EXPECT_EQ("uv5.png", s.uvNames[4]);
}

TEST(SettingsStore, Version10000HasNeitherPluginNorNumbers) {
  TBrellianSettings s = FromBytes(Image(0x00010000) + Entry("ignored") + U32(0) + U32(0));
  EXPECT_EQ("", s.plugin);
  EXPECT_EQ(-1, s.cardThickness);
  EXPECT_EQ("lut3", s.lutNames[2]);
}

TEST(SettingsStore, MagicIsNotChecked) {
  std::string bytes = Image(0x00010002);
  bytes.replace(0, 8, "XXXXXXXX");
  TBrellianSettings s = FromBytes(bytes);
  EXPECT_EQ("plugA", s.plugin);
  EXPECT_EQ(7, s.magPOMode);
}

TEST(SettingsStore, TruncatedFilesLeaveTheRestEmpty) {
  std::string full = Image(0x00010002);
  // Every prefix of the image loads without reading past its end.
  for (size_t n = 0; n <= full.size(); ++n) {
    TBrellianSettings s = FromBytes(full.substr(0, n));
    if (n < full.size()) {
      EXPECT_EQ(-1, s.magPOMode) << n;
    }
  }
  TBrellianSettings cut = FromBytes(full.substr(0, full.size() - 30));
  EXPECT_EQ("lut5", cut.lutNames[4]);
  EXPECT_EQ("", cut.uvNames[4]);
  EXPECT_EQ("", cut.plugin);
  TBrellianSettings header = FromBytes(full.substr(0, 15));
  EXPECT_EQ(0, header.flags[0]);
}

TEST(SettingsStore, HugeLengthStopsReading) {
  std::string s = "ERAWTFOS" + U32(0x00010002) + std::string(10, '\1') + Entry("ok") +
                  U32(0xFFFFFFFFu) + "rest";
  TBrellianSettings t = FromBytes(s);
  EXPECT_EQ("ok", t.resinAreas[0][0][0]);
  EXPECT_EQ("", t.resinAreas[0][0][1]);
  EXPECT_EQ("", t.plugin);
  EXPECT_EQ(1, t.flags[9]);
}

TEST(SettingsStore, OverlongEntryIsSkippedAndReadingGoesOn) {
  std::string big(SETTINGS_STRING_MAX, 'x');   // with its zero: one byte over the cap
  std::string s = "ERAWTFOS" + U32(0x00010002) + std::string(10, '\0') + Entry(big) + Entry("next");
  TBrellianSettings t = FromBytes(s);
  EXPECT_EQ("", t.resinAreas[0][0][0]);
  EXPECT_EQ("next", t.resinAreas[0][0][1]);
}

TEST(SettingsStore, EntryWithoutZeroIsLeftEmpty) {
  std::string s = "ERAWTFOS" + U32(0x00010002) + std::string(10, '\0') + U32(3) + "abc" + Entry("b");
  TBrellianSettings t = FromBytes(s);
  EXPECT_EQ("", t.resinAreas[0][0][0]);
  EXPECT_EQ("b", t.resinAreas[0][0][1]);
}

TEST(SettingsStore, TextEndsAtItsFirstZero) {
  std::string s = "ERAWTFOS" + U32(0x00010002) + std::string(10, '\0') + U32(6) +
                  std::string("ab\0cd\0", 6) + U32(0) + Entry("c");
  TBrellianSettings t = FromBytes(s);
  EXPECT_EQ("ab", t.resinAreas[0][0][0]);
  EXPECT_EQ("", t.resinAreas[0][0][1]);   // length 0: empty
  EXPECT_EQ("c", t.resinAreas[0][0][2]);
}

TEST(SettingsStore, DamagedImagesLoadWithinBounds) {
  // Deterministic damage: bytes of a valid image overwritten at random
  // places, lengths included.  Loading must stay within the image (checked
  // under the sanitizer build), and every text it keeps must be bytes the
  // image holds: nothing can come from outside it.
  std::string good = Image(0x00010002);
  uint32_t seed = 12345;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = good;
    int hits = 1 + static_cast<int>(next() % 8);
    for (int h = 0; h < hits; ++h) bytes[next() % bytes.size()] = static_cast<char>(next() >> 16);
    bytes.resize(next() % (bytes.size() + 1));
    TBrellianSettings s = FromBytes(bytes);
    for (const auto& preset : s.resinAreas)
      for (const auto& group : preset)
        for (const auto& area : group) ASSERT_NE(std::string::npos, bytes.find(area)) << round;
    ASSERT_NE(std::string::npos, bytes.find(s.plugin)) << round;
  }
}
