// Signal-timing trials: SIGINT, SIGABRT, SIGHUP, SIGQUIT and SIGTERM at
// random moments while the filter writes a duplex card with every panel to
// a slow reader; every stream must be made of whole records and every
// status the designed one.
// Copyright 2026 The rastertobrellian authors.
//
// BRELLIAN_TRIAL_SEED sets the random seed (printed with the figures);
// BRELLIAN_TRIALS the trials per signal (default 100).
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>

#include "lib/raster_writer.h"
#include "lib/sample_card.h"
#include "support/process.h"
#include "support/signal_trial.h"

namespace {

const char* const kAllPanels =
    "frontRibbon=ColorK backRibbon=ColorK frontUV=Page backUV=Page frontPO=Page backPO=Page";

// 'Trials_Env()' - A number from the environment, or fallback.
unsigned long Trials_Env(const char* name, unsigned long fallback) {
  const char* v = getenv(name);
  return v && *v ? strtoul(v, nullptr, 10) : fallback;
}

}  // namespace

TEST(SignalTrials, RandomSignalsLeaveWholeRecords) {
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile/trials";
  Test_MakeDirs(dir);
  TSignalTrial trial;
  trial.rasterPath = dir + "/card.ras";
  trial.options = kAllPanels;
  trial.readChunk = 16384;   // with a pause of 100 us: about 150 MB/s, slower than the filter
  trial.env["PPD"] = std::string(BRELLIAN_BINARY_DIR) + "/ppd/br1030.ppd";
  ASSERT_TRUE(Raster_WriteFile(Raster_MakeSampleCardAllPanelsJob(1036, 664, 300), false,
                               trial.rasterPath));
  trial.signalAfterOutBytes = static_cast<size_t>(-1);
  TSignalTrialResult whole = Signal_RunTrial(trial);
  bool cut = true;
  ASSERT_EQ("", Signal_StreamVerdict(whole.out, &cut));
  ASSERT_FALSE(cut);

  const unsigned long seed = Trials_Env(
      "BRELLIAN_TRIAL_SEED",
      static_cast<unsigned long>(std::chrono::steady_clock::now().time_since_epoch().count() & 0xFFFFFFFF));
  const unsigned long trials = Trials_Env("BRELLIAN_TRIALS", 100);
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  std::uniform_int_distribution<size_t> at(0, whole.out.size() - 1);
  std::uniform_int_distribution<int> delay(0, 2000);
  printf("signal trials: seed %lu, %lu per signal, complete stream %zu bytes\n", seed, trials,
         whole.out.size());
  auto start = std::chrono::steady_clock::now();
  for (int sig : {SIGINT, SIGABRT, SIGHUP, SIGQUIT, SIGTERM}) {
    int malformed = 0, cuts = 0, timeouts = 0, wrongStatus = 0;
    std::map<int, int> statuses;
    for (unsigned long i = 0; i < trials; ++i) {
      trial.signal = sig;
      trial.signalAfterOutBytes = at(random);
      trial.signalDelayUs = delay(random);
      TSignalTrialResult r = Signal_RunTrial(trial);
      std::string verdict = Signal_StreamVerdict(r.out, &cut);
      ++statuses[r.status];
      // SIGINT, SIGABRT, SIGHUP and SIGQUIT deliver g_exitStatus, which is 0
      // until the job ends.  SIGTERM cancels: status 0 with "INFO: Ready to print.", or 1
      // with "ERROR: No pages found!" when it came before the first page.
      const bool noPages = r.err.find("ERROR: No pages found!\n") != std::string::npos;
      const int designed = sig == SIGTERM && noPages ? 1 : 0;
      if (r.status != designed) ++wrongStatus;
      if (sig == SIGTERM && !noPages && r.err.find("INFO: Ready to print.\n") == std::string::npos)
        ++wrongStatus;
      if (r.timedOut) ++timeouts;
      if (!verdict.empty()) {
        ++malformed;
        ADD_FAILURE() << "signal " << sig << " after " << trial.signalAfterOutBytes << " bytes + "
                      << trial.signalDelayUs << " us: " << verdict;
      } else if (cut) {
        ++cuts;
      }
    }
    std::string st;
    for (const auto& kv : statuses) st += " " + std::to_string(kv.first) + "x" + std::to_string(kv.second);
    printf("signal %2d: %lu trials, %d malformed, %d cut at a record boundary, %lu complete, "
           "%d timed out, statuses%s, %d not as designed\n",
           sig, trials, malformed, cuts, trials - malformed - cuts, timeouts, st.c_str(), wrongStatus);
    EXPECT_EQ(0, malformed);
    EXPECT_EQ(0, timeouts);
    EXPECT_EQ(0, wrongStatus);
    if (sig != SIGTERM) {
      EXPECT_GT(cuts, static_cast<int>(trials / 2));
    }
  }
  printf("signal trials took %.1f s\n",
         std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  Test_ResetLog();
}
