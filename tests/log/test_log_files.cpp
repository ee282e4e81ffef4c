// Tests of the log facility's destinations: files, modes, mask, links.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "support/process.h"

namespace {

// 'ModeOf()' - Permission bits of path, or -1 when it does not exist.
int ModeOf(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? static_cast<int>(st.st_mode & 07777) : -1;
}

// Puts HOME back as it was when the test began.
class THomeGuard {
 public:
  THomeGuard() : had_(getenv("HOME") != nullptr), home_(had_ ? getenv("HOME") : "") {}
  ~THomeGuard() {
    if (had_) setenv("HOME", home_.c_str(), 1);
    else unsetenv("HOME");
  }

 private:
  bool had_;
  std::string home_;
};

}  // namespace

TEST(LogFile, SystemDestinationStampsLinesAndHasNoSizeLimit) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  std::string path = std::string(BRELLIAN_LOG_DIR) + "/unit-system.log";
  unlink(path.c_str());
  Log_SetFileName("unit-system.log");
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(2);
  Log_SetDepth(0);
  Log_Write(LOG_LOG, "hello %d", 5);
  Log_SetOutputMask(0);
  std::string text = Test_ReadFile(path);
  // "YYMMDD HH:MM:SS " then the line, which begins with a space.
  ASSERT_EQ(16u + 9u, text.size()) << text;
  EXPECT_EQ("  hello 5\n", text.substr(15));
  for (int i : {0, 1, 2, 3, 4, 5, 7, 8, 10, 11, 13, 14}) EXPECT_TRUE(isdigit(text[i])) << i;
  EXPECT_EQ(':', text[9]);
  EXPECT_EQ(':', text[12]);
  unlink(path.c_str());
}

TEST(LogFile, HomeDestinationCreatesDirectoriesAndRotatesPast16MiB) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-test";
  Test_RemoveTree(home);
  Test_MakeDirs(home);
  setenv("HOME", home.c_str(), 1);
  Log_SetFileName("unit-home.log");
  Log_SetOutputMask(LOG_OUT_HOME);
  Log_SetLevel(2);
  Log_Write(LOG_LOG, "first");
  std::string path = home + "/Brellian/Logs/unit-home.log";
  EXPECT_NE(std::string::npos, Test_ReadFile(path).find(" first\n"));
  // Grow the file past 16 MiB: the next line deletes it.
  Test_WriteFile(path, std::string(LOG_ROTATE_BYTES, 'x'));
  Log_Write(LOG_LOG, "second");
  struct stat st;
  EXPECT_NE(0, stat(path.c_str(), &st));
  Log_Write(LOG_LOG, "third");
  EXPECT_NE(std::string::npos, Test_ReadFile(path).find(" third\n"));
  Log_SetOutputMask(0);
  Test_RemoveTree(home);
}

TEST(LogFile, SpoolDestinationFallsBackToHome) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-spool";
  Test_RemoveTree(home);
  Test_RemoveTree(BRELLIAN_SPOOL_TMP_DIR);
  Test_MakeDirs(home);
  setenv("HOME", home.c_str(), 1);
  Log_SetFileName("unit-spool.log");
  Log_SetOutputMask(LOG_OUT_SPOOL);
  Log_SetLevel(2);
  Log_Write(LOG_LOG, "to home");
  EXPECT_NE(std::string::npos, Test_ReadFile(home + "/Brellian/Logs/unit-spool.log").find(" to home\n"));
  Test_MakeDirs(BRELLIAN_SPOOL_TMP_DIR);
  Log_Write(LOG_LOG, "to spool");
  EXPECT_NE(std::string::npos,
            Test_ReadFile(std::string(BRELLIAN_SPOOL_TMP_DIR) + "/unit-spool.log").find(" to spool\n"));
  Log_SetOutputMask(0);
  Test_RemoveTree(home);
  Test_RemoveTree(BRELLIAN_SPOOL_TMP_DIR);
}

TEST(LogFile, UnsetHomeSkipsTheHomeDestination) {
  const char* saved = getenv("HOME");
  std::string keep = saved ? saved : "";
  unsetenv("HOME");
  Log_SetFileName("unit-nohome.log");
  Log_SetOutputMask(LOG_OUT_HOME);
  Log_SetLevel(2);
  Log_Write(LOG_LOG, "dropped");
  struct stat st;
  EXPECT_NE(0, stat("Brellian", &st));
  Log_SetOutputMask(0);
  if (saved) setenv("HOME", keep.c_str(), 1);
}

TEST(LogFile, MaskZeroWritesNothingAnywhere) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-mask0";
  Test_RemoveTree(home);
  Test_MakeDirs(home);
  Test_MakeDirs(BRELLIAN_SPOOL_TMP_DIR);
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  setenv("HOME", home.c_str(), 1);
  Log_SetFileName("unit-mask0.log");
  Log_SetOutputMask(0);
  Log_SetLevel(24);
  testing::internal::CaptureStderr();
  Log_Write(LOG_LOG, "nowhere");
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_EQ(-1, ModeOf(std::string(BRELLIAN_LOG_DIR) + "/unit-mask0.log"));
  EXPECT_EQ(-1, ModeOf(std::string(BRELLIAN_SPOOL_TMP_DIR) + "/unit-mask0.log"));
  EXPECT_EQ(-1, ModeOf(home + "/Brellian"));
  Test_RemoveTree(home);
  Test_RemoveTree(BRELLIAN_SPOOL_TMP_DIR);
}

// Directories made under umask 0 get 0777 exactly; the log file 0666.
TEST(LogFile, DirectoriesMadeUnderUmaskZeroGetMode0777) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-modes";
  Test_RemoveTree(home);
  Test_MakeDirs(home);
  Test_RemoveTree(BRELLIAN_LOG_DIR);
  setenv("HOME", home.c_str(), 1);
  mode_t saved = umask(0);
  Log_SetFileName("unit-modes.log");
  Log_SetOutputMask(LOG_OUT_HOME | LOG_OUT_SYSTEM);
  Log_SetLevel(2);
  Log_Write(LOG_LOG, "modes");
  Log_SetOutputMask(0);
  umask(saved);
  EXPECT_EQ(0777, ModeOf(home + "/Brellian"));
  EXPECT_EQ(0777, ModeOf(home + "/Brellian/Logs"));
  EXPECT_EQ(0777, ModeOf(BRELLIAN_LOG_DIR));
  EXPECT_EQ(0666, ModeOf(home + "/Brellian/Logs/unit-modes.log"));
  EXPECT_EQ(0666, ModeOf(std::string(BRELLIAN_LOG_DIR) + "/unit-modes.log"));
  unlink((std::string(BRELLIAN_LOG_DIR) + "/unit-modes.log").c_str());
  Test_RemoveTree(home);
}

TEST(LogFile, LinesGoToEveryDestinationOfTheMask) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-all";
  Test_RemoveTree(home);
  Test_MakeDirs(home);
  Test_MakeDirs(BRELLIAN_SPOOL_TMP_DIR);
  setenv("HOME", home.c_str(), 1);
  Log_SetFileName("unit-all.log");
  Log_SetOutputMask(LOG_OUT_STDERR | LOG_OUT_SPOOL | LOG_OUT_HOME | LOG_OUT_SYSTEM);
  Log_SetLevel(2);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  Log_Write(LOG_LOG, "everywhere");
  EXPECT_EQ(" everywhere\n", testing::internal::GetCapturedStderr());
  Log_SetOutputMask(0);
  std::string spool = std::string(BRELLIAN_SPOOL_TMP_DIR) + "/unit-all.log";
  std::string system = std::string(BRELLIAN_LOG_DIR) + "/unit-all.log";
  for (const std::string& path : {spool, home + "/Brellian/Logs/unit-all.log", system}) {
    std::string text = Test_ReadFile(path);
    ASSERT_EQ(16u + 12u, text.size()) << path;
    EXPECT_EQ("  everywhere\n", text.substr(15)) << path;
  }
  unlink(system.c_str());
  Test_RemoveTree(home);
  Test_RemoveTree(BRELLIAN_SPOOL_TMP_DIR);
}

TEST(LogFile, UnsetOrEmptyHomeSkipsTheSpoolFallback) {
  THomeGuard homeGuard;
  Test_RemoveTree(BRELLIAN_SPOOL_TMP_DIR);
  Log_SetFileName("unit-nohome-spool.log");
  Log_SetOutputMask(LOG_OUT_SPOOL | LOG_OUT_HOME);
  Log_SetLevel(2);
  unsetenv("HOME");
  Log_Write(LOG_LOG, "dropped");
  setenv("HOME", "", 1);
  Log_Write(LOG_LOG, "dropped too");
  Log_SetOutputMask(0);
  EXPECT_EQ(-1, ModeOf("Brellian"));
  EXPECT_EQ(-1, ModeOf("/Brellian"));
}

TEST(LogFile, SymbolicLinkAtTheLogFileIsNotFollowed) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  std::string target = std::string(BRELLIAN_LOG_DIR) + "/unit-target";
  std::string link = std::string(BRELLIAN_LOG_DIR) + "/unit-link.log";
  Test_WriteFile(target, "keep\n");
  unlink(link.c_str());
  ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
  Log_SetFileName("unit-link.log");
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(2);
  Log_Write(LOG_LOG, "must not land in the target");
  Log_SetOutputMask(0);
  EXPECT_EQ("keep\n", Test_ReadFile(target));
  unlink(link.c_str());
  unlink(target.c_str());
}

TEST(LogFile, HomeDirectoriesRemovedBetweenLinesAreMadeAgain) {
  THomeGuard homeGuard;
  std::string home = std::string(BRELLIAN_CONF_DIR) + "/../../home-remade";
  Test_MakeDirs(home);
  setenv("HOME", home.c_str(), 1);
  std::string logs = home + "/Brellian/Logs";
  std::string file = logs + "/unit-remade.log";
  Log_SetFileName("unit-remade.log");
  Log_SetOutputMask(LOG_OUT_HOME);
  Log_SetLevel(2);
  Log_SetDepth(0);
  Log_Write(LOG_LOG, "first");
  ASSERT_EQ(0, unlink(file.c_str()));
  ASSERT_EQ(0, rmdir(logs.c_str()));
  ASSERT_EQ(0, rmdir((home + "/Brellian").c_str()));
  mode_t old = umask(0);
  Log_Write(LOG_LOG, "second");
  umask(old);
  Log_SetOutputMask(0);
  EXPECT_EQ(0777, ModeOf(home + "/Brellian"));
  EXPECT_EQ(0777, ModeOf(logs));
  std::string text = Test_ReadFile(file);
  EXPECT_NE(std::string::npos, text.find("  second\n")) << text;
  EXPECT_EQ(std::string::npos, text.find("first")) << text;
  unlink(file.c_str());
}

TEST(LogFile, FifoAtTheLogFileIsNeitherWrittenNorWaitedOn) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  std::string fifo = std::string(BRELLIAN_LOG_DIR) + "/unit-fifo.log";
  unlink(fifo.c_str());
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0666));
  Log_SetFileName("unit-fifo.log");
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(2);
  // No reader: the line is dropped at once.
  Log_Write(LOG_LOG, "nobody reads this");
  // A reader waiting: the file is still not a regular file, so nothing
  // reaches it.
  int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  Log_Write(LOG_LOG, "nor this");
  Log_SetOutputMask(0);
  char buf[64];
  EXPECT_LE(read(reader, buf, sizeof buf), 0);
  close(reader);
  struct stat st;
  ASSERT_EQ(0, lstat(fifo.c_str(), &st));
  EXPECT_TRUE(S_ISFIFO(st.st_mode));
  unlink(fifo.c_str());
}
