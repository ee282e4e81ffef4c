// Tests of the settings store on disk: file names, refused names, links,
// size cap, directories and the round trip.
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
