// Tests of the settings store: file format, file name, corrupt files.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "options/settings.h"
#include "support/process.h"

namespace {

std::string U32(uint32_t v) {
  std::string s;
  for (int i = 0; i < 4; ++i) s.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
  return s;
}

std::string Entry(const std::string& text) { return U32(text.size() + 1) + text + '\0'; }

// A file image of the given version: flags 1..10, every entry empty except
// resin preset 1 include 1, the LUT and UV names and the plug-in.
std::string Image(uint32_t version, bool withTail = true) {
  std::string s = "ERAWTFOS" + U32(version);
  for (int i = 1; i <= 10; ++i) s.push_back(static_cast<char>(i));
  s += Entry("5mm 5mm 50mm 30mm");
  for (int i = 1; i < 120; ++i) s += Entry("");
  for (int i = 1; i <= 5; ++i) s += Entry("lut" + std::to_string(i));
  for (int i = 1; i <= 5; ++i) s += Entry("uv" + std::to_string(i) + ".png");
  if (version > 0x00010000) s += Entry("plugA");
  if (withTail && version > 0x00010001) s += U32(0) + U32(7);
  return s;
}

TBrellianSettings FromBytes(const std::string& bytes) {
  TBrellianSettings s;
  s.LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return s;
}

// Captures the log lines written while fn runs.
template <typename F>
std::string CaptureLog(F fn) {
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  fn();
  std::string out = testing::internal::GetCapturedStderr();
  Log_SetOutputMask(0);
  return out;
}

std::string SettingsFile(const std::string& name) {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/" + name;
}

}  // namespace

TEST(SettingsStore, ResetState) {
  TBrellianSettings s;
  EXPECT_EQ("", s.modelName);
  EXPECT_EQ("", s.resinAreas[9][1][4]);
  EXPECT_EQ(0, s.flags[9]);
  EXPECT_EQ(-1, s.cardThickness);
  EXPECT_EQ(-1, s.magPOMode);
}

TEST(SettingsStore, FilePathUsesTheStoredNames) {
  TBrellianSettings s;
  s.modelName = "X90";
  s.serialNumber = "AB12";
  EXPECT_EQ(SettingsFile("brellian_X90_AB12.dat"), s.FilePath());
}

TEST(SettingsStore, LoadLowerCasesTheNamesAndReadsTheirFile) {
  TBrellianSettings writer;
  writer.modelName = "x90";
  writer.serialNumber = "ab12";
  writer.plugin = "found";
  ASSERT_TRUE(writer.Save());
  struct stat st;
  ASSERT_EQ(0, stat(SettingsFile("brellian_x90_ab12.dat").c_str(), &st));
  TBrellianSettings s;
  EXPECT_TRUE(s.Load("X90", "AB12"));
  EXPECT_EQ("x90", s.modelName);
  EXPECT_EQ("ab12", s.serialNumber);
  EXPECT_EQ("found", s.plugin);
  unlink(SettingsFile("brellian_x90_ab12.dat").c_str());
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

TEST(SettingsStore, SaveLoadRoundTripKeepsOnlyThreeAreasPerGroup) {
  TBrellianSettings s;
  s.modelName = "rt";
  s.serialNumber = "sn1";
  for (int p = 0; p < 10; ++p)
    for (int g = 0; g < 2; ++g)
      for (int k = 0; k < 5; ++k) {
        s.resinAreas[p][g][k] = "r" + std::to_string(p) + std::to_string(g) + std::to_string(k);
        s.poAreas[p][g][k] = "p" + std::to_string(p) + std::to_string(g) + std::to_string(k);
      }
  s.lutNames[4] = "last";
  s.uvNames[0] = "first.png";
  s.flags[1] = 200;
  s.plugin = "plug";
  s.cardThickness = 1;
  s.magPOMode = 0;
  ASSERT_TRUE(s.Save());
  TBrellianSettings t;
  ASSERT_TRUE(t.Load("RT", "SN1"));
  for (int p = 0; p < 10; ++p)
    for (int g = 0; g < 2; ++g)
      for (int k = 0; k < 5; ++k) {
        std::string suffix = std::to_string(p) + std::to_string(g) + std::to_string(k);
        EXPECT_EQ(k < 3 ? "r" + suffix : "", t.resinAreas[p][g][k]);
        EXPECT_EQ(k < 3 ? "p" + suffix : "", t.poAreas[p][g][k]);
      }
  EXPECT_EQ("last", t.lutNames[4]);
  EXPECT_EQ("first.png", t.uvNames[0]);
  EXPECT_EQ(200, t.flags[1]);
  EXPECT_EQ("plug", t.plugin);
  EXPECT_EQ(1, t.cardThickness);
  EXPECT_EQ(0, t.magPOMode);
  unlink(s.FilePath().c_str());
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

TEST(SettingsStore, LoadOfAMissingFileLogsAndKeepsTheNames) {
  unlink(SettingsFile("brellian_none_zz.dat").c_str());
  TBrellianSettings s;
  s.plugin = "stale";
  bool ok = true;
  std::string log = CaptureLog([&] { ok = s.Load("NONE", "ZZ"); });
  EXPECT_FALSE(ok);
  EXPECT_EQ(" TBrellianSettings::Load --> failed to open settings file (2)\n", log);
  EXPECT_EQ("none", s.modelName);
  EXPECT_EQ("zz", s.serialNumber);
  EXPECT_EQ("", s.plugin);
  EXPECT_EQ(-1, s.cardThickness);
}

TEST(SettingsStore, NamesThatWouldLeaveTheDirectoryAreRefused) {
  const char* serials[] = {"../../x", "a/b", ".hidden", "a\nb", ""};
  for (const char* serial : serials) {
    TBrellianSettings s;
    bool ok = true;
    std::string log = CaptureLog([&] { ok = s.Load("m", serial); });
    EXPECT_FALSE(ok) << serial;
    EXPECT_EQ(" TBrellianSettings::Load --> failed to open settings file (22)\n", log) << serial;
  }
  std::string longName(SETTINGS_NAME_MAX + 1, 'a');
  TBrellianSettings s;
  std::string log = CaptureLog([&] { s.Load(longName.c_str(), "sn"); });
  EXPECT_EQ(" TBrellianSettings::Load --> failed to open settings file (36)\n", log);
  TBrellianSettings w;
  w.modelName = "m";
  w.serialNumber = "../x";
  bool ok = true;
  log = CaptureLog([&] { ok = w.Save(); });
  EXPECT_FALSE(ok);
  EXPECT_EQ(" TBrellianSettings::Save --> failed to create settings file (22)\n", log);
}

TEST(SettingsStore, SymbolicLinkIsNotFollowed) {
  Test_MakeDirs(BRELLIAN_SETTINGS_DIR);
  std::string target = SettingsFile("real.bin");
  Test_WriteFile(target, Image(0x00010002));
  std::string link = SettingsFile("brellian_lnk_sn.dat");
  unlink(link.c_str());
  ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
  TBrellianSettings s;
  std::string log = CaptureLog([&] { EXPECT_FALSE(s.Load("lnk", "sn")); });
  EXPECT_EQ(" TBrellianSettings::Load --> failed to open settings file (40)\n", log);
  EXPECT_EQ("", s.plugin);
  unlink(link.c_str());
  unlink(target.c_str());
}

TEST(SettingsStore, FileOverTheSizeCapIsNotRead) {
  Test_MakeDirs(BRELLIAN_SETTINGS_DIR);
  std::string path = SettingsFile("brellian_big_sn.dat");
  Test_WriteFile(path, Image(0x00010002) + std::string(SETTINGS_FILE_MAX, '\0'));
  TBrellianSettings s;
  std::string log = CaptureLog([&] { EXPECT_FALSE(s.Load("big", "sn")); });
  EXPECT_EQ(" TBrellianSettings::Load --> failed to open settings file (27)\n", log);
  EXPECT_EQ("", s.plugin);
  unlink(path.c_str());
}

TEST(SettingsStore, LoadCreatesTheDirectories) {
  Test_RemoveTree(BRELLIAN_SETTINGS_DIR);
  TBrellianSettings s;
  CaptureLog([&] { s.Load("m", "sn"); });
  struct stat st;
  ASSERT_EQ(0, stat(BRELLIAN_SETTINGS_DIR, &st));
  EXPECT_TRUE(S_ISDIR(st.st_mode));
}
