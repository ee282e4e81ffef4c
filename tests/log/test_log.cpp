// Tests of the log facility: levels, configuration, depth, destinations.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
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

TEST_F(LogToStderr, ErrorPrefixStandsAfterTheIndentation) {
  Log_SetLevel(24);
  std::string out = Capture([] {
    Log_Write(LOG_ENTRYEXIT, ">>>> A");
    Log_Write(LOG_ERROR, "bad %d", 3);
    Log_Write(LOG_WARNING, "w");
    Log_Write(LOG_ENTRYEXIT, "<<<< A[[%d]", 0);
  });
  EXPECT_EQ(" >>>> A\n      ERROR: bad 3\n      WARNING: w\n <<<< A[[0]\n", out);
}

TEST_F(LogToStderr, LevelIsAPlainThreshold) {
  Log_SetLevel(LOG_WARNING);
  EXPECT_EQ(" WARNING: w\n", Capture([] {
              Log_Write(LOG_WARNING, "w");
              Log_Write(LOG_INFO, "i");
            }));
  Log_SetLevel(LOG_NONE);
  EXPECT_EQ("", Capture([] { Log_Write(LOG_LOG, "plain"); }));
}

TEST_F(LogToStderr, LinesBelowTheLevelDoNotMoveTheDepth) {
  Log_SetLevel(LOG_LOG);
  std::string out = Capture([] {
    Log_Write(LOG_ENTRYEXIT, ">>>> hidden");
    Log_Write(LOG_LOG, "flat");
  });
  EXPECT_EQ(" flat\n", out);
  EXPECT_EQ(0, Log_GetDepth());
}

TEST_F(LogToStderr, SignalMaskIsRestoredAfterALine) {
  Log_SetLevel(24);
  sigset_t before, after;
  pthread_sigmask(SIG_BLOCK, nullptr, &before);
  Capture([] { Log_Write(LOG_LOG, "x"); });
  pthread_sigmask(SIG_BLOCK, nullptr, &after);
  for (int sig : {SIGTERM, SIGINT, SIGABRT})
    EXPECT_EQ(sigismember(&before, sig), sigismember(&after, sig)) << sig;
}

TEST(LogConfig, OversizedFileGivesDefault) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  Test_WriteFile(BRELLIAN_LOG_CONFIG_FILE,
                 "rastertobrellian=trace\n" + std::string(1024 * 1024, '#') + "\n");
  EXPECT_EQ(2, Log_ReadLevel("rastertobrellian", 2));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}
