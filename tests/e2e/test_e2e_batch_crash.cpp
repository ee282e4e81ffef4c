// brellian-batch killed with SIGKILL at random moments of a 10-card batch and resumed: every card printed exactly once.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <random>
#include <string>

#include "support/batch_support.h"

namespace {

// 'Crash_StartTool()' - Start brellian-batch with args against the spooler;
// its pid.  Output goes to log.
pid_t Crash_StartTool(const TBatchSpooler& spooler, const std::vector<std::string>& args, const std::string& log) {
  pid_t pid = fork();
  if (pid == 0) {
    setenv("CUPS_SERVER", spooler.Socket().c_str(), 1);
    FILE* out = freopen(log.c_str(), "w", stdout);
    FILE* err = freopen(log.c_str(), "a", stderr);
    (void)out;
    (void)err;
    std::vector<char*> argv;
    std::string tool = Batch_Tool();
    argv.push_back(&tool[0]);
    std::vector<std::string> copy = args;
    for (std::string& a : copy) argv.push_back(&a[0]);
    argv.push_back(nullptr);
    execv(tool.c_str(), argv.data());
    _exit(127);
  }
  return pid;
}

// 'Crash_WaitForLine()' - Wait (polling every millisecond, up to 30 s)
// until the journal holds line text or the tool pid ended; true for the line.
bool Crash_WaitForLine(const std::string& journal, const std::string& text, pid_t pid) {
  for (int i = 0; i < 30000; ++i) {
    if (Test_ReadFile(journal).find("\n" + text + " *") != std::string::npos) return true;
    int status;
    if (waitpid(pid, &status, WNOHANG) == pid) return false;
    usleep(1000);
  }
  return false;
}

}  // namespace

TEST(BatchCrash, KilledAtARandomMomentAndResumedEachCardPrintsOnce) {
  if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  constexpr int kTrials = 20, kCards = 10;
  std::string dir = Cups_WorkDir("batch-crash");
  TBatchSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_TRUE(Batch_MakeMergedPdf(dir + "/merge.pdf", kCards));
  Batch_WriteCsv(dir + "/people.csv", kCards);
  std::mt19937 random(20261124);
  // A whole batch takes 0.3 to 0.6 s a card here; the kills fall anywhere in it.
  std::uniform_int_distribution<int> moment(0, kCards * 300);
  int killedMidway = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    spooler.ClearCaptures();
    std::string journal = dir + "/trial-" + std::to_string(trial) + ".journal";
    std::vector<std::string> args = {"-d", "cards", "--csv", dir + "/people.csv", "--poll-interval", "50",
                                     "--journal", journal, dir + "/merge.pdf"};
    // Even trials are killed at any moment of the batch; odd ones a few
    // milliseconds after a card's intent was written, while its request is
    // on the way: the moment when a job may exist that the journal does not
    // name yet.
    int delayMs = trial % 2 == 0 ? moment(random) : std::uniform_int_distribution<int>(0, 25)(random);
    int card = std::uniform_int_distribution<int>(0, kCards - 1)(random);
    pid_t pid = Crash_StartTool(spooler, args, dir + "/trial.log");
    if (trial % 2 == 1) {
      ASSERT_TRUE(Crash_WaitForLine(journal, "intent " + std::to_string(card), pid)) << trial;
    }
    usleep(static_cast<useconds_t>(delayMs) * 1000);
    int status = 0;
    bool killed = waitpid(pid, &status, WNOHANG) == 0;
    if (killed) kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    killedMidway += killed;
    // Killed before its journal was written, the tool sent nothing: the
    // batch is run again from the start; else it is resumed.
    if (access(journal.c_str(), F_OK) == 0) args.push_back("--resume");
    TProcessResult resumed = Batch_RunTool(spooler, args);
    ASSERT_EQ(0, resumed.status) << "trial " << trial << ", killed " << delayMs << " ms after its start or card "
                                 << card << "'s intent\n"
                                 << resumed.out << resumed.err;
    ASSERT_TRUE(spooler.WaitIdle(60));
    std::map<std::string, int> seen;
    for (const TBatchCapture& c : Batch_ReadCaptures(spooler.CaptureDir())) {
      EXPECT_TRUE(c.complete) << "trial " << trial;
      ++seen[c.track1];
    }
    EXPECT_EQ(static_cast<size_t>(kCards), seen.size()) << "trial " << trial << ", kill delay " << delayMs << " ms";
    for (int i = 1; i <= kCards; ++i)
      EXPECT_EQ(1, seen[Batch_Track1(i)]) << "trial " << trial << ", card " << i << ", kill delay " << delayMs
                                           << " ms\n" << resumed.err;
  }
  // The kills must fall inside the batch, or the test shows nothing: the
  // targeted half always does, and the random half mostly.
  EXPECT_GE(killedMidway, kTrials * 2 / 3);
}
