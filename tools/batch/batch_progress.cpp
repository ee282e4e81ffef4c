// Progress line, plain progress lines and the end-of-batch summary.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_progress.h"

#include <vector>

#include "util/sys.h"

void TBatchProgress::Start(int32_t total, int32_t done, bool terminal) {
  total_ = total;
  done_ = done;
  terminal_ = terminal;
  startMs_ = Sys_NowMs();
}

// 'TBatchProgress::Line()' - Counts, current card, rate and time left.
std::string TBatchProgress::Line() const {
  char text[256];
  int n = snprintf(text, sizeof text, "%d/%d printed", static_cast<int>(done_), static_cast<int>(total_));
  if (card_ > 0 && done_ < total_)
    n += snprintf(text + n, sizeof text - static_cast<size_t>(n), ", card %d", static_cast<int>(card_));
  if (card_ > 0 && jobId_ > 0 && done_ < total_)
    n += snprintf(text + n, sizeof text - static_cast<size_t>(n), " (job %d)", static_cast<int>(jobId_));
  double minutes = static_cast<double>(Sys_NowMs() - startMs_) / 60000.0;
  if (doneHere_ > 0 && minutes > 0) {
    double rate = doneHere_ / minutes;
    double left = (total_ - done_) / rate;
    n += snprintf(text + n, sizeof text - static_cast<size_t>(n), ", %.1f cards/min", rate);
    if (done_ < total_) {
      if (left < 1.0)
        snprintf(text + n, sizeof text - static_cast<size_t>(n), ", about %d s left", static_cast<int>(left * 60 + 0.5));
      else
        snprintf(text + n, sizeof text - static_cast<size_t>(n), ", about %d min left", static_cast<int>(left + 0.5));
    }
  }
  return text;
}

void TBatchProgress::Draw() {
  if (!terminal_) return;
  fprintf(stderr, "\r\033[K%s", Line().c_str());
  fflush(stderr);
  drawn_ = true;
}

void TBatchProgress::Clear() {
  if (terminal_ && drawn_) fputs("\r\033[K", stderr);
  drawn_ = false;
}

void TBatchProgress::Event(const std::string& text) {
  Clear();
  fprintf(stderr, "%s\n", text.c_str());
  fflush(stderr);
  Draw();
}

void TBatchProgress::Current(int32_t card, int32_t jobId) {
  card_ = card;
  jobId_ = jobId;
  Draw();
}

void TBatchProgress::Printed() {
  ++done_;
  ++doneHere_;
  if (terminal_)
    Draw();
  else
    fprintf(stderr, "%s\n", Line().c_str());
}

namespace {

// 'Summary_Group()' - One summary line: label, count and the cards with their jobs.
void Summary_Group(FILE* out, const char* label, const std::vector<std::string>& items) {
  fprintf(out, "%-12s %zu", label, items.size());
  size_t shown = 0;
  for (const std::string& s : items) {
    if (shown == 0) fputs(":", out);
    if (++shown > 50) {
      fprintf(out, " ... (%zu more)", items.size() - 50);
      break;
    }
    fprintf(out, " %s", s.c_str());
  }
  fputs("\n", out);
}

}  // namespace

// 'Batch_Summary()' - Counts and "card N (job J)" lists by outcome.
void Batch_Summary(const TBatchJournal& journal, FILE* out) {
  std::vector<std::string> printed, failed, unconfirmed, waiting, left;
  for (int32_t c = 0; c < journal.Cards(); ++c) {
    const TCardEntry& e = journal.Entry(c);
    std::string item = std::to_string(c + 1);
    if (e.jobId > 0) item += " (job " + std::to_string(e.jobId) + ")";
    if (e.state == CARD_PRINTED)
      printed.push_back(item);
    else if (e.state == CARD_FAILED)
      failed.push_back(item + (e.cancelled ? " cancelled" : " aborted"));
    else if (e.state == CARD_UNCONFIRMED)
      unconfirmed.push_back(item);
    else if (e.state == CARD_SENT)
      waiting.push_back(item);
    else
      left.push_back(item);
  }
  fprintf(out, "Summary of batch %s, %d cards:\n", journal.BatchId().c_str(), static_cast<int>(journal.Cards()));
  Summary_Group(out, "printed", printed);
  Summary_Group(out, "failed", failed);
  if (!unconfirmed.empty()) Summary_Group(out, "unconfirmed", unconfirmed);
  if (!waiting.empty()) Summary_Group(out, "at printer", waiting);
  Summary_Group(out, "skipped", left);
}
