// Following a batch's jobs to their end, waiting out printer faults, and Ctrl-C.
// Copyright 2026 The rastertobrellian authors.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "tools/batch/batch_runner.h"
#include "util/sys.h"

namespace {

// Longest sleep between two looks at the Ctrl-C flag.
constexpr int32_t FOLLOW_STEP_MS = 50;

std::string Follow_Card(const TOutstanding& o) {
  return "card " + std::to_string(o.card + 1) + " (job " + std::to_string(o.jobId) + ")";
}

}  // namespace

// 'TBatchRunner::Poll()' - Ask for each outstanding job's state; record
// the ended ones.  False only when the journal could not be written.
bool TBatchRunner::Poll() {
  for (size_t i = 0; i < outstanding_.size();) {
    const TOutstanding o = outstanding_[i];
    TJobStatus job;
    std::string error;
    if (!printer_.Job(o.jobId, &job, &error)) {
      ++i;  // the printer does not answer now: asked again next time
      continue;
    }
    if (job.known && job.state < IPP_JSTATE_CANCELED) {
      ++i;
      continue;
    }
    std::string card = "Card " + std::to_string(o.card + 1) + " (job " + std::to_string(o.jobId) + ")";
    if (!job.known) {
      if (!journal_.Ended(o.card, CARD_UNCONFIRMED, false, &journalError_)) return false;
      Report(card + ": the printer no longer knows the job, so whether it printed is not known; it is not "
             "printed again (check the card, and print it again on its own if it is missing)");
    } else if (job.state == IPP_JSTATE_COMPLETED) {
      if (!journal_.Ended(o.card, CARD_PRINTED, false, &journalError_)) return false;
      progress_.Printed();
    } else {
      bool cancelled = job.state == IPP_JSTATE_CANCELED;
      if (!journal_.Ended(o.card, CARD_FAILED, cancelled, &journalError_)) return false;
      Report(card + " was " + (cancelled ? "cancelled" : "aborted") +
             (job.reasons.empty() ? "" : " (" + job.reasons + ")") +
             "; it is printed again only with --resume --retry-failed");
    }
    outstanding_.erase(outstanding_.begin() + static_cast<long>(i));
  }
  return true;
}

// 'TBatchRunner::WaitReady()' - Loop until the printer has no fault,
// following the jobs meanwhile; say once what stopped and what is next.
int TBatchRunner::WaitReady(int32_t nextCard, const std::string& what) {
  for (;;) {
    TPrinterStatus status;
    printer_.Status(&status);
    if (status.fault.empty()) {
      if (faultShown_) Report("The printer is ready again" + (what.empty() ? "" : ": going on with " + what));
      faultShown_ = false;
      return BATCH_EXIT_OK;
    }
    if (!faultShown_) {
      std::string text = "Printing paused: " + status.fault + ".";
      for (const TOutstanding& o : outstanding_) text += "\n  Already sent, waiting with the printer: " + Follow_Card(o);
      if (nextCard > 0) text += "\n  Next card to send: " + what + ".";
      if (status.state == IPP_PSTATE_STOPPED && opt_.dest.find("://") == std::string::npos)
        text += "\n  Once the cause is put right, start the queue again: cupsenable " + opt_.dest;
      text += opt_.noWait ? "\n  Ending (--no-wait). Once the printer is ready again, run the same command with "
                            "--resume: no card already sent is sent again."
                          : "\n  Waiting for the printer to be ready (Ctrl-C to stop).";
      Report(text);
      faultShown_ = true;
    }
    if (opt_.noWait) return BATCH_EXIT_STOPPED;
    if (!Poll()) return BATCH_EXIT_JOURNAL;
    if (nextCard == 0 && outstanding_.empty()) return BATCH_EXIT_OK;
    int s = Pause();
    if (s != BATCH_EXIT_OK) return s;
  }
}

// 'TBatchRunner::Pause()' - One polling interval, cut short by Ctrl-C.
int TBatchRunner::Pause() {
  for (int32_t waited = 0; waited < opt_.pollMs; waited += FOLLOW_STEP_MS) {
    if (g_batchInterrupted) return AskInterrupt();
    Sys_SleepMs(static_cast<uint32_t>(std::min(FOLLOW_STEP_MS, opt_.pollMs - waited)));
  }
  return g_batchInterrupted ? AskInterrupt() : BATCH_EXIT_OK;
}

// 'TBatchRunner::AskInterrupt()' - On a terminal ask whether to finish the
// cards already sent and stop, cancel them and stop, or go on; elsewhere
// finish and stop.  A second Ctrl-C while stopping ends at once (the
// journal is always complete, so --resume goes on from there).
int TBatchRunner::AskInterrupt() {
  g_batchInterrupted = 0;
  if (stopping_ || outstanding_.empty()) {
    Report("Stopped. Run the same command with --resume to go on with the batch.");
    return BATCH_EXIT_INTERRUPTED;
  }
  std::string cards;
  for (const TOutstanding& o : outstanding_) cards += (cards.empty() ? "" : ", ") + Follow_Card(o);
  char answer = 'f';
  if (isatty(STDIN_FILENO)) {
    progress_.Clear();
    fprintf(stderr, "\nStop the batch? Already sent: %s.\n"
            "  [f] finish them and stop (default), [c] cancel them and stop, [g] go on: ", cards.c_str());
    fflush(stderr);
    char line[64] = {};
    if (fgets(line, sizeof line, stdin)) answer = line[0] == 'c' || line[0] == 'C' ? 'c' : line[0] == 'g' || line[0] == 'G' ? 'g' : 'f';
    g_batchInterrupted = 0;
  }
  if (answer == 'g') return BATCH_EXIT_OK;
  stopping_ = true;
  if (answer == 'c') {
    for (const TOutstanding& o : outstanding_) {
      std::string error;
      if (!printer_.Cancel(o.jobId, &error)) Report("Cannot cancel " + Follow_Card(o) + ": " + error);
    }
    Report("Cancelling " + cards + ", then stopping (Ctrl-C again to stop at once).");
  } else {
    Report("Finishing " + cards + ", then stopping (Ctrl-C again to stop at once).");
  }
  return BATCH_EXIT_OK;
}
