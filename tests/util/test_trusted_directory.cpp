// File_OpenConfig names the directory that made it refuse a file, and why,
// so that the refusal can be told with the command that fixes it.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "brellian_paths.h"
#include "support/process.h"
#include "util/trusted_file.h"

namespace {

std::string Dir() { return std::string(BRELLIAN_CONF_DIR) + "/dir-trust"; }
std::string File() { return Dir() + "/file"; }

class TrustedDirectoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Test_RemoveTree(Dir());
    Test_MakeDirs(Dir());
    Test_WriteFile(File(), "x");
  }
  void TearDown() override { Test_RemoveTree(Dir()); }

  // 'Open()' - File_OpenConfig on the file; true when it opened.
  bool Open() {
    std::string refusal;
    directory.path = "stale";
    int fd = File_OpenConfig(File().c_str(), &refusal, &directory);
    if (fd >= 0) close(fd);
    return fd >= 0;
  }
  TDirectoryRefusal directory;
};

}  // namespace

TEST_F(TrustedDirectoryTest, TrustedTreeNamesNoDirectory) {
  EXPECT_TRUE(Open());
  EXPECT_EQ(DIR_PROBLEM_NONE, directory.problem);
  EXPECT_EQ("", directory.path);
}

TEST_F(TrustedDirectoryTest, WritableDirectoryIsNamed) {
  ASSERT_EQ(0, chmod(Dir().c_str(), 0777));
  EXPECT_FALSE(Open());
  EXPECT_EQ(DIR_PROBLEM_WRITABLE, directory.problem);
  EXPECT_EQ(Dir(), directory.path);
  ASSERT_EQ(0, chmod(Dir().c_str(), 0775));   // the group alone is enough
  EXPECT_FALSE(Open());
  EXPECT_EQ(DIR_PROBLEM_WRITABLE, directory.problem);
}

TEST_F(TrustedDirectoryTest, DirectoryOfAnotherOwnerIsNamed) {
  if (chown(Dir().c_str(), 1, static_cast<gid_t>(-1)) != 0) GTEST_SKIP() << "cannot give a directory away";
  EXPECT_FALSE(Open());
  EXPECT_EQ(DIR_PROBLEM_OWNER, directory.problem);
  EXPECT_EQ(Dir(), directory.path);
}

TEST_F(TrustedDirectoryTest, LinkInPlaceOfADirectoryIsNamed) {
  std::string real = Dir() + "-real";
  Test_RemoveTree(real);
  ASSERT_EQ(0, rename(Dir().c_str(), real.c_str()));
  ASSERT_EQ(0, symlink(real.c_str(), Dir().c_str()));
  EXPECT_FALSE(Open());
  EXPECT_EQ(DIR_PROBLEM_LINK, directory.problem);
  EXPECT_EQ(Dir(), directory.path);
  unlink(Dir().c_str());
  Test_RemoveTree(real);
}

TEST_F(TrustedDirectoryTest, FileRefusedForItselfNamesNoDirectory) {
  ASSERT_EQ(0, link(File().c_str(), (File() + "2").c_str()));
  EXPECT_FALSE(Open());
  EXPECT_EQ(DIR_PROBLEM_NONE, directory.problem);
  ASSERT_EQ(0, unlink((File() + "2").c_str()));
  ASSERT_EQ(0, symlink(File().c_str(), (File() + "-link").c_str()));
  std::string refusal;
  EXPECT_EQ(-1, File_OpenConfig((File() + "-link").c_str(), &refusal, &directory));
  EXPECT_EQ(DIR_PROBLEM_NONE, directory.problem);   // the file itself is the link
}
