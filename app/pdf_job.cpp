// PDF documents: printed through the spooler's own PDF filters and ghostscript, then rastertobrellian.
// Copyright 2026 The rastertobrellian authors.
#include "app/pdf_job.h"

#include <ftw.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/filter_args.h"
#include "app/filter_run.h"

// 'Pdf_FilterDir()' - The upstream filters' directory.
const char* Pdf_FilterDir() {
  const char* dir = getenv("BRELLIAN_CUPS_FILTER_DIR");
  return dir && *dir ? dir : BRELLIAN_APP_CUPS_FILTER_DIR;
}

namespace {

// 'Pdf_Stage()' - One upstream filter with the filter's arguments and an
// environment whose CONTENT_TYPE is what it reads and TMPDIR is tmp.
TChildCommand Pdf_Stage(const char* name, const TFilterArgs& args, const char* contentType, const std::string& tmp) {
  TChildCommand cmd;
  cmd.path = std::string(Pdf_FilterDir()) + "/" + name;
  cmd.argv.push_back(name);
  cmd.argv.insert(cmd.argv.end(), args.argv.begin(), args.argv.end());
  for (const std::string& e : args.env)
    if (e.compare(0, 7, "TMPDIR=") != 0)
      cmd.env.push_back(e.compare(0, 13, "CONTENT_TYPE=") == 0 ? std::string("CONTENT_TYPE=") + contentType : e);
  cmd.env.push_back("TMPDIR=" + tmp);
  return cmd;
}

// 'Pdf_RemoveEntry()' - nftw callback: remove one entry.
int Pdf_RemoveEntry(const char* path, const struct stat*, int, struct FTW*) {
  remove(path);
  return 0;
}

// 'Pdf_ScratchDir()' - A new directory for the upstream filters' temporary
// files (pdftopdf copies its input, ghostscript writes scratch files),
// owned by the children's user, mode 0700, under $TMPDIR (else /tmp).
// Empty on failure.
std::string Pdf_ScratchDir() {
  const char* tmp = getenv("TMPDIR");
  std::string path = std::string(tmp && *tmp ? tmp : "/tmp") + "/brellian-pdf-XXXXXX";
  std::vector<char> name(path.begin(), path.end());
  name.push_back('\0');
  if (!mkdtemp(name.data())) return std::string();
  uid_t uid;
  gid_t gid;
  if (Child_User(&uid, &gid) && chown(name.data(), uid, gid) != 0) {
    rmdir(name.data());
    return std::string();
  }
  return name.data();
}

}  // namespace

// 'Pdf_PrintFile()' - One chain per copy.
bool Pdf_PrintFile(pappl_job_t* job, pappl_device_t* device, void*) {
  pappl_pr_options_t* options = papplJobCreatePrintOptions(job, 0, true);
  const TAppModel* model = nullptr;
  TAccessories acc;
  TCardValues values;
  TFilterArgs args;
  bool ready = Args_ForJob(job, options, "application/vnd.cups-raster", &model, &acc, &values, &args);
  int copies = options->copies > 1 ? options->copies : 1;
  papplJobDeletePrintOptions(options);
  if (!ready) return false;
  args.inputFile = papplJobGetFilename(job);
  std::string scratch = Pdf_ScratchDir();
  if (scratch.empty()) {
    papplJobSetMessage(job, "Unable to create a temporary directory for the PDF filters.");
    return false;
  }
  args.upstream = {Pdf_Stage("pdftopdf", args, "application/pdf", scratch),
                   Pdf_Stage("gstoraster", args, "application/vnd.cups-pdf", scratch)};
  TFilterMessages messages;
  bool ok = true;
  int cards = 0;
  for (int copy = 1; copy <= copies && ok && !papplJobIsCanceled(job); ++copy) {
    TFilterRun run(job, device, &messages);
    if (!run.Start(args)) {
      ok = false;
      break;
    }
    ok = run.Finish() || papplJobIsCanceled(job);
    if (ok) cards++;
  }
  nftw(scratch.c_str(), Pdf_RemoveEntry, 8, FTW_DEPTH | FTW_PHYS);
  if (papplJobIsCanceled(job)) {
    papplJobSetMessage(job, "Cancelled.");
    return true;
  }
  if (!ok) {
    papplJobSetMessage(job, "%s", messages.errors > 0 ? messages.lastError.c_str() : "Printing failed.");
    papplJobSetReasons(job, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
    return false;
  }
  if (messages.warnings > 0) {
    papplJobSetMessage(job, "%d card%s printed with warnings: %s", cards, cards == 1 ? "" : "s",
                       messages.lastWarning.c_str());
    papplJobSetReasons(job, PAPPL_JREASON_JOB_COMPLETED_WITH_WARNINGS, PAPPL_JREASON_NONE);
  } else {
    papplJobSetMessage(job, "%d card%s printed.", cards, cards == 1 ? "" : "s");
  }
  return true;
}
