// PAPPL raster callbacks: pages in, one filter run per card, the job's state from the filter's messages.
// Copyright 2026 The rastertobrellian authors.
//
// A job's pages are written as a CUPS raster stream into the standard
// input of rastertobrellian, which prints one card per run.  Copies and
// multi-card documents arrive as more pages than one card takes, so when a
// card's pages are complete and another page comes, the run is finished
// and a new one started for the next card.
#include "app/raster_job.h"

#include <memory>
#include <string>

#include "app/accessories.h"
#include "app/filter_run.h"
#include "app/job_options.h"
#include "app/models.h"

extern char** environ;

namespace {

// What a job carries between the callbacks.
struct TRasterJob {
  const TAppModel* model = nullptr;
  TAccessories acc;
  TCardValues values;
  TFilterArgs args;
  TFilterMessages messages;
  std::unique_ptr<TFilterRun> run;
  int pagesInCard = 0;   // pages given to the current run
  int cardPages = 0;     // pages the current card takes
  int cards = 0;
  bool failed = false;
};

// 'RasterJob_Env()' - The filter's environment: the spooler's variables
// (PPD, DEVICE_URI with the serial number, PRINTER) and a few of ours.
std::vector<std::string> RasterJob_Env(const TAppModel& model, const TAccessories& acc, pappl_printer_t* printer) {
  std::vector<std::string> env;
  std::string uri = papplPrinterGetDeviceURI(printer);
  uri = uri.substr(0, uri.find('?'));
  if (!acc.serial.empty()) uri += "?serial=" + acc.serial;
  env.push_back("PPD=" + App_PpdPath(model));
  env.push_back("DEVICE_URI=" + uri);
  env.push_back(std::string("PRINTER=") + papplPrinterGetName(printer));
  env.push_back("CONTENT_TYPE=application/vnd.cups-raster");
  env.push_back("FINAL_CONTENT_TYPE=application/vnd.brellian-job");
  for (const char* keep : {"PATH", "HOME", "LANG", "TMPDIR"}) {
    const char* v = getenv(keep);
    if (v) env.push_back(std::string(keep) + "=" + v);
  }
  return env;
}

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
    papplJobSetMessage(job, "Unable to start the card filter");
    return false;
  }
  return true;
}

}  // namespace

// 'RasterJob_StartJob()' - Options of the job; the first run starts with the first page.
bool RasterJob_StartJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t*) {
  pappl_printer_t* printer = papplJobGetPrinter(job);
  const TAppModel* model = App_FindModel(papplPrinterGetDriverName(printer));
  if (!model) return false;
  TRasterJob* rj = new TRasterJob;
  rj->model = model;
  rj->acc = Acc_Load(printer, *model);
  ipp_t* attrs = papplPrinterGetDriverAttributes(printer);
  std::string refused;
  rj->values = JobOpt_Collect(*model, rj->acc, options->num_vendor, options->vendor, attrs, &refused);
  ippDelete(attrs);
  if (!refused.empty())
    papplLogJob(job, PAPPL_LOGLEVEL_WARN, "Values not offered by this printer, defaults used: %s", refused.c_str());
  std::string areasError;
  if (!JobOpt_CheckAreas(rj->values, &areasError)) {
    // A card without the areas asked for would be a wrong card: the job
    // is not printed, and says why.
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "%s", areasError.c_str());
    papplJobSetReasons(job, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
    papplJobSetMessage(job, "Not printed: %s.", areasError.c_str());
    delete rj;
    return false;
  }
  std::string opts = JobOpt_FilterOptions(rj->acc, rj->values);
  const char* user = papplJobGetUsername(job);
  const char* title = papplJobGetName(job);
  rj->args.filter = App_FilterPath();
  rj->args.argv = {std::to_string(papplJobGetID(job)), user ? user : "guest", title ? title : "", "1", opts};
  rj->args.env = RasterJob_Env(*model, rj->acc, printer);
  papplLogJob(job, PAPPL_LOGLEVEL_DEBUG, "Filter options: %s", opts.c_str());
  papplLogJob(job, PAPPL_LOGLEVEL_DEBUG, "Filter environment: %s %s %s", rj->args.env[0].c_str(),
              rj->args.env[1].c_str(), rj->args.env[2].c_str());
  papplJobSetData(job, rj);
  return true;
}

// 'RasterJob_StartPage()' - A new card when the current one has all its pages.
bool RasterJob_StartPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj || rj->failed) return false;
  if (papplJobIsCanceled(job)) return false;
  cups_page_header2_t* h = &options->header;
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

// 'RasterJob_WriteLine()' - One row; a cancel ends the run with SIGTERM.
bool RasterJob_WriteLine(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t*, unsigned, const unsigned char* line) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj || !rj->run || rj->failed) return false;
  if (papplJobIsCanceled(job)) {
    rj->run->Cancel();
    return false;
  }
  if (!rj->run->WriteRow(line, options->header.cupsBytesPerLine)) rj->failed = true;
  return !rj->failed;
}

// 'RasterJob_EndPage()' - Nothing to do but notice a cancel.
bool RasterJob_EndPage(pappl_job_t* job, pappl_pr_options_t*, pappl_device_t*, unsigned) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj) return false;
  if (papplJobIsCanceled(job) && rj->run) rj->run->Cancel();
  return !rj->failed;
}

// 'RasterJob_EndJob()' - Finish the last run; the job's final message.
bool RasterJob_EndJob(pappl_job_t* job, pappl_pr_options_t*, pappl_device_t*) {
  TRasterJob* rj = static_cast<TRasterJob*>(papplJobGetData(job));
  if (!rj) return false;
  bool cancelled = papplJobIsCanceled(job);
  if (rj->run) {
    if (cancelled) rj->run->Cancel();
    if (!rj->run->Finish() && !cancelled) rj->failed = true;
  }
  rj->run.reset();
  bool ok = !rj->failed && rj->cards > 0;
  if (rj->failed && !cancelled)
    papplJobSetMessage(job, "%s", rj->messages.errors > 0 ? rj->messages.lastError.c_str() : "Printing failed.");
  else if (cancelled)
    papplJobSetMessage(job, "Cancelled.");
  else if (rj->cards == 0)
    papplJobSetMessage(job, "No pages found.");
  else if (rj->messages.errors > 0)
    papplJobSetMessage(job, "Error: %s", rj->messages.lastError.c_str());
  else if (rj->messages.warnings > 0)
    papplJobSetMessage(job, "%d card%s printed with warnings: %s", rj->cards, rj->cards == 1 ? "" : "s",
                       rj->messages.lastWarning.c_str());
  else
    papplJobSetMessage(job, "%d card%s printed.", rj->cards, rj->cards == 1 ? "" : "s");
  if (ok && rj->messages.warnings > 0)
    papplJobSetReasons(job, PAPPL_JREASON_JOB_COMPLETED_WITH_WARNINGS, PAPPL_JREASON_NONE);
  else if (ok && !cancelled)  // PAPPL 1.3.1 answers a streamed Print-Job without job-state-reasons when none is set
    papplJobSetReasons(job, PAPPL_JREASON_JOB_COMPLETED_SUCCESSFULLY, PAPPL_JREASON_NONE);
  papplJobSetData(job, nullptr);
  delete rj;
  return ok || cancelled;
}
