// Process tests of the page loop: input choice, progress, pages, cancel,
// signals, out of memory and the end of the job.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "jobstream/records.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/stream_types.h"

namespace {

std::string Stream(std::vector<TRasterPage> pages) {
  std::string out;
  EXPECT_TRUE(Raster_WriteStream(pages, false, &out));
  return out;
}

size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
  return n;
}

std::string TempPath(const char* name) { return std::string(BRELLIAN_BINARY_DIR) + "/" + name; }

const std::vector<std::string> kArgs = {"123", "user", "title", "1", ""};

}  // namespace

TEST(PageLoop, EmptyInputWritesHeaderAndFooterButFindsNoPages) {
  Test_ResetLog();
  TProcessResult r = Test_RunFilter(kArgs);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDJOB}), Test_RecordTypes(r.out));
  EXPECT_EQ("ERROR: No pages found!\n", r.err);
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Test_Contains(log, " CMD: ICMD_STARTJOB"));
  EXPECT_TRUE(Test_Contains(log, " CMD: ICMD_ENDJOB"));
}

TEST(PageLoop, GarbageInputIsAJobWithoutPages) {
  TProcessOptions o;
  o.input = "this is not a raster stream";
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDJOB}), Test_RecordTypes(r.out));
  EXPECT_EQ("ERROR: No pages found!\n", r.err);
}

TEST(PageLoop, ProgressEvery128RowsOfA300RowPage) {
  TProcessOptions o;
  o.input = Stream({Raster_MakeRGBPage(16, 300, 300, 10, 20, 30)});
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(0u, r.err.find("PAGE: 1 1\n"
                           "INFO: Printing page 1, 0% complete...\n"
                           "INFO: Printing page 1, 42% complete...\n"
                           "INFO: Printing page 1, 85% complete...\n"))
      << r.err;
  EXPECT_EQ(3u, Count(r.err, "INFO: Printing page"));
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print.\n"));
  std::vector<uint16_t> t = Test_RecordTypes(r.out);
  ASSERT_FALSE(t.empty());
  EXPECT_EQ(ICMD_STARTJOB, t.front());
  EXPECT_EQ(ICMD_ENDJOB, t.back());
}

TEST(PageLoop, EveryPageIsCountedWithItsCopies) {
  TRasterPage a = Raster_MakeRGBPage(8, 2, 300, 0, 0, 0);
  TRasterPage b = a;
  b.header.NumCopies = 3;
  TProcessOptions o;
  o.input = Stream({a, b, a});
  Test_ResetLog();
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 1 1\n"));
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 2 3\n"));
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 3 1\n"));
  EXPECT_EQ(3u, Count(Test_ReadFile(Test_LogFile()), " CUPS_AllocPage(8,2,24)\n"));
  EXPECT_EQ(std::string::npos, r.err.find("ERROR"));
}

TEST(PageLoop, SixArgumentsReadStandardInputSevenReadTheFile) {
  std::string path = TempPath("pageloop-input.ras");
  Test_WriteFile(path, Stream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0),
                               Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)}));
  TProcessOptions o;
  o.input = Stream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)});
  std::vector<std::string> seven = kArgs;
  seven.push_back(path);
  TProcessResult fromFile = Test_RunFilter(seven, o);  // standard input is ignored
  EXPECT_EQ(0, fromFile.status);
  EXPECT_NE(std::string::npos, fromFile.err.find("PAGE: 2 1\n"));
  TProcessResult fromStdin = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, fromStdin.status);
  EXPECT_NE(std::string::npos, fromStdin.err.find("PAGE: 1 1\n"));
  EXPECT_EQ(std::string::npos, fromStdin.err.find("PAGE: 2"));
  unlink(path.c_str());
}

TEST(PageLoop, MissingRasterFileGivesTheOpenErrorAndStatus1) {
  Test_ResetLog();
  Test_SetLogLevelWord("EntryExit");
  std::vector<std::string> args = kArgs;
  args.push_back(TempPath("no-such-file.ras"));
  TProcessResult r = Test_RunFilter(args);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("ERROR: Unable to open raster file - : No such file or directory\n", r.err);
  EXPECT_EQ("", r.out);
  EXPECT_TRUE(Test_Contains(Test_LogMessages(), " <<<< TPrintingTask::run[cannot open raster file]"));
  Test_ResetLog();
}

TEST(PageLoop, DirectoryAsRasterFileTakesTheOpenErrorPath) {
  std::vector<std::string> args = kArgs;
  args.push_back(BRELLIAN_BINARY_DIR);
  TProcessResult r = Test_RunFilter(args);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("ERROR: Unable to open raster file - : Invalid argument\n", r.err);
  EXPECT_EQ("", r.out);
}

TEST(PageLoop, SigtermDuringTheRowsEndsWithoutEndJobAndStatus0) {
  Test_ResetLog();
  TProcessOptions o;
  o.input = Stream({Raster_MakeRGBPage(1000, 2000, 300, 1, 2, 3)});  // 6 MB of rows
  o.sigtermOnErr = "INFO: Printing page 1, 0% complete...\n";
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print.\n"));
  EXPECT_EQ(std::string::npos, r.err.find("INFO: Printing page 1, 6% complete"));
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB}), Test_RecordTypes(r.out));
  EXPECT_FALSE(Test_Contains(Test_LogMessages(), " CMD: ICMD_ENDJOB"));
}

TEST(PageLoop, SigintWhileWaitingForInputEndsThroughTheExitHandler) {
  Test_ResetLog();
  int in[2];
  ASSERT_EQ(0, pipe(in));
  pid_t pid = fork();
  if (pid == 0) {
    dup2(in[0], 0);
    close(in[0]);
    close(in[1]);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    dup2(null, 2);
    execl(BRELLIAN_FILTER_PATH, BRELLIAN_FILTER_PATH, "1", "u", "t", "1", "", (char*)nullptr);
    _exit(127);
  }
  close(in[0]);
  // Wait until the filter has dumped its environment and waits for input.
  bool ready = false;
  for (int i = 0; i < 500 && !ready; ++i) {
    ready = Test_ReadFile(Test_LogFile()).find("<<<< CUPS ENV") != std::string::npos;
    if (!ready) usleep(10000);
  }
  ASSERT_TRUE(ready);
  usleep(200000);
  kill(pid, SIGINT);
  int status = 0;
  waitpid(pid, &status, 0);
  close(in[1]);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(0, WEXITSTATUS(status));
  EXPECT_TRUE(Test_Contains(Test_LogMessages(), " ~TPrintingTask --> gracefull exit."));
}

TEST(PageLoop, PageBeyondTheCapsTakesTheOutOfMemoryPath) {
  TRasterPage page = Raster_MakeRGBPage(10, 1, 300, 0, 0, 0);
  page.header.cupsWidth = 10000000;
  page.header.cupsBytesPerLine = 30000000;  // over 16 MiB per line
  page.data.clear();
  TProcessOptions o;
  o.input = Stream({page});
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("ERROR: Unable to allocate memory!\n", r.err);
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB}), Test_RecordTypes(r.out));
}

TEST(PageLoop, PageWhoseSizeWrapsIn32BitsTakesTheOutOfMemoryPath) {
  TRasterPage page = Raster_MakeRGBPage(10, 1, 300, 0, 0, 0);
  page.header.cupsWidth = 0x5556;
  page.header.cupsBytesPerLine = 0x10002;  // x 0x10000 rows = 4 GiB + 128 KiB
  page.header.cupsHeight = 0x10000;
  page.data.clear();
  TProcessOptions o;
  o.input = Stream({page});
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("ERROR: Unable to allocate memory!\n", r.err);
}

TEST(PageLoop, ShortPageIsReadAsFarAsItGoes) {
  TRasterPage page = Raster_MakeRGBPage(8, 200, 300, 0, 0, 0);
  page.data.resize(8 * 3 * 10);  // ten rows of two hundred
  TProcessOptions o;
  o.input = Stream({page});
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("INFO: Printing page 1, 0% complete...\n"));
  EXPECT_EQ(std::string::npos, r.err.find("64% complete"));
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print.\n"));
}

TEST(PageLoop, DumpsAppearInTheLog) {
  Test_ResetLog();
  TRasterPage page = Raster_MakeRGBPage(8, 2, 300, 0, 0, 0);
  page.header.cupsInteger[0] = 5;
  TProcessOptions o;
  o.input = Stream({page});
  o.env["PRINTER"] = "";
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Test_Contains(log, "      ENV: PRINTER[NULL]"));
  EXPECT_TRUE(Test_Contains(log, "      CMD: JOBID   [123]"));
  EXPECT_TRUE(Test_Contains(log, "      CUPS Integer:          1. [5]"));
  EXPECT_TRUE(Test_Contains(log, "      CUPS Width:               [8]"));
}

TEST(PageLoop, DuplexJobOfEightPagesMakesAtMostOneCardAndCountsEveryPage) {
  // One card per job: whatever page processing makes of the first pages,
  // nothing but ICMD_ENDJOB may follow the card's ICMD_ENDCARD, and every
  // page still gets its PAGE line.
  TRasterPage page = Raster_MakeRGBPage(64, 40, 300, 200, 100, 50);
  page.header.Duplex = CUPS_TRUE;
  TProcessOptions o;
  o.input = Stream(std::vector<TRasterPage>(8, page));
  TProcessResult r = Test_RunFilter(kArgs, o);
  EXPECT_EQ(0, r.status);
  for (int p = 1; p <= 8; ++p)
    EXPECT_NE(std::string::npos, r.err.find("PAGE: " + std::to_string(p) + " 1\n")) << p;
  std::vector<uint16_t> t = Test_RecordTypes(r.out);
  ASSERT_GE(t.size(), 2u);
  EXPECT_EQ(ICMD_STARTJOB, t.front());
  EXPECT_EQ(ICMD_ENDJOB, t.back());
  size_t cards = 0, endCards = 0, lastEndCard = 0;
  for (size_t i = 0; i < t.size(); ++i) {
    if (t[i] == ICMD_STARTCARD) ++cards;
    if (t[i] == ICMD_ENDCARD) ++endCards, lastEndCard = i;
  }
  EXPECT_LE(cards, 1u);
  EXPECT_EQ(cards, endCards);
  if (endCards) {
    EXPECT_EQ(t.size() - 2, lastEndCard);
  }
}
