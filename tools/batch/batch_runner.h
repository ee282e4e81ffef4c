// The state of one run of a batch, shared by the sending loop and the following of jobs.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "tools/batch/batch_ipp.h"
#include "tools/batch/batch_journal.h"
#include "tools/batch/batch_plan.h"
#include "tools/batch/batch_progress.h"
#include "tools/batch/batch_run.h"

// One job sent and not yet ended.
struct TOutstanding {
  int32_t card = 0;
  int32_t jobId = 0;
};

// One run: the printer, the journal, the jobs being followed.
class TBatchRunner {
 public:
  explicit TBatchRunner(const TBatchOptions& options) : opt_(options) {}
  int Run();

 private:
  // batch_run.cpp
  int DryRun();
  bool Recover(std::string* error);
  int SendCard(const TCard& card);
  int Finish(int status);
  // batch_follow.cpp
  // 'Poll()' - Look at every outstanding job once; record those that ended.
  bool Poll();
  // 'WaitReady()' - Wait until the printer may take the next card (1-based
  // nextCard, 0 when none is to be sent); BATCH_EXIT_OK, or the status to
  // end with.
  int WaitReady(int32_t nextCard, const std::string& what);
  // 'Pause()' - Sleep one polling interval; handles Ctrl-C.
  int Pause();
  // 'AskInterrupt()' - Ctrl-C: finish the current card, cancel it, or go on.
  int AskInterrupt();
  void Report(const std::string& text) { progress_.Event(text); }
  std::string Name(int32_t card) const;

  const TBatchOptions& opt_;
  TBatchPrinter printer_;
  TBatchJournal journal_;
  TBatchPlan plan_;
  TBatchProgress progress_;
  std::deque<TOutstanding> outstanding_;
  std::string journalError_;
  bool stopping_ = false;  // the user asked to finish the current card and stop
  bool faultShown_ = false;
  int recoverStatus_ = BATCH_EXIT_OK;  // why Recover() stopped, when Ctrl-C stopped it
};
