// The filter run as a process against hostile conditions of its own
// process: a cancel in the middle of a page read from a pipe, standard
// output closed or full, thousands of pages, and interrupts at any moment.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/hostile_harness.h"
#include "support/signal_trial.h"

namespace {

std::string Stream(const std::vector<TRasterPage>& pages) {
  std::string s;
  EXPECT_TRUE(Raster_WriteStream(pages, false, &s));
  return s;
}

// 'Expect()' - A clean run with the given status and standard error.
void Expect(const THostileResult& r, int status, const std::string& err) {
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why << "\n" << r.err.substr(0, 2000);
  EXPECT_EQ(status, r.status);
  EXPECT_EQ(err, Test_WithoutWarnings(r.err));
}

}  // namespace

// SIGTERM once 100 rows of a 300-row page have come through a pipe: the row
// in progress is finished, nothing more is written, the job still counts.
TEST(HostileProcess, SigtermAfterHundredRowsOnAPipe) {
  Test_ResetLog();
  std::string stream = Stream({Raster_MakeRGBPage(8, 300, 300, 0, 0, 0)});
  const size_t headerBytes = stream.size() - 300 * 24;
  THostileRun run;
  run.input = stream;
  run.sigtermOnErr = "PAGE: 1 1\n";
  run.sigtermAfterBytes = headerBytes + 100 * 24;
  THostileResult r = Hostile_Run(run);
  Expect(r, 0, "PAGE: 1 1\nINFO: Printing page 1, 0% complete...\nINFO: Ready to print.\n");
  EXPECT_EQ(std::vector<uint16_t>{1}, Test_RecordTypes(r.out));
}

TEST(HostileProcess, StandardOutputClosed) {
  Test_ResetLog();
  THostileRun run;
  run.input = Stream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)});
  run.stdoutMode = TProcessStdout::Closed;
  Expect(Hostile_Run(run), 0, Hostile_ProgressErr({2}));
}

// Writes to a full device fail; they are not checked, and the job ends as
// usual.
TEST(HostileProcess, StandardOutputFull) {
  Test_ResetLog();
  THostileRun run;
  run.input = Stream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0), Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)});
  run.stdoutMode = TProcessStdout::Full;
  Expect(Hostile_Run(run), 0, Hostile_ProgressErr({2, 2}));
}

// 20 000 pages of one dot each are all read, counted and released; the log
// is silenced so that the case measures the page loop, not the disk.
TEST(HostileProcess, TwentyThousandOneDotPages) {
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  std::vector<TRasterPage> pages(20000, Raster_MakeRGBPage(1, 1, 300, 0, 0, 0));
  THostileRun run;
  run.input = Stream(pages);
  run.deadlineSeconds = 60;
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  std::vector<uint32_t> heights(20000, 1);
  EXPECT_EQ(Hostile_ProgressErr(heights), Test_WithoutWarnings(r.err));
  EXPECT_LT(r.maxRssKb, 200L * 1024L);   // no page is kept
  Test_ResetLog();
}

// SIGINT ends the process through exit(1) at any moment of a job of large
// pages, including while the page buffer is allocated or freed; the exit
// handler then delivers g_exitStatus.  No run may hang, and every stream is
// made of whole records.
TEST(HostileProcess, InterruptAtAnyMomentNeverHangs) {
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  std::vector<TRasterPage> pages(12, Raster_MakeRGBPage(1500, 1000, 300, 9, 9, 9));
  std::string stream = Stream(pages);
  for (int delayMs : {0, 1, 3, 7, 15, 31, 63, 127}) {
    THostileRun run;
    run.input = stream;
    run.sigtermOnErr = "PAGE: 1 1\n";
    run.sigtermAfterBytes = stream.size();
    run.sigtermDelayMs = delayMs;
    run.signal = SIGINT;
    run.deadlineSeconds = 30;
    THostileResult r = Hostile_Run(run);
    std::string why;
    EXPECT_TRUE(Hostile_Clean(r, &why)) << delayMs << ": " << why;
    EXPECT_TRUE(r.status == 0 || r.status == 1) << delayMs << ": " << r.status;
    bool cut = false;
    EXPECT_EQ("", Signal_StreamVerdict(r.out, &cut)) << delayMs;
  }
  Test_ResetLog();
}
