// One test per signal: what the filter does when it arrives while the job
// command stream is being written to a slow reader (exit status, standard
// error, and a stream of whole records only).
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/signal_trial.h"

namespace {

// 'Each_Job()' - A duplex job of two 300 dpi pattern pages for the 1030
// (two colour panels, about 4 MB of stream); fills trial's raster and PPD.
void Each_Job(TSignalTrial* trial) {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile/signal-each";
  Test_MakeDirs(dir);
  trial->rasterPath = dir + "/job.ras";
  TRasterPage page = Raster_MakeTestPattern(1036, 664, 300);
  page.header.Duplex = CUPS_TRUE;
  EXPECT_TRUE(Raster_WriteFile({page, page}, false, trial->rasterPath));
  trial->env["PPD"] = std::string(BRELLIAN_BINARY_DIR) + "/ppd/br1030.ppd";
}

// 'Each_Run()' - The job, with sig sent once half of the whole job's
// stream has been read (while the filter is still writing).  *whole gets
// the uninterrupted run's stream size.
TSignalTrialResult Each_Run(int sig, size_t* whole = nullptr) {
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  TSignalTrial trial;
  Each_Job(&trial);
  trial.signalAfterOutBytes = static_cast<size_t>(-1);
  TSignalTrialResult full = Signal_RunTrial(trial);
  bool cut = true;
  EXPECT_EQ("", Signal_StreamVerdict(full.out, &cut));
  EXPECT_FALSE(cut);
  if (whole) *whole = full.out.size();
  trial.signal = sig;
  trial.signalAfterOutBytes = full.out.size() / 2;
  TSignalTrialResult r = Signal_RunTrial(trial);
  EXPECT_FALSE(r.timedOut);
  EXPECT_TRUE(r.signalSent);
  EXPECT_EQ(std::string::npos, r.err.find("Sanitizer")) << r.err;
  Test_ResetLog();
  return r;
}

// 'Each_ExpectEnded()' - sig ended the process through its exit handler:
// status 0 (the page was read), no line after the progress lines (neither
// "INFO: Ready to print." nor an ERROR), and a stream of whole records that
// stops before ICMD_ENDJOB.
void Each_ExpectEnded(int sig) {
  TSignalTrialResult r = Each_Run(sig);
  EXPECT_EQ(0, r.status) << "signal " << sig;
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 1 1\n")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("INFO: Ready to print.")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("ERROR:")) << r.err;
  bool cut = false;
  EXPECT_EQ("", Signal_StreamVerdict(r.out, &cut));
  EXPECT_TRUE(cut);
}

}  // namespace

// SIGTERM while the job runs is the spooler's cancel: the page in progress
// is finished, nothing more is written, and the job ends as designed with
// "INFO: Ready to print." and status 0, without ICMD_ENDJOB.
TEST(HostileSignalEach, SigtermCancelsWithStatus0AndReadyToPrint) {
  TSignalTrialResult r = Each_Run(SIGTERM);
  EXPECT_EQ(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print.\n")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("ERROR:")) << r.err;
  bool cut = false;
  EXPECT_EQ("", Signal_StreamVerdict(r.out, &cut));
  EXPECT_TRUE(cut);
}

TEST(HostileSignalEach, SigintEndsAtARecordBoundaryWithStatus0) { Each_ExpectEnded(SIGINT); }

TEST(HostileSignalEach, SigabrtEndsAtARecordBoundaryWithStatus0) { Each_ExpectEnded(SIGABRT); }

// Not named by the filter's design: a hang-up (a filter run from a
// terminal that closes) ends it as SIGINT does, not by the default action,
// which cut the stream wherever it was and gave status 129.
TEST(HostileSignalEach, SighupEndsAtARecordBoundaryWithStatus0) { Each_ExpectEnded(SIGHUP); }

// Likewise SIGQUIT, whose default action (a core dump, status 131) would
// leave a partial record for the backend.
TEST(HostileSignalEach, SigquitEndsAtARecordBoundaryWithStatus0) { Each_ExpectEnded(SIGQUIT); }

// SIGPIPE is ignored: sent on its own it changes nothing, and a reader that
// goes away only makes the writes fail; the job runs to its end either way.
TEST(HostileSignalEach, SigpipeIsIgnored) {
  size_t whole = 0;
  TSignalTrialResult r = Each_Run(SIGPIPE, &whole);
  EXPECT_EQ(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print.\n")) << r.err;
  bool cut = true;
  EXPECT_EQ("", Signal_StreamVerdict(r.out, &cut));
  EXPECT_FALSE(cut);
  EXPECT_EQ(whole, r.out.size());

  // Standard output a pipe whose reader has already gone.
  TSignalTrial trial;
  Each_Job(&trial);
  int out[2];
  ASSERT_EQ(0, pipe(out));
  close(out[0]);
  std::string errPath = std::string(BRELLIAN_BINARY_DIR) + "/hostile/signal-each/err.txt";
  pid_t pid = fork();
  if (pid == 0) {
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(out[1], 1);
    dup2(err, 2);
    setenv("PPD", trial.env["PPD"].c_str(), 1);
    execl(BRELLIAN_FILTER_PATH, BRELLIAN_FILTER_PATH, "7", "user", "title", "1", "",
          trial.rasterPath.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  close(out[1]);
  int status = 0;
  ASSERT_EQ(pid, waitpid(pid, &status, 0));
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(0, WEXITSTATUS(status));
  std::string err = Test_ReadFile(errPath);
  EXPECT_NE(std::string::npos, err.find("INFO: Ready to print.\n")) << err;
  EXPECT_EQ(std::string::npos, err.find("ERROR:")) << err;
}

// The status is the one the job has reached when the signal comes: in the
// pause after a raster file that can't be opened it is already 1.
TEST(HostileSignalEach, SignalInTheOpenFailurePauseKeepsStatus1) {
  for (int sig : {SIGINT, SIGHUP}) {
    TProcessOptions options;
    options.sigtermOnErr = "ERROR: Unable to open raster file";
    options.signal = sig;
    options.signalDelayMs = 100;
    options.deadlineSeconds = 10;
    TProcessResult r = Test_RunFilter({"1", "u", "t", "1", "", "/nonexistent/job.ras"}, options);
    EXPECT_EQ(1, r.status) << "signal " << sig;
    EXPECT_TRUE(r.out.empty());
  }
}
