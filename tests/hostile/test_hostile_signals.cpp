// Signals while the filter writes its job command stream to a slow reader:
// every stream stays made of whole records, and the exit status is the
// designed one.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/signal_trial.h"

namespace {

// 'Signals_Job()' - A raster file of two 300 dpi pattern pages and the
// environment that prints it on the 300 dpi model.
std::string Signals_Job(std::map<std::string, std::string>* env) {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile/signals";
  Test_MakeDirs(dir);
  std::string path = dir + "/job.ras";
  EXPECT_TRUE(Raster_WriteFile({Raster_MakeTestPattern(1036, 664, 300),
                                Raster_MakeTestPattern(1036, 664, 300)},
                               false, path));
  (*env)["PPD"] = std::string(BRELLIAN_BINARY_DIR) + "/ppd/br1030.ppd";
  return path;
}

// 'Signals_Trials()' - Send sig at evenly spread points of the output and
// check every stream; returns how many streams were cut short.
int Signals_Trials(int sig, int trials) {
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  TSignalTrial trial;
  trial.rasterPath = Signals_Job(&trial.env);
  trial.signalAfterOutBytes = static_cast<size_t>(-1);
  TSignalTrialResult whole = Signal_RunTrial(trial);
  bool cut = true;
  EXPECT_EQ("", Signal_StreamVerdict(whole.out, &cut));
  EXPECT_FALSE(cut);
  EXPECT_EQ(0, whole.status);

  int cuts = 0;
  for (int i = 1; i <= trials; ++i) {
    trial.signal = sig;
    trial.signalAfterOutBytes = whole.out.size() * static_cast<size_t>(i) / (trials + 1);
    TSignalTrialResult r = Signal_RunTrial(trial);
    SCOPED_TRACE("signal " + std::to_string(sig) + " after " +
                 std::to_string(trial.signalAfterOutBytes) + " bytes");
    EXPECT_FALSE(r.timedOut);
    EXPECT_TRUE(r.signalSent);
    EXPECT_EQ(0, r.status);   // the page was read: g_exitStatus is 0 throughout
    EXPECT_EQ("", Signal_StreamVerdict(r.out, &cut));
    EXPECT_EQ(std::string::npos, r.err.find("Sanitizer")) << r.err;
    if (cut) ++cuts;
  }
  Test_ResetLog();
  return cuts;
}

}  // namespace

// SIGINT and SIGABRT end the process through exit(1); with a slow reader
// they mostly arrive while an image record is being written.  The record
// in progress is finished first, so the stream stops at a record boundary.
TEST(HostileSignals, SigintLeavesWholeRecords) {
  EXPECT_GE(Signals_Trials(SIGINT, 6), 5);
}

TEST(HostileSignals, SigabrtLeavesWholeRecords) {
  EXPECT_GE(Signals_Trials(SIGABRT, 6), 5);
}

// SIGTERM while the job runs is a cancel: the page in progress is finished
// and nothing more is written.
TEST(HostileSignals, SigtermLeavesWholeRecords) {
  Signals_Trials(SIGTERM, 6);
}
