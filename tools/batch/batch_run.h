// Running a batch: sending each card as one job, following the jobs, stopping on printer faults, resuming from the journal.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/batch/batch_plan.h"

// Exit statuses of brellian-batch.
constexpr int BATCH_EXIT_OK = 0;           // every card printed
constexpr int BATCH_EXIT_FAILED = 1;       // some card's job was aborted or cancelled, or is unconfirmed
constexpr int BATCH_EXIT_USAGE = 2;        // bad arguments, input or journal
constexpr int BATCH_EXIT_STOPPED = 3;      // --no-wait and the printer stopped or cannot be reached
constexpr int BATCH_EXIT_INTERRUPTED = 4;  // stopped at the user's request (Ctrl-C)
constexpr int BATCH_EXIT_JOURNAL = 5;      // the journal could not be written: nothing more was sent

// Everything the command line asks of a batch.
struct TBatchOptions {
  std::string dest;             // queue name or printer URI
  TPlanInput input;
  std::string journal;          // path; empty: beside the first input file
  bool dryRun = false;
  bool resume = false;
  bool retryFailed = false;
  bool noWait = false;
  int32_t pollMs = 1000;        // between two looks at the printer and the jobs
  int32_t ahead = 1;            // jobs sent ahead of the one printing
  std::string title;            // first part of each job's name
};

// Set by SIGINT: the batch asks what to do with the current card.
extern volatile sig_atomic_t g_batchInterrupted;

// 'Batch_Run()' - Run the batch; returns one of the exit statuses above.
int Batch_Run(const TBatchOptions& options);

// 'Batch_JobName()' - The job name of card (0-based): title, the card's
// number and the batch id, unique to the card, looked for on resume.
std::string Batch_JobName(const std::string& title, int32_t card, int32_t cards, const std::string& batchId);

// 'Batch_DefaultJournal()' - The journal's path when none is given: beside
// the CSV file, else beside the first document, with ".journal" added.
std::string Batch_DefaultJournal(const TBatchOptions& options);
