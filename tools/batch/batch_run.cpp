// Running a batch: set-up, dry run, recovery from the journal and the loop that sends one job per card.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_run.h"

#include <unistd.h>

#include "tools/batch/batch_runner.h"

volatile sig_atomic_t g_batchInterrupted = 0;

std::string Batch_JobName(const std::string& title, int32_t card, int32_t cards, const std::string& batchId) {
  return title + " card " + std::to_string(card + 1) + " of " + std::to_string(cards) + " [" + batchId + "]";
}

std::string Batch_DefaultJournal(const TBatchOptions& options) {
  const std::string& base = !options.input.csv.empty() ? options.input.csv
                            : options.input.documents.empty() ? std::string("batch")
                                                              : options.input.documents[0];
  return base + ".journal";
}

int Batch_Run(const TBatchOptions& options) {
  TBatchRunner runner(options);
  return runner.Run();
}

std::string TBatchRunner::Name(int32_t card) const {
  return Batch_JobName(opt_.title, card, journal_.Cards(), journal_.BatchId());
}

// 'TBatchRunner::Run()' - Set up, recover, send every card, follow the jobs to their end.
int TBatchRunner::Run() {
  std::string error;
  if (!printer_.Open(opt_.dest, &error)) {
    fprintf(stderr, "brellian-batch: %s\n", error.c_str());
    return BATCH_EXIT_USAGE;
  }
  TPrinterStatus status;
  printer_.Status(&status);
  if (!status.reached && !opt_.dryRun) {
    int r = WaitReady(1, "the first card");
    if (r != BATCH_EXIT_OK) return r;
    printer_.Status(&status);
  }
  TPlanPrinter what;
  what.appVocabulary = status.appVocabulary;
  // A PDF goes whole with page-ranges only where both are taken; elsewhere,
  // and to the printer application (whose PDF path prints every page of
  // the document given), each card's pages go as raster.
  what.takesPdf = !status.reached || (status.takesPdf && status.pageRanges && !status.appVocabulary);
  if (status.resolution > 0) what.resolution = status.resolution;
  if (!plan_.Setup(opt_.input, what, &error)) {
    fprintf(stderr, "brellian-batch: %s\n", error.c_str());
    return BATCH_EXIT_USAGE;
  }
  if (opt_.dryRun) return DryRun();
  std::string path = opt_.journal.empty() ? Batch_DefaultJournal(opt_) : opt_.journal;
  if (opt_.resume ? !journal_.Load(path, &error) : !journal_.Create(path, plan_.Cards(), opt_.dest, &error)) {
    if (!opt_.resume && access(path.c_str(), F_OK) == 0)
      error += "\n  To go on with that batch, run the same command with --resume; to print the whole batch "
               "again, remove the journal first.";
    fprintf(stderr, "brellian-batch: %s\n", error.c_str());
    return BATCH_EXIT_USAGE;
  }
  if (journal_.Cards() != plan_.Cards()) {
    fprintf(stderr, "brellian-batch: the journal %s is of a batch of %d cards, this input makes %d\n", path.c_str(),
            static_cast<int>(journal_.Cards()), static_cast<int>(plan_.Cards()));
    return BATCH_EXIT_USAGE;
  }
  if (!Recover(&error)) {
    fprintf(stderr, "brellian-batch: %s\n", error.c_str());
    if (!journalError_.empty()) return BATCH_EXIT_JOURNAL;
    return recoverStatus_ != BATCH_EXIT_OK ? recoverStatus_ : BATCH_EXIT_STOPPED;
  }
  int32_t printed = 0;
  for (int32_t c = 0; c < journal_.Cards(); ++c) printed += journal_.Entry(c).state == CARD_PRINTED;
  progress_.Start(journal_.Cards(), printed, isatty(STDERR_FILENO) != 0);
  if (printed > 0 || !outstanding_.empty())
    Report("Resuming batch " + journal_.BatchId() + ": " + std::to_string(printed) + " of " +
           std::to_string(journal_.Cards()) + " cards printed before, " + std::to_string(outstanding_.size()) +
           " job(s) still with the printer");
  TCard card;
  int32_t r;
  while ((r = plan_.Next(&card, &error)) == 1) {
    const TCardEntry& e = journal_.Entry(card.index);
    bool again = e.state == CARD_PENDING || e.state == CARD_INTENT || (e.state == CARD_FAILED && opt_.retryFailed);
    if (!again) continue;
    int s = SendCard(card);
    if (s != BATCH_EXIT_OK) return Finish(s);
  }
  if (r < 0) {
    Report("brellian-batch: " + error + "; no further card is sent");
    return Finish(BATCH_EXIT_USAGE);
  }
  return Finish(BATCH_EXIT_OK);
}

// 'TBatchRunner::SendCard()' - Wait for room and a ready printer, record
// the intent, send the job, record its id.
int TBatchRunner::SendCard(const TCard& card) {
  const int32_t number = card.index + 1;
  const std::string what = "card " + std::to_string(number) + " (" + TBatchPlan::Describe(card) + ")";
  for (;;) {
    // Room for one more job: while the jobs already sent fill it, a fault
    // of the printer is reported as it happens.
    while (outstanding_.size() > static_cast<size_t>(opt_.ahead)) {
      if (!Poll()) return BATCH_EXIT_JOURNAL;
      if (outstanding_.size() <= static_cast<size_t>(opt_.ahead)) break;
      int s = WaitReady(number, what);
      if (s == BATCH_EXIT_OK) s = Pause();
      if (s != BATCH_EXIT_OK) return s;
    }
    if (stopping_) return BATCH_EXIT_INTERRUPTED;
    int s = WaitReady(number, what);
    if (s != BATCH_EXIT_OK) return s;
    std::string error;
    if (journal_.Entry(card.index).state != CARD_INTENT && !journal_.Intent(card.index, &journalError_))
      return BATCH_EXIT_JOURNAL;
    progress_.Current(number, 0);
    int32_t jobId = 0;
    int32_t sent = printer_.Submit(Name(card.index), card.doc, card.options, &jobId, &error);
    if (sent == SUBMIT_RETRY) {
      // The request may have made a job before the answer was lost.
      std::string ignored;
      if (!printer_.FindJob(Name(card.index), &jobId, &ignored) || jobId == 0) {
        Report("Card " + std::to_string(number) + " not sent (" + error + "); trying again");
        s = Pause();
        if (s != BATCH_EXIT_OK) return s;
        continue;
      }
      sent = SUBMIT_OK;
    }
    if (sent == SUBMIT_REFUSED) {
      Report("Card " + std::to_string(number) + " (" + TBatchPlan::Describe(card) + ") refused by the printer: " + error);
      return journal_.Ended(card.index, CARD_FAILED, false, &journalError_) ? BATCH_EXIT_OK : BATCH_EXIT_JOURNAL;
    }
    if (!journal_.Sent(card.index, jobId, &journalError_)) return BATCH_EXIT_JOURNAL;
    if (!error.empty()) Report("Card " + std::to_string(number) + ": " + error);
    if (!progress_.Terminal())
      Report("Card " + std::to_string(number) + " of " + std::to_string(journal_.Cards()) + " (" +
             TBatchPlan::Describe(card) + ") sent as job " + std::to_string(jobId));
    progress_.Current(number, jobId);
    outstanding_.push_back({card.index, jobId});
    return BATCH_EXIT_OK;
  }
}

// 'TBatchRunner::Finish()' - Follow the jobs still out (unless the journal
// failed), print the summary, and pick the exit status.
int TBatchRunner::Finish(int status) {
  if (status == BATCH_EXIT_JOURNAL) {
    progress_.Clear();
    fprintf(stderr, "brellian-batch: %s\nNo further card is sent. Jobs already sent print; once the journal "
            "can be written, run the same command with --resume.\n", journalError_.c_str());
  }
  while (status != BATCH_EXIT_JOURNAL && status != BATCH_EXIT_STOPPED && !outstanding_.empty()) {
    if (!Poll()) {
      status = BATCH_EXIT_JOURNAL;
      break;
    }
    if (outstanding_.empty()) break;
    int s = WaitReady(0, "");
    if (s == BATCH_EXIT_OK) s = Pause();
    if (s != BATCH_EXIT_OK) {
      status = s;
      break;
    }
  }
  if (status == BATCH_EXIT_OK && stopping_) status = BATCH_EXIT_INTERRUPTED;
  progress_.Clear();
  Batch_Summary(journal_, stdout);
  fflush(stdout);
  if (status != BATCH_EXIT_OK) return status;
  for (int32_t c = 0; c < journal_.Cards(); ++c)
    if (journal_.Entry(c).state != CARD_PRINTED) return BATCH_EXIT_FAILED;
  return BATCH_EXIT_OK;
}
