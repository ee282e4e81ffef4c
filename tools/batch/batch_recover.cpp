// Resuming a batch from its journal, and the dry run that lists the cards.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>

#include "tools/batch/batch_runner.h"

// 'TBatchRunner::Recover()' - Cards sent before: follow them again.  A card
// whose intent was recorded without a job id is looked for by its job name:
// when the printer has a job of that name it was sent, else it is sent now.
bool TBatchRunner::Recover(std::string* error) {
  for (int32_t c = 0; c < journal_.Cards(); ++c) {
    const TCardEntry& e = journal_.Entry(c);
    if (e.state == CARD_SENT) {
      outstanding_.push_back({c, e.jobId});
      continue;
    }
    if (e.state != CARD_INTENT) continue;
    int32_t jobId = 0;
    std::string why;
    while (!printer_.FindJob(Name(c), &jobId, &why)) {
      if (opt_.noWait) {
        *error = "cannot ask the printer whether card " + std::to_string(c + 1) + " was sent (" + why +
                 "); nothing is sent until it answers";
        return false;
      }
      fprintf(stderr, "Cannot ask the printer whether card %d was sent (%s); trying again\n", static_cast<int>(c + 1),
              why.c_str());
      recoverStatus_ = Pause();
      if (recoverStatus_ != BATCH_EXIT_OK) {
        *error = "stopped before the batch was resumed";
        return false;
      }
    }
    if (jobId > 0) {
      if (!journal_.Sent(c, jobId, &journalError_)) {
        *error = journalError_;
        return false;
      }
      outstanding_.push_back({c, jobId});
    }
  }
  if (!Poll()) {
    *error = journalError_;
    return false;
  }
  return true;
}

// 'TBatchRunner::DryRun()' - One line per card: its pages and options.
int TBatchRunner::DryRun() {
  TCard card;
  std::string error;
  int32_t r;
  printf("%d cards to %s, %d page(s) each:\n", static_cast<int>(plan_.Cards()), printer_.Uri().c_str(),
         static_cast<int>(plan_.PagesPerCard()));
  while ((r = plan_.Next(&card, &error)) == 1) {
    printf("card %d: %s", static_cast<int>(card.index + 1), TBatchPlan::Describe(card).c_str());
    if (!card.doc.command.empty()) printf(" (as PWG raster)");
    for (const TJobOption& o : card.options) printf(" %s=%s", o.name.c_str(), o.value.c_str());
    printf("\n");
  }
  if (r < 0) {
    fprintf(stderr, "brellian-batch: %s\n", error.c_str());
    return BATCH_EXIT_USAGE;
  }
  return BATCH_EXIT_OK;
}
