// PAPPL raster callbacks: pages in, one filter run per card, the job's state from the filter's messages.
// Copyright 2026 The rastertobrellian authors.
//
// A job's pages are written as a CUPS raster stream into the standard
// input of rastertobrellian, which prints one card per run.  Copies and
// multi-card documents arrive as more pages than one card takes, so when a
// card's pages are complete and another page comes, the run is finished
// and a new one started for the next card.
#include "app/raster_job.h"

#include <cstring>
#include <memory>
#include <string>

#include "app/accessories.h"
#include "app/filter_args.h"
#include "app/filter_run.h"
#include "app/job_options.h"
#include "app/models.h"
#include "app/raster_copies.h"

namespace {

// What a job carries between the callbacks.
struct TRasterJob {
  const TAppModel* model = nullptr;
  TAccessories acc;
  TCardValues values;
  TFilterArgs args;
  TFilterMessages messages;
  std::unique_ptr<TFilterRun> run;
  std::unique_ptr<TRasterCopies> copies;  // streamed raster with copies > 1
  int copiesWanted = 1;
  int pagesInCard = 0;    // pages given to the current run
  int cardPages = 0;      // pages the current card takes
  int cards = 0;
  unsigned rowsInPage = 0;
  unsigned pageRows = 0;  // rows the page header announces
  unsigned pagesSeen = 0;
  unsigned totalPages = 0;  // pages a PWG header announces (0: not said)
  bool failed = false;
  bool stoppedByUs = false;  // the job was cancelled here to end PAPPL's reading
  std::string incomplete;    // why the document is not whole, when it is not
  std::string failMessage;   // the job's message when it failed here, not in the filter
};

// 'RasterJob_NewCard()' - Finish the run of the last card, start one for the next.
bool RasterJob_NewCard(pappl_job_t* job, pappl_device_t* device, TRasterJob* rj) {
  if (rj->run && !rj->run->Finish()) rj->failed = true;
  rj->run.reset(new TFilterRun(job, device, &rj->messages));
  rj->pagesInCard = 0;
  rj->cards++;
  const char* keep = getenv("BRELLIAN_APP_RASTER_DIR");
  rj->args.keepRaster.clear();
  if (keep && *keep)
    rj->args.keepRaster = std::string(keep) + "/" + papplPrinterGetName(papplJobGetPrinter(job)) + "-job" +
                          std::to_string(papplJobGetID(job)) + "-card" +
                          std::to_string(rj->cards) + ".ras";
  if (!rj->run->Start(rj->args)) {
    rj->failed = true;
    rj->failMessage = "Unable to start the card filter.";
    return false;
  }
  return true;
}

// 'RasterJob_StopReading()' - The filter has failed: cancel the job so that
// PAPPL stops reading the rest of the page from the client (its row loop
// ends only on a cancel), which frees the printer at once.  The job's
// message still names the filter's error.
void RasterJob_StopReading(pappl_job_t* job, TRasterJob* rj) {
  rj->failed = true;
  if (rj->stoppedByUs || papplJobIsCanceled(job)) return;
  rj->stoppedByUs = true;
  papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The card filter has stopped; the rest of the document is not read");
  papplJobCancel(job);
}

// 'RasterJob_BeginPage()' - A page header: a new card when the current one
// has all its pages, then the header into the filter.
bool RasterJob_BeginPage(pappl_job_t* job, pappl_device_t* device, TRasterJob* rj, cups_page_header2_t* h) {
  if (!rj->run || rj->pagesInCard >= rj->cardPages) {
    if (!RasterJob_NewCard(job, device, rj)) return false;
    bool duplex = h->Duplex != 0;
    rj->cardPages = JobOpt_PagesPerSide(rj->values, 0) + (duplex ? JobOpt_PagesPerSide(rj->values, 1) : 0);
  }
  rj->pagesInCard++;
  if (!rj->run->WriteHeader(h)) {
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The card filter does not take the page");
    rj->failed = true;
    return false;
  }
  return true;
}

// 'RasterJob_Copies()' - The further copies of a streamed raster document,
// read back from the kept file through the same cards.
void RasterJob_Copies(pappl_job_t* job, pappl_device_t* device, TRasterJob* rj) {
  for (int copy = 2; copy <= rj->copiesWanted && !rj->failed && !papplJobIsCanceled(job); ++copy) {
    rj->pagesInCard = rj->cardPages;  // each copy starts a new card
    bool ok = rj->copies->Replay(
        [&](cups_page_header2_t* h) { return RasterJob_BeginPage(job, device, rj, h); },
        [&](const unsigned char* row, unsigned bytes) {
          return !papplJobIsCanceled(job) && rj->run->WriteRow(row, bytes);
        },
        [&]() { return !papplJobIsCanceled(job); });
    if (!ok && !papplJobIsCanceled(job)) {
      rj->failed = true;
      rj->failMessage = "Copy " + std::to_string(copy) + " of the document could not be printed.";
    }
  }
}

}  // namespace

// 'RasterJob_StartJob()' - Options of the job; the first run starts with the first page.
bool RasterJob_StartJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t*) {
  TRasterJob* rj = new TRasterJob;
  if (!Args_ForJob(job, options, "application/vnd.cups-raster", &rj->model, &rj->acc, &rj->values, &rj->args)) {
    delete rj;
    return false;
  }
  const char* format = papplJobGetFormat(job);
  bool streamed = format && (!strcmp(format, "image/pwg-raster") || !strcmp(format, "image/urf"));
  rj->copiesWanted = options->copies > 1 ? options->copies : 1;
  if (streamed && rj->copiesWanted > 1) {
    rj->copies.reset(new TRasterCopies);
    if (!rj->copies->Open()) {
      papplJobSetMessage(job, "Unable to keep the document for its %d copies.", rj->copiesWanted);
      delete rj;
      return false;
    }
  }
  papplJobSetData(job, rj);
  return true;
}

// 'RasterJob_StartPage()' - A new card when the current one has all its pages.
bool RasterJob_StartPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj || rj->failed) return false;
  if (papplJobIsCanceled(job)) return false;
  cups_page_header2_t* h = &options->header;
  rj->pagesSeen++;
  rj->rowsInPage = 0;
  rj->pageRows = h->cupsHeight;
  if (rj->pagesSeen == 1) rj->totalPages = h->cupsInteger[CUPS_RASTER_PWG_TotalPageCount];
  if (rj->copies && !rj->copies->WriteHeader(h)) rj->copies.reset();
  if (!RasterJob_BeginPage(job, device, rj, h)) {
    RasterJob_StopReading(job, rj);
    return false;
  }
  return true;
}

// 'RasterJob_WriteLine()' - One row; a cancel ends the run with SIGTERM.
bool RasterJob_WriteLine(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t*, unsigned, const unsigned char* line) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj || !rj->run || rj->failed) return false;
  if (papplJobIsCanceled(job)) {
    rj->run->Cancel();
    return false;
  }
  rj->rowsInPage++;
  if (rj->copies && !rj->copies->WriteRow(line, options->header.cupsBytesPerLine)) rj->copies.reset();
  if (!rj->run->WriteRow(line, options->header.cupsBytesPerLine)) RasterJob_StopReading(job, rj);
  return !rj->failed;
}

// 'RasterJob_EndPage()' - A page that did not arrive whole fails the job:
// the filter is killed and nothing of its stream reaches the printer.
bool RasterJob_EndPage(pappl_job_t* job, pappl_pr_options_t*, pappl_device_t*, unsigned page) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj) return false;
  if (papplJobIsCanceled(job)) {
    if (rj->run && !rj->stoppedByUs) rj->run->Cancel();
    return !rj->failed;
  }
  if (!rj->failed && rj->rowsInPage < rj->pageRows) {
    rj->incomplete = "page " + std::to_string(page) + " has " + std::to_string(rj->rowsInPage) + " of its " +
                     std::to_string(rj->pageRows) + " rows";
    if (rj->run) rj->run->Discard();
    rj->failed = true;
  }
  return !rj->failed;
}

// 'RasterJob_EndJob()' - Finish the last run, print the further copies; the
// job's final message.
bool RasterJob_EndJob(pappl_job_t* job, pappl_pr_options_t*, pappl_device_t* device) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj) return false;
  bool cancelled = papplJobIsCanceled(job) && !rj->stoppedByUs;
  if (!rj->failed && !cancelled && rj->totalPages > rj->pagesSeen) {
    rj->incomplete = std::to_string(rj->pagesSeen) + " of its " + std::to_string(rj->totalPages) + " pages arrived";
    rj->failed = true;
    if (rj->run) rj->run->Discard();
  }
  if (!rj->failed && !cancelled && rj->copiesWanted > 1 && rj->copies) RasterJob_Copies(job, device, rj);
  else if (!rj->failed && !cancelled && rj->copiesWanted > 1 && papplJobGetFormat(job) &&
           (!strcmp(papplJobGetFormat(job), "image/pwg-raster") || !strcmp(papplJobGetFormat(job), "image/urf"))) {
    rj->failed = true;
    rj->failMessage = "The document could not be kept for its copies (is the temporary directory full?).";
  }
  if (rj->run) {
    if (cancelled) rj->run->Cancel();
    if (!rj->run->Finish() && !cancelled) rj->failed = true;
  }
  rj->run.reset();
  bool ok = !rj->failed && rj->cards > 0;
  if (!rj->incomplete.empty()) {
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The document did not arrive whole: %s", rj->incomplete.c_str());
    papplJobSetMessage(job, "The document did not arrive whole (%s); nothing was sent to the printer.",
                       rj->incomplete.c_str());
    papplJobSetReasons(job, PAPPL_JREASON_DOCUMENT_FORMAT_ERROR, PAPPL_JREASON_NONE);
  } else if (rj->failed && !cancelled) {
    papplJobSetMessage(job, "%s", rj->messages.errors > 0      ? rj->messages.lastError.c_str()
                                  : !rj->failMessage.empty() ? rj->failMessage.c_str()
                                                             : "Printing failed.");
    papplJobSetReasons(job, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
  } else if (cancelled) {
    papplJobSetMessage(job, "Cancelled.");
  } else if (rj->cards == 0) {
    papplJobSetMessage(job, "No pages found.");
  } else if (rj->messages.errors > 0) {
    papplJobSetMessage(job, "Error: %s", rj->messages.lastError.c_str());
  } else if (rj->messages.warnings > 0) {
    papplJobSetMessage(job, "%d card%s printed with warnings: %s", rj->cards, rj->cards == 1 ? "" : "s",
                       rj->messages.lastWarning.c_str());
  } else {
    papplJobSetMessage(job, "%d card%s printed.", rj->cards, rj->cards == 1 ? "" : "s");
  }
  if (ok && rj->messages.warnings > 0)
    papplJobSetReasons(job, PAPPL_JREASON_JOB_COMPLETED_WITH_WARNINGS, PAPPL_JREASON_NONE);
  else if (ok && !cancelled)  // PAPPL 1.3.1 answers a streamed Print-Job without job-state-reasons when none is set
    papplJobSetReasons(job, PAPPL_JREASON_JOB_COMPLETED_SUCCESSFULLY, PAPPL_JREASON_NONE);
  papplJobSetData(job, nullptr);
  delete rj;
  return ok || cancelled;
}
