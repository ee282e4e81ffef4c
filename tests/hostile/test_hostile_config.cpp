// The filter run as a process with a hostile PPD, log configuration or log
// file: missing, empty, a directory, a FIFO, a symbolic link, garbage or an
// overlong line.  The job still prints with the designed defaults, nothing
// blocks, and no file outside the log directory is written through a link.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "brellian_paths.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/hostile_harness.h"

namespace {

std::string Scratch() { return std::string(BRELLIAN_BINARY_DIR) + "/hostile-config"; }

const char* const kNoPPD = "printerModel::[PPD]::[NULL][1060]";
const char* const kRunEntry = ">>>> TPrintingTask::run";

struct TConfigCase {
  const char* name;
  std::function<std::string()> ppd;    // prepares and returns $PPD
  std::function<void()> prepareLog;    // plants the log configuration
  std::vector<std::string> logLines;
  std::vector<std::string> absentLogLines;
};

std::string PpdFile(const std::string& text) {
  Test_MakeDirs(Scratch());
  std::string path = Scratch() + "/queue.ppd";
  Test_RemoveTree(path);
  Test_WriteFile(path, text);
  return path;
}

std::function<std::string()> Ppd(const std::string& text) { return [text] { return PpdFile(text); }; }

void EntryExitLevel() { Test_SetLogLevelWord("EntryExit"); }

// 'ConfigAs()' - The log configuration path made a directory, a FIFO or a
// link to a file that asks for the EntryExit level.
std::function<void()> ConfigAs(const char* kind) {
  std::string k = kind;
  return [k] {
    Test_MakeDirs(Scratch());
    std::string real = Scratch() + "/real-config";
    Test_WriteFile(real, "rastertobrellian = EntryExit\n");
    Test_MakeDirs(BRELLIAN_LOG_DIR);
    Test_RemoveTree(BRELLIAN_LOG_CONFIG_FILE);
    if (k == "dir") Test_MakeDirs(BRELLIAN_LOG_CONFIG_FILE);
    if (k == "fifo") {
      EXPECT_EQ(0, mkfifo(BRELLIAN_LOG_CONFIG_FILE, 0666));
    }
    if (k == "link") {
      EXPECT_EQ(0, symlink(real.c_str(), BRELLIAN_LOG_CONFIG_FILE));
    }
  };
}

std::function<void()> ConfigText(const std::string& text) {
  return [text] {
    Test_MakeDirs(BRELLIAN_LOG_DIR);
    Test_RemoveTree(BRELLIAN_LOG_CONFIG_FILE);
    Test_WriteFile(BRELLIAN_LOG_CONFIG_FILE, text);
  };
}

const TConfigCase kCases[] = {
    {"PpdMissing", [] { return Scratch() + "/no-such.ppd"; }, EntryExitLevel, {kNoPPD}, {}},
    {"PpdEmpty", Ppd(""), EntryExitLevel, {kNoPPD}, {}},
    {"PpdGarbage", Ppd(Test_Bytes("\x01\xFF*PPD-Adobe garbage\n\0\0*%")), EntryExitLevel,
     {kNoPPD}, {}},
    {"PpdDirectory", [] { Test_MakeDirs(Scratch() + "/dir.ppd"); return Scratch() + "/dir.ppd"; },
     EntryExitLevel, {kNoPPD}, {}},
    {"PpdFifo",
     [] {
       std::string p = Scratch() + "/fifo.ppd";
       Test_MakeDirs(Scratch());
       Test_RemoveTree(p);
       EXPECT_EQ(0, mkfifo(p.c_str(), 0666));
       return p;
     },
     EntryExitLevel, {kNoPPD}, {}},
    {"PpdSymlink",
     [] {
       std::string p = Scratch() + "/link.ppd";
       Test_MakeDirs(Scratch());
       Test_RemoveTree(p);
       EXPECT_EQ(0, symlink(Test_GeneratedPPD().c_str(), p.c_str()));
       return p;
     },
     EntryExitLevel, {kNoPPD}, {}},
    {"PpdGenerated", [] { return Test_GeneratedPPD(); }, EntryExitLevel, {"printerModel::[1060]"}, {kNoPPD}},
    {"LogConfigDirectory", [] { return Test_GeneratedPPD(); }, ConfigAs("dir"), {"ARG1: 7"}, {kRunEntry}},
    {"LogConfigFifo", [] { return Test_GeneratedPPD(); }, ConfigAs("fifo"), {"ARG1: 7"}, {kRunEntry}},
    {"LogConfigSymlink", [] { return Test_GeneratedPPD(); }, ConfigAs("link"), {"ARG1: 7"}, {kRunEntry}},
    {"LogConfigLineOf5000ThenSetting", [] { return Test_GeneratedPPD(); },
     ConfigText(std::string(5000, 'x') + "\nrastertobrellian = EntryExit\n"), {kRunEntry}, {}},
    // An overlong line is skipped whole: its first 1023 bytes would read as a
    // setting, but they are not a line of their own.
    {"LogConfigSettingPaddedTo5000", [] { return Test_GeneratedPPD(); },
     ConfigText("rastertobrellian=EntryExit" + std::string(5000, ' ') + "\n"), {"ARG1: 7"}, {kRunEntry}},
};

void PrintTo(const TConfigCase& c, std::ostream* os) { *os << c.name; }

class HostileConfig : public ::testing::TestWithParam<TConfigCase> {
 protected:
  void TearDown() override {
    Test_RemoveTree(BRELLIAN_LOG_CONFIG_FILE);
    Test_RemoveTree(Scratch());
  }
};

}  // namespace

TEST_P(HostileConfig, JobPrintsWithDefaults) {
  const TConfigCase& c = GetParam();
  Test_ResetLog();
  Test_RemoveTree(BRELLIAN_LOG_CONFIG_FILE);
  c.prepareLog();
  THostileRun run;
  run.input = Hostile_ValidPage();
  run.env["PPD"] = c.ppd();
  Hostile_ExpectPrintedWithDefaults(Hostile_Run(run), c.logLines, c.absentLogLines);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileConfig, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<TConfigCase>& info) {
                           return std::string(info.param.name);
                         });

// A log file that is a symbolic link to another file is never written
// through: the other file keeps its content and the link stays a link.
TEST(HostileLogFile, SymbolicLinkIsNotFollowed) {
  Test_ResetLog();
  Test_MakeDirs(Scratch());
  std::string victim = Scratch() + "/victim";
  Test_WriteFile(victim, "keep\n");
  Test_MakeDirs(BRELLIAN_LOG_DIR);
  ASSERT_EQ(0, symlink(victim.c_str(), Test_LogFile().c_str()));
  THostileRun run;
  run.input = Hostile_ValidPage();
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  EXPECT_EQ("keep\n", Test_ReadFile(victim));
  struct stat st;
  ASSERT_EQ(0, lstat(Test_LogFile().c_str(), &st));
  EXPECT_TRUE(S_ISLNK(st.st_mode));
  unlink(Test_LogFile().c_str());
  Test_RemoveTree(Scratch());
}
