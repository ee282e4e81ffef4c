// Tests of the log file kept open between lines: every line lands where
// and as an open for every line would put it, after the file is removed,
// renamed, replaced, linked, given away or rotated.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "support/process.h"

namespace {

constexpr uid_t kNobody = 65534;
const char kName[] = "unit-keep.log";

std::string Path() { return std::string(BRELLIAN_LOG_DIR) + "/" + kName; }
std::string Outside() { return std::string(BRELLIAN_LOG_DIR) + "/../outside-keep.txt"; }

// 'Line()' - One line to the system destination.
void Line(const char* text) {
  Log_SetFileName(kName);
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  Log_Write(LOG_LOG, "%s", text);
  Log_SetOutputMask(0);
}

// 'Messages()' - The lines of the file at path without their time stamps.
std::string Messages(const std::string& path) {
  std::string out;
  for (const std::string& line : Test_Lines(Test_ReadFile(path)))
    if (line.size() > 16) out += line.substr(16) + "|";
  return out;
}

// 'OpenDescriptorsOf()' - How many descriptors of this process name path.
int OpenDescriptorsOf(const std::string& path) {
  char want[PATH_MAX];
  if (!realpath(path.c_str(), want)) return 0;
  int count = 0;
  DIR* dir = opendir("/proc/self/fd");
  while (dirent* e = dir ? readdir(dir) : nullptr) {
    char link[PATH_MAX];
    std::string fdPath = std::string("/proc/self/fd/") + e->d_name;
    ssize_t n = readlink(fdPath.c_str(), link, sizeof link - 1);
    if (n <= 0) continue;
    link[n] = '\0';
    if (std::string(link) == want) ++count;
  }
  if (dir) closedir(dir);
  return count;
}

int ModeOf(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? static_cast<int>(st.st_mode & 07777) : -1;
}

class LogKeepOpenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Test_MakeDirs(BRELLIAN_LOG_DIR);
    unlink(Path().c_str());
    unlink(Outside().c_str());
  }
  void TearDown() override {
    Log_SetOutputMask(0);
    unlink(Path().c_str());
    unlink((Path() + ".1").c_str());
    unlink(Outside().c_str());
  }
};

}  // namespace

TEST_F(LogKeepOpenTest, OneDescriptorStaysOpenBetweenLines) {
  Line("first");
  Line("second");
  EXPECT_EQ(1, OpenDescriptorsOf(Path()));
  EXPECT_EQ(" first| second|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, RemovedFileIsStartedAgain) {
  Line("first");
  ASSERT_EQ(0, unlink(Path().c_str()));
  Line("second");
  EXPECT_EQ(" second|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, RenamedFileKeepsOnlyItsEarlierLines) {
  Line("first");
  ASSERT_EQ(0, rename(Path().c_str(), (Path() + ".1").c_str()));
  Line("second");
  EXPECT_EQ(" first|", Messages(Path() + ".1"));
  EXPECT_EQ(" second|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, FileReplacedByALinkDropsTheLine) {
  Line("first");
  Test_WriteFile(Outside(), "private\n");
  ASSERT_EQ(0, unlink(Path().c_str()));
  ASSERT_EQ(0, symlink(Outside().c_str(), Path().c_str()));
  Line("second");
  EXPECT_EQ("private\n", Test_ReadFile(Outside()));
  ASSERT_EQ(0, unlink(Path().c_str()));
  Line("third");
  EXPECT_EQ(" third|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, SecondLinkDropsTheLineUntilItIsGone) {
  Line("first");
  ASSERT_EQ(0, link(Path().c_str(), Outside().c_str()));
  Line("second");
  EXPECT_EQ(" first|", Messages(Outside()));
  ASSERT_EQ(0, unlink(Outside().c_str()));
  Line("third");
  EXPECT_EQ(" first| third|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, FileGivenToAnotherUserDropsTheLine) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to give a file to user nobody";
  Line("first");
  ASSERT_EQ(0, chown(Path().c_str(), kNobody, kNobody));
  Line("second");
  ASSERT_EQ(0, chown(Path().c_str(), 0, 0));
  Line("third");
  EXPECT_EQ(" first| third|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, FileOfAnotherNameIsOpenedWhenTheNameChanges) {
  Line("first");
  Log_SetFileName("unit-keep-other.log");
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_Write(LOG_LOG, "other");
  Log_SetOutputMask(0);
  std::string other = std::string(BRELLIAN_LOG_DIR) + "/unit-keep-other.log";
  EXPECT_EQ(" other|", Messages(other));
  EXPECT_EQ(" first|", Messages(Path()));
  unlink(other.c_str());
}

TEST_F(LogKeepOpenTest, RemovedDirectoryAndFileAreMadeAgainWithTheirModes) {
  mode_t saved = umask(0);
  Line("first");
  Test_RemoveTree(BRELLIAN_LOG_DIR);
  Line("second");
  umask(saved);
  EXPECT_EQ(0777, ModeOf(BRELLIAN_LOG_DIR));
  EXPECT_EQ(0666, ModeOf(Path()));
  EXPECT_EQ(" second|", Messages(Path()));
}

TEST_F(LogKeepOpenTest, RotatedFileIsDeletedAfterTheLineThatPassesTheLimit) {
  const char* saved = getenv("HOME");
  std::string keep = saved ? saved : "";
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-keep";
  Test_RemoveTree(home);
  Test_MakeDirs(home);
  setenv("HOME", home.c_str(), 1);
  std::string path = home + "/Brellian/Logs/" + kName;
  Log_SetFileName(kName);
  Log_SetOutputMask(LOG_OUT_HOME);
  Log_Write(LOG_LOG, "first");
  // Another writer appends to the same file until it is at the limit.
  int fd = open(path.c_str(), O_WRONLY | O_APPEND);
  ASSERT_GE(fd, 0);
  std::string block(LOG_ROTATE_BYTES - Test_ReadFile(path).size(), 'x');
  ASSERT_EQ(static_cast<ssize_t>(block.size()), write(fd, block.data(), block.size()));
  close(fd);
  Log_Write(LOG_LOG, "second");  // passes the limit: the file is deleted
  struct stat st;
  EXPECT_NE(0, stat(path.c_str(), &st));
  Log_Write(LOG_LOG, "third");
  Log_SetOutputMask(0);
  EXPECT_EQ(" third|", Messages(path));
  if (saved) setenv("HOME", keep.c_str(), 1);
  else unsetenv("HOME");
  Test_RemoveTree(home);
}
