// What a batch tells the person at the terminal: a progress line or plain lines, messages, and the summary.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "tools/batch/batch_journal.h"

// Progress of a batch on standard error: on a terminal one line redrawn in
// place (cards done / total, current card, rate, time left); otherwise
// plain lines, one per event.
class TBatchProgress {
 public:
  // 'Start()' - total cards, of which done were printed before this run.
  void Start(int32_t total, int32_t done, bool terminal);
  // 'Event()' - A plain line about one card (shown on both kinds of output;
  // on a terminal the progress line is drawn again below it).
  void Event(const std::string& text);
  // 'Current()' - The card being sent or printed now (1-based) and its job.
  void Current(int32_t card, int32_t jobId);
  // 'Printed()' - One more card printed in this run.
  void Printed();
  bool Terminal() const { return terminal_; }
  // 'Clear()' - Remove the progress line before other output.
  void Clear();
  // 'Line()' - The progress text: "12/200 printed, card 13 (job 345), 4.2 cards/min, about 45 min left".
  std::string Line() const;

 private:
  void Draw();

  int32_t total_ = 0;
  int32_t done_ = 0;
  int32_t doneHere_ = 0;
  int32_t card_ = 0;
  int32_t jobId_ = 0;
  uint64_t startMs_ = 0;
  bool terminal_ = false;
  bool drawn_ = false;
};

// 'Batch_Summary()' - Print the summary of the journal to out: the counts
// of cards printed, failed, unconfirmed, sent and not yet done ("at
// printer") and not sent ("skipped"), with the job ids of each group.
void Batch_Summary(const TBatchJournal& journal, FILE* out);
