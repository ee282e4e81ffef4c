// Tests of the log's trust rules: a log file or log configuration with a
// second link or another owner is not used; a byte-order mark before the
// configuration.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"
#include "support/process.h"

namespace {

constexpr uid_t kNobody = 65534;

std::string LogPath(const std::string& name) { return std::string(BRELLIAN_LOG_DIR) + "/" + name; }
// A file outside the log directory that a planted link would point at.
std::string Outside() { return std::string(BRELLIAN_LOG_DIR) + "/../outside-log.txt"; }

// 'WriteLine()' - One line to the system destination under file name name.
void WriteLine(const std::string& name, const char* text) {
  Log_SetFileName(name.c_str());
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  Log_Write(LOG_LOG, "%s", text);
  Log_SetOutputMask(0);
}

bool IsRoot() { return geteuid() == 0; }

}  // namespace

TEST(LogTrust, HardLinkedLogFileIsNotWritten) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  Test_WriteFile(Outside(), "private\n");
  std::string path = LogPath("unit-hardlink.log");
  unlink(path.c_str());
  ASSERT_EQ(0, link(Outside().c_str(), path.c_str()));
  WriteLine("unit-hardlink.log", "job title");
  EXPECT_EQ("private\n", Test_ReadFile(Outside()));
  unlink(path.c_str());
  WriteLine("unit-hardlink.log", "own file");
  EXPECT_NE(std::string::npos, Test_ReadFile(path).find("  own file\n"));
  unlink(path.c_str());
  unlink(Outside().c_str());
}

TEST(LogTrust, LogFileOfAnotherUserIsNotWritten) {
  if (!IsRoot()) GTEST_SKIP() << "needs root to give a file to user nobody";
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  std::string path = LogPath("unit-owner.log");
  Test_WriteFile(path, "planted\n");
  ASSERT_EQ(0, chown(path.c_str(), kNobody, kNobody));
  WriteLine("unit-owner.log", "job title");
  EXPECT_EQ("planted\n", Test_ReadFile(path));
  ASSERT_EQ(0, chown(path.c_str(), 0, 0));
  WriteLine("unit-owner.log", "root's file");
  EXPECT_NE(std::string::npos, Test_ReadFile(path).find("  root's file\n"));
  unlink(path.c_str());
}

TEST(LogTrust, ConfigurationWithASecondLinkIsIgnored) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  unlink(BRELLIAN_LOG_CONFIG_FILE);
  Test_WriteFile(Outside(), "rastertobrellian = trace\n");
  ASSERT_EQ(0, link(Outside().c_str(), BRELLIAN_LOG_CONFIG_FILE));
  EXPECT_EQ(LOG_LOG, Log_ReadLevel("rastertobrellian", LOG_LOG));
  unlink(Outside().c_str());
  EXPECT_EQ(LOG_TRACE, Log_ReadLevel("rastertobrellian", LOG_LOG));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}

TEST(LogTrust, ConfigurationOfAnotherUserIsIgnored) {
  if (!IsRoot()) GTEST_SKIP() << "needs root to give a file to user nobody";
  Test_SetLogLevelWord("trace");
  ASSERT_EQ(0, chown(BRELLIAN_LOG_CONFIG_FILE, kNobody, kNobody));
  EXPECT_EQ(LOG_LOG, Log_ReadLevel("rastertobrellian", LOG_LOG));
  ASSERT_EQ(0, chown(BRELLIAN_LOG_CONFIG_FILE, 0, 0));
  EXPECT_EQ(LOG_TRACE, Log_ReadLevel("rastertobrellian", LOG_LOG));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}

TEST(LogConfig, ByteOrderMarkBeforeTheFirstLineIsSkipped) {
  const std::string text = "\xEF\xBB\xBFrastertobrellian = trace\n";
  EXPECT_EQ(LOG_TRACE, Log_ReadLevelFromText(text.data(), text.size(), "rastertobrellian", LOG_LOG));
  // Only at the very start: a mark before a later line stays part of its key.
  const std::string later = "# levels\n\xEF\xBB\xBFrastertobrellian = trace\n";
  EXPECT_EQ(LOG_LOG, Log_ReadLevelFromText(later.data(), later.size(), "rastertobrellian", LOG_LOG));
  // A mark alone is an empty file.
  EXPECT_EQ(LOG_INFO, Log_ReadLevelFromText("\xEF\xBB\xBF", 3, "rastertobrellian", LOG_INFO));
}

TEST(LogConfig, FileWithByteOrderMarkSetsTheLevel) {
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  Test_WriteFile(BRELLIAN_LOG_CONFIG_FILE, "\xEF\xBB\xBF" "rastertobrellian = EntryExit\r\n");
  EXPECT_EQ(LOG_ENTRYEXIT, Log_ReadLevel("rastertobrellian", LOG_LOG));
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}
