// The filter's entry point run as the spooler runs it: arguments, usage
// line, exit status, start-up log lines and the log directory's mode.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <vector>

#include "brellian_version.h"
#include "driver/lifecycle.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

const char kUsage[] = "ERROR: rastertobrellian job-id user title copies options [file]\n";

class EntryPoint : public ::testing::Test {
 protected:
  void SetUp() override { Test_ResetLog(); }
  void TearDown() override { Test_ResetLog(); }
};

// 'EntryLine()' - The start-up line the filter logs for argc and level.
std::string EntryLine(int argc, const char* level) {
  struct utsname system;
  EXPECT_EQ(0, uname(&system));
  return std::string(" main --> entry(") + std::to_string(argc) + ") os(" + system.sysname +
         ") version(" + system.version + ") driver(" BRELLIAN_VERSION ") log(" + level + ")";
}

// 'ExpectUsage()' - The usage line alone on standard error, status 1, no
// job output.
void ExpectUsage(const TProcessResult& r) {
  EXPECT_EQ(1, r.status);
  EXPECT_EQ(kUsage, r.err);
  EXPECT_EQ("", r.out);
}

}  // namespace

TEST_F(EntryPoint, FourArgumentsPrintTheUsageLineAndExit1) {
  ExpectUsage(Test_RunFilter({"1", "user", "title", "1"}));
}

TEST_F(EntryPoint, SevenArgumentsPrintTheUsageLineAndExit1) {
  ExpectUsage(Test_RunFilter({"1", "user", "title", "1", "", "file", "extra"}));
}

TEST_F(EntryPoint, NoArgumentsPrintTheUsageLine) { ExpectUsage(Test_RunFilter({})); }

TEST_F(EntryPoint, UsageNamesOnlyTheBaseNameWhateverThePath) {
  // Test_RunFilter passes the filter's absolute path as argv[0].
  ASSERT_EQ('/', std::string(BRELLIAN_FILTER_PATH)[0]);
  std::string path = BRELLIAN_FILTER_PATH;
  std::string dir = path.substr(0, path.rfind('/'));
  std::string base = path.substr(path.rfind('/') + 1);
  char cwd[4096];
  ASSERT_NE(nullptr, getcwd(cwd, sizeof cwd));
  ASSERT_EQ(0, chdir(dir.c_str()));
  TProcessResult plain = Test_RunProcess({base, "1", "u", "t", "1"});
  TProcessResult relative = Test_RunProcess({"./" + base, "1", "u", "t", "1"});
  ASSERT_EQ(0, chdir(cwd));
  // execve takes a name without a slash relative to the working directory.
  ExpectUsage(plain);
  ExpectUsage(relative);
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Test_Contains(log, " ARG0: ./" + base));
}

TEST_F(EntryPoint, EveryArgumentIsLoggedAndLongOnesAreReplaced) {
  std::string arg999(999, 'a');
  std::string arg1000(1000, 'b');
  TProcessResult r = Test_RunFilter({"42", arg999, arg1000, "title with blanks"});
  ExpectUsage(r);
  std::vector<std::string> log = Test_LogMessages();
  ASSERT_EQ(6u, log.size());
  EXPECT_EQ(EntryLine(5, "0002"), log[0]);
  EXPECT_EQ(std::string(" ARG0: ") + BRELLIAN_FILTER_PATH, log[1]);
  EXPECT_EQ(" ARG1: 42", log[2]);
  EXPECT_EQ(" ARG2: " + arg999, log[3]);
  EXPECT_EQ(" ARG3: {too long}", log[4]);
  EXPECT_EQ(" ARG4: title with blanks", log[5]);
}

TEST_F(EntryPoint, LevelFromTheConfigurationFileIsLogged) {
  struct TCase {
    const char* word;
    const char* level;
  };
  for (const TCase& c : {TCase{"trace", "0014"}, TCase{"EntryExit", "0018"}, TCase{"info", "0010"}}) {
    Test_SetLogLevelWord(c.word);
    unlink(Test_LogFile().c_str());
    ExpectUsage(Test_RunFilter({"1", "u", "t", "1", "", "f", "x"}));
    std::vector<std::string> log = Test_LogMessages();
    ASSERT_FALSE(log.empty()) << c.word;
    EXPECT_EQ(EntryLine(8, c.level), log[0]) << c.word;
  }
}

TEST_F(EntryPoint, LevelNoneWritesNoLogLine) {
  Test_SetLogLevelWord("none");
  ExpectUsage(Test_RunFilter({"1", "u", "t", "1"}));
  struct stat st;
  EXPECT_NE(0, stat(Test_LogFile().c_str(), &st));
}

TEST_F(EntryPoint, LogDirectoryKeepsTheInheritedUmask) {
  Test_RemoveTree(Test_LogDir());
  mode_t saved = umask(022);
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1"});
  umask(saved);
  ExpectUsage(r);
  struct stat st;
  ASSERT_EQ(0, stat(Test_LogDir().c_str(), &st));
  EXPECT_TRUE(S_ISDIR(st.st_mode));
  EXPECT_EQ(0755u, st.st_mode & 07777u);
  ASSERT_EQ(0, stat(Test_LogFile().c_str(), &st));
  EXPECT_EQ(0644u, st.st_mode & 07777u);
}

TEST_F(EntryPoint, ClosedStandardOutputIsHarmless) {
  TProcessOptions options;
  options.stdoutMode = TProcessStdout::Closed;
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1"}, options);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ(kUsage, r.err);
}

TEST_F(EntryPoint, SixArgumentsRunTheTaskAndTheExitHandlerDeletesIt) {
  // Empty standard input: whatever the page loop makes of it, the task is
  // created, run, and destroyed by the exit handler after main returns.
  Test_SetLogLevelWord("EntryExit");
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1", ""});
  EXPECT_EQ(std::string::npos, r.err.find("job-id user title"));
  std::vector<std::string> log = Test_LogMessages();
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(EntryLine(6, "0018"), log[0]);
  EXPECT_TRUE(Test_Contains(log, " >>>> TPrintingTask::run"));
  EXPECT_EQ(" ~TPrintingTask --> gracefull exit.", log.back());
  int destroyed = 0;
  for (const std::string& l : log) destroyed += l == " ~TPrintingTask --> gracefull exit.";
  EXPECT_EQ(1, destroyed);
}

TEST(ProcBaseName, PartAfterTheLastSlash) {
  EXPECT_STREQ("rastertobrellian", Proc_BaseName("/usr/lib/cups/filter/rastertobrellian"));
  EXPECT_STREQ("rastertobrellian", Proc_BaseName("rastertobrellian"));
  EXPECT_STREQ("", Proc_BaseName("dir/"));
  EXPECT_STREQ("", Proc_BaseName(nullptr));
}

TEST_F(EntryPoint, SevenArgumentsRunTheTaskOnTheNamedFile) {
  // A raster file that does not exist: no job output, status 1, and the
  // task is still destroyed by the exit handler.
  Test_SetLogLevelWord("EntryExit");
  std::string missing = Test_LogDir() + "/no-such-raster.ras";
  unlink(missing.c_str());
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1", "", missing});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("", r.out);
  EXPECT_EQ(0u, r.err.find("ERROR: Unable to open raster file - ")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("job-id user title"));
  std::vector<std::string> log = Test_LogMessages();
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(EntryLine(7, "0018"), log[0]);
  EXPECT_TRUE(Test_Contains(log, " ARG6: " + missing));
  EXPECT_EQ(" ~TPrintingTask --> gracefull exit.", log.back());
}

namespace {

// 'OnePageRaster()' - A raster stream of one small white RGB page.
std::string OnePageRaster() {
  std::string stream;
  EXPECT_TRUE(Raster_WriteStream({Raster_MakeRGBPage(64, 40, 300, 255, 255, 255)}, false, &stream));
  return stream;
}

// 'ExpectPrinted()' - One page read and the job ended as printed.
void ExpectPrinted(const TProcessResult& r) {
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 1 1\n")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("job-id user title")) << r.err;
  const std::string ready = "INFO: Ready to print.\n";
  ASSERT_GE(r.err.size(), ready.size()) << r.err;
  EXPECT_EQ(ready, r.err.substr(r.err.size() - ready.size()));
  EXPECT_FALSE(r.out.empty());
}

}  // namespace

TEST_F(EntryPoint, SixArgumentsReadTheRasterFromStandardInput) {
  TProcessOptions options;
  options.input = OnePageRaster();
  ExpectPrinted(Test_RunFilter({"1", "u", "t", "1", ""}, options));
}

TEST_F(EntryPoint, SevenArgumentsReadTheNamedRasterFile) {
  std::string path = Test_LogDir() + "/entry-point-page.ras";
  Test_MakeDirs(Test_LogDir());
  Test_WriteFile(path, OnePageRaster());
  TProcessOptions options;
  options.input = "not a raster stream";  // standard input is not read
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1", "", path}, options);
  unlink(path.c_str());
  ExpectPrinted(r);
}
