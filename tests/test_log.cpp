// Tests of the log facility: levels, configuration, depth, destinations.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "support/process.h"

namespace {

int32_t LevelOf(const std::string& text, int32_t def = 2) {
  return Log_ReadLevelFromText(text.data(), text.size(), "rastertobrellian", def);
}

// Captures what Log_Write sends to standard error (mask bit 2).
class LogToStderr : public ::testing::Test {
 protected:
  void SetUp() override {
    Log_SetFileName("unit.log");
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetDepth(0);
  }
  void TearDown() override {
    Log_SetOutputMask(0);
    Log_SetDepth(0);
  }
  std::string Capture(void (*fn)()) {
    testing::internal::CaptureStderr();
    fn();
    return testing::internal::GetCapturedStderr();
  }
};

}  // namespace

TEST(LogConfig, KeyWithBlanksAroundEqualsAndTraceGives20) {
  EXPECT_EQ(20, LevelOf("rastertobrellian = trace\n"));
}

TEST(LogConfig, KeyInCapitalsWithEntryExitGives24) {
  EXPECT_EQ(24, LevelOf("RASTERTOBRELLIAN=entryexit\n"));
}

TEST(LogConfig, UnknownWordGivesDefault) {
  EXPECT_EQ(7, LevelOf("rastertobrellian = loud\n", 7));
}

TEST(LogConfig, CommentedLineIsSkipped) {
  EXPECT_EQ(2, LevelOf("#rastertobrellian = trace\n"));
}

TEST(LogConfig, EveryLevelWord) {
  const char* words[] = {"none", "log", "fatal", "error", "warning", "info", "trace", "EntryExit"};
  const int32_t levels[] = {0, 2, 4, 8, 12, 16, 20, 24};
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(levels[i], LevelOf(std::string("rastertobrellian=") + words[i], 99)) << words[i];
}

TEST(LogConfig, FirstMatchingLineWinsAndOtherKeysAreIgnored) {
  EXPECT_EQ(16, LevelOf("other=trace\nrastertobrellian=info\nrastertobrellian=trace\n"));
}

TEST(LogConfig, LinesWithoutEqualsOrValueAreSkipped) {
  EXPECT_EQ(2, LevelOf("rastertobrellian trace\nrastertobrellian =   \n"));
  EXPECT_EQ(20, LevelOf("rastertobrellian =\nrastertobrellian=trace\r\n"));
}

TEST(LogConfig, KeyMustBeginInTheFirstColumn) {
  EXPECT_EQ(2, LevelOf("  rastertobrellian = trace\n"));
}

TEST(LogConfig, TabsAreNotBlanks) {
  EXPECT_EQ(2, LevelOf("rastertobrellian\t= trace\n"));
}

TEST(LogConfig, OverlongLineIsSkippedWhole) {
  std::string line(5000, 'x');
  line += "\nrastertobrellian=trace\n";
  EXPECT_EQ(20, LevelOf(line));
  std::string tail = std::string(1030, ' ') + "rastertobrellian=trace\n";
  EXPECT_EQ(2, LevelOf(tail));
}

TEST(LogConfig, MissingFileGivesDefault) {
  unlink(BRELLIAN_LOG_CONFIG_FILE);
  EXPECT_EQ(5, Log_ReadLevel("rastertobrellian", 5));
}

TEST(LogConfig, FileIsReadFromTheLogDirectory) {
  Test_SetLogLevelWord("info");
  EXPECT_EQ(16, Log_ReadLevel("rastertobrellian", 2));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}

TEST(LogConfig, SymbolicLinkIsNotFollowed) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  std::string target = std::string(BRELLIAN_LOG_DIR) + "/other-config";
  Test_WriteFile(target, "rastertobrellian=trace\n");
  unlink(BRELLIAN_LOG_CONFIG_FILE);
  ASSERT_EQ(0, symlink(target.c_str(), BRELLIAN_LOG_CONFIG_FILE));
  EXPECT_EQ(2, Log_ReadLevel("rastertobrellian", 2));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
  unlink(target.c_str());
}

TEST_F(LogToStderr, LineAboveCurrentLevelIsNotWritten) {
  Log_SetLevel(2);
  EXPECT_EQ("", Capture([] { Log_Write(LOG_ERROR, "x"); }));
}

TEST_F(LogToStderr, ErrorAtLevel24CarriesItsPrefixAfterIndentation) {
  Log_SetLevel(24);
  EXPECT_EQ(" ERROR: bad\n", Capture([] { Log_Write(LOG_ERROR, "bad"); }));
  EXPECT_EQ(" FATAL: f\n WARNING: w\n x\n", Capture([] {
              Log_Write(LOG_FATAL, "f");
              Log_Write(LOG_WARNING, "w");
              Log_Write(LOG_INFO, "x");
            }));
}

TEST_F(LogToStderr, DepthIndentsNestedLines) {
  Log_SetLevel(24);
  std::string out = Capture([] {
    Log_Write(LOG_ENTRYEXIT, ">>>> A");
    Log_Write(LOG_ENTRYEXIT, ">>>> B");
    Log_Write(LOG_LOG, "plain");
    Log_Write(LOG_ENTRYEXIT, "<<<< B");
    Log_Write(LOG_ENTRYEXIT, "<<<< A");
  });
  EXPECT_EQ(" >>>> A\n      >>>> B\n           plain\n      <<<< B\n <<<< A\n", out);
}

TEST_F(LogToStderr, UnmatchedExitDrivesDepthNegative) {
  Log_SetLevel(24);
  std::string out = Capture([] {
    Log_Write(LOG_ENTRYEXIT, "<<<< X");
    Log_Write(LOG_LOG, "a");
    Log_Write(LOG_ENTRYEXIT, ">>>> Y");
    Log_Write(LOG_ENTRYEXIT, ">>>> Z");
    Log_Write(LOG_LOG, "b");
  });
  EXPECT_EQ(-1 + 2, Log_GetDepth());
  EXPECT_EQ(" <<<< X\n a\n >>>> Y\n >>>> Z\n      b\n", out);
}

TEST_F(LogToStderr, MaskZeroWritesNothing) {
  Log_SetLevel(24);
  Log_SetOutputMask(0);
  EXPECT_EQ("", Capture([] { Log_Write(LOG_LOG, "nothing"); }));
}

TEST_F(LogToStderr, LongMessageIsCutNeverOverflows) {
  Log_SetLevel(24);
  std::string out = Capture([] {
    std::string big(5000, 'a');
    Log_Write(LOG_LOG, "%s", big.c_str());
  });
  ASSERT_FALSE(out.empty());
  EXPECT_LT(out.size(), static_cast<size_t>(LOG_MESSAGE_BYTES + 1));
  EXPECT_EQ('\n', out.back());
}

TEST_F(LogToStderr, ControlCharactersAreEscaped) {
  Log_SetLevel(24);
  EXPECT_EQ(" a\\x0Ab\\x1B\n", Capture([] { Log_Write(LOG_LOG, "%s", "a\nb\x1b"); }));
}

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
