// Tests of the configuration tree's trust rules as the option reader meets
// them: a UV preset, lookup table or settings file reached through a link,
// through a directory other users can write or another user owns, or owned
// by another user, or with a second link, is not found, with a warning.
// Copyright 2026 The rastertobrellian authors.
#include <sys/stat.h>
#include <unistd.h>

#include "support/read_options_harness.h"

namespace {

constexpr uid_t kNobody = 65534;

std::string UVDir() { return std::string(BRELLIAN_CONF_DIR) + "/uv"; }
std::string UVPath(const std::string& name) { return UVDir() + "/" + name; }
std::string LUTPath(const std::string& name) {
  return std::string(BRELLIAN_LUT_DIR) + "/" + name + ".csv";
}
// A place outside the configuration tree, in the build's system root.
std::string Outside() { return std::string(BRELLIAN_CONF_DIR) + "/../outside-conf"; }

// 'LutText()' - A valid lookup table that inverts every level.
std::string LutText() {
  std::string text = "level,red,green,blue\n";
  for (int i = 0; i < 256; ++i) {
    std::string v = std::to_string(255 - i);
    text += std::to_string(i) + "," + v + "," + v + "," + v + "\n";
  }
  return text;
}

class ConfigTrustTest : public ReadOptionsTest {
 protected:
  void SetUp() override {
    ReadOptionsTest::SetUp();
    Test_RemoveTree(UVDir());
    Test_MakeDirs(UVDir());
    Test_MakeDirs(BRELLIAN_LUT_DIR);
    Test_MakeDirs(BRELLIAN_SETTINGS_DIR);
    TBrellianSettings s;
    s.uvNames[0] = "logo.uv";
    s.lutNames[0] = "inverse";
    SaveSettings(s, "TRUST");
    UseSerial("TRUST");
    UsePPD(GeneratedPPD(1060));
    Test_WriteFile(UVPath("logo.uv"), "uv");
    Test_WriteFile(LUTPath("inverse"), LutText());
  }

  void TearDown() override {
    Test_RemoveTree(UVDir());
    Test_RemoveTree(Outside());
    unlink(LUTPath("inverse").c_str());
    Test_MakeDirs(BRELLIAN_LUT_DIR);
    Test_MakeDirs(BRELLIAN_SETTINGS_DIR);
    RemoveSettings("TRUST");
    ReadOptionsTest::TearDown();
  }

  // 'ExpectUVFound()' - The UV preset's file was taken, or cleared as not
  // found.
  void ExpectUVFound(bool found) {
    Run("frontUV=Preset1");
    if (found) {
      EXPECT_EQ(2, task_->frontUV);
      EXPECT_TRUE(Logged("  frontUV: filename(" + UVPath("logo.uv") + ")"));
    } else {
      EXPECT_EQ(0, task_->frontUV);
      EXPECT_EQ("", task_->frontUVFile);
      EXPECT_TRUE(Logged("  frontUV: clear preset (file not found)(" + UVPath("logo.uv") + ")"));
    }
  }

  // 'Warned()' - The warning for path, whose reason holds reason.
  bool Warned(const std::string& path, const std::string& reason) const {
    std::string start = In("WARNING: Conf_OpenFile --> file not trusted (" + path + "): ");
    for (const std::string& l : lines_)
      if (l.compare(0, start.size(), start) == 0 && l.find(reason) != std::string::npos) return true;
    return false;
  }

  static bool IsRoot() { return geteuid() == 0; }
};

}  // namespace

TEST_F(ConfigTrustTest, TrustedTreeFindsEveryFile) {
  ExpectUVFound(true);
  Run("frontLUTTable=LUT1");
  EXPECT_EQ(1, task_->frontLUTTable);
  EXPECT_EQ(255, task_->lutTable[SIDE_FRONT][0][0]);
  EXPECT_FALSE(Mentions("WARNING"));
}

TEST_F(ConfigTrustTest, LinkedDirectoryIsNotFollowed) {
  // The UV directory replaced by a link to a directory outside the tree
  // holding a private file of the same name.
  Test_MakeDirs(Outside());
  Test_WriteFile(Outside() + "/logo.uv", "private");
  ASSERT_EQ(0, chmod((Outside() + "/logo.uv").c_str(), 0600));
  Test_RemoveTree(UVDir());
  ASSERT_EQ(0, symlink(Outside().c_str(), UVDir().c_str()));
  ExpectUVFound(false);
  EXPECT_TRUE(Warned(UVPath("logo.uv"), UVDir() + " is a symbolic link"));
}

TEST_F(ConfigTrustTest, DirectoryOthersCanWriteHidesItsFiles) {
  ASSERT_EQ(0, chmod(UVDir().c_str(), 0777));
  ExpectUVFound(false);
  EXPECT_TRUE(Warned(UVPath("logo.uv"), UVDir() + " is writable by other users"));
  ASSERT_EQ(0, chmod(UVDir().c_str(), 0775));
  ExpectUVFound(false);
  ASSERT_EQ(0, chmod(UVDir().c_str(), 0755));
  ExpectUVFound(true);
}

TEST_F(ConfigTrustTest, UVFileWithASecondLinkIsNotFound) {
  std::string second = std::string(BRELLIAN_CONF_DIR) + "/second-link.uv";
  unlink(second.c_str());
  ASSERT_EQ(0, link(UVPath("logo.uv").c_str(), second.c_str()));
  ExpectUVFound(false);
  EXPECT_TRUE(Warned(UVPath("logo.uv"), UVPath("logo.uv") + " has 2 links"));
  unlink(second.c_str());
  ExpectUVFound(true);
}

TEST_F(ConfigTrustTest, UVFileOfAnotherUserIsNotFound) {
  if (!IsRoot()) GTEST_SKIP() << "needs root to give a file to user nobody";
  ASSERT_EQ(0, chown(UVPath("logo.uv").c_str(), kNobody, kNobody));
  ExpectUVFound(false);
  EXPECT_TRUE(Warned(UVPath("logo.uv"), "is owned by user 65534"));
}

TEST_F(ConfigTrustTest, DirectoryOfAnotherUserHidesItsFiles) {
  if (!IsRoot()) GTEST_SKIP() << "needs root to give a directory to user nobody";
  ASSERT_EQ(0, chown(BRELLIAN_LUT_DIR, kNobody, kNobody));
  Run("frontLUTTable=LUT1");
  ASSERT_EQ(0, chown(BRELLIAN_LUT_DIR, 0, 0));
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(LoggedError("  LUT Table not found: (" + LUTPath("inverse") + ")"));
  EXPECT_TRUE(Warned(LUTPath("inverse"), std::string(BRELLIAN_LUT_DIR) + " is owned by user 65534"));
}

TEST_F(ConfigTrustTest, LookupTableWithASecondLinkIsNotFound) {
  std::string second = Outside() + "-lut.csv";
  unlink(second.c_str());
  ASSERT_EQ(0, link(LUTPath("inverse").c_str(), second.c_str()));
  Run("frontLUTTable=LUT1");
  unlink(second.c_str());
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(LoggedError("  LUT Table not found: (" + LUTPath("inverse") + ")"));
  EXPECT_TRUE(Warned(LUTPath("inverse"), "has 2 links"));
}

TEST_F(ConfigTrustTest, SettingsInADirectoryOthersCanWriteAreNotRead) {
  ASSERT_EQ(0, chmod(BRELLIAN_SETTINGS_DIR, 0777));
  Run("frontUV=Preset1");
  ASSERT_EQ(0, chmod(BRELLIAN_SETTINGS_DIR, 0755));
  EXPECT_EQ(0, task_->frontUV);
  EXPECT_TRUE(Logged("TBrellianSettings::Load --> failed to open settings file (2)"));
  EXPECT_TRUE(Logged("  frontUV: clear preset (file not defined)"));
  EXPECT_TRUE(Mentions("WARNING: Conf_OpenFile --> file not trusted (" +
                       std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_"));
  EXPECT_TRUE(Mentions(std::string(BRELLIAN_SETTINGS_DIR) + " is writable by other users"));
}

TEST_F(ConfigTrustTest, ConfigurationRootOthersCanWriteHidesEverything) {
  ASSERT_EQ(0, chmod(BRELLIAN_CONF_DIR, 0757));
  Run("frontUV=Preset1 frontLUTTable=LUT1");
  ASSERT_EQ(0, chmod(BRELLIAN_CONF_DIR, 0755));
  EXPECT_TRUE(Logged("TBrellianSettings::Load --> failed to open settings file (2)"));
  EXPECT_EQ(0, task_->frontUV);
  EXPECT_EQ(0, task_->frontLUTTable);
  EXPECT_TRUE(Mentions(std::string(BRELLIAN_CONF_DIR) + " is writable by other users"));
}
