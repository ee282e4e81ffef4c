// The filter run as a process with a log file another user could have
// planted: a hard link to a file outside the log directory, or a file of
// another user.  The job's lines never reach it.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

#include "brellian_paths.h"
#include "support/process.h"

namespace {

constexpr uid_t kNobody = 65534;

// A file outside the log directory that a planted link would point at.
std::string Outside() { return std::string(BRELLIAN_LOG_DIR) + "/../outside-log.txt"; }

bool IsRoot() { return geteuid() == 0; }

}  // namespace

TEST(HostileLogFile, FilterSkipsAPlantedHardLink) {
  Test_ResetLog();
  Test_MakeDirs(Test_LogDir());
  Test_WriteFile(Outside(), "private\n");
  ASSERT_EQ(0, link(Outside().c_str(), Test_LogFile().c_str()));
  TProcessOptions options;
  options.unsetEnv = {"PPD"};
  TProcessResult r = Test_RunFilter({"1", "user", "Secret title", "1", ""}, options);
  EXPECT_EQ(1, r.status);  // no raster: no pages
  EXPECT_EQ("private\n", Test_ReadFile(Outside()));
  unlink(Outside().c_str());
  Test_ResetLog();
}

TEST(HostileLogFile, FilterSkipsALogFileOfAnotherUser) {
  if (!IsRoot()) GTEST_SKIP() << "needs root to give a file to user nobody";
  Test_ResetLog();
  Test_MakeDirs(Test_LogDir());
  Test_WriteFile(Test_LogFile(), "");
  ASSERT_EQ(0, chown(Test_LogFile().c_str(), kNobody, kNobody));
  TProcessOptions options;
  options.unsetEnv = {"PPD"};
  TProcessResult r = Test_RunFilter({"1", "user", "Secret title", "1", ""}, options);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("", Test_ReadFile(Test_LogFile()));
  Test_ResetLog();
}
