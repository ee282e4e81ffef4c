// The filter's arguments and environment for a job, from its printer, accessories and card attributes.
// Copyright 2026 The rastertobrellian authors.
#include "app/filter_args.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace {

// 'Args_Env()' - The filter's environment: the spooler's variables
// (PPD, DEVICE_URI with the serial number, PRINTER) and a few of ours.
std::vector<std::string> Args_Env(const TAppModel& model, const TAccessories& acc, pappl_printer_t* printer,
                                  const char* contentType) {
  std::vector<std::string> env;
  std::string uri = papplPrinterGetDeviceURI(printer);
  uri = uri.substr(0, uri.find('?'));
  if (!acc.serial.empty()) uri += "?serial=" + acc.serial;
  env.push_back("PPD=" + App_PpdPath(model));
  env.push_back("DEVICE_URI=" + uri);
  env.push_back(std::string("PRINTER=") + papplPrinterGetName(printer));
  env.push_back(std::string("CONTENT_TYPE=") + contentType);
  env.push_back("FINAL_CONTENT_TYPE=application/vnd.brellian-job");
  for (const char* keep : {"PATH", "HOME", "LANG", "TMPDIR"}) {
    const char* v = getenv(keep);
    if (v) env.push_back(std::string(keep) + "=" + v);
  }
  return env;
}

}  // namespace

// 'Args_ForJob()' - Model, accessories, values, arguments, environment.
bool Args_ForJob(pappl_job_t* job, pappl_pr_options_t* options, const char* contentType, const TAppModel** model,
                 TAccessories* acc, TCardValues* values, TFilterArgs* args) {
  pappl_printer_t* printer = papplJobGetPrinter(job);
  *model = App_FindModel(papplPrinterGetDriverName(printer));
  if (!*model) return false;
  *acc = Acc_Load(printer, **model);
  ipp_t* attrs = papplPrinterGetDriverAttributes(printer);
  std::string refused;
  *values = JobOpt_Collect(**model, *acc, options->num_vendor, options->vendor, attrs, &refused);
  ippDelete(attrs);
  if (!refused.empty())
    papplLogJob(job, PAPPL_LOGLEVEL_WARN, "Values not offered by this printer, defaults used: %s", refused.c_str());
  std::string areasError;
  if (!JobOpt_CheckAreas(*values, &areasError)) {
    // A card without the areas asked for would be a wrong card: the job
    // is not printed, and says why.
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "%s", areasError.c_str());
    papplJobSetReasons(job, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
    papplJobSetMessage(job, "Not printed: %s.", areasError.c_str());
    return false;
  }
  std::string opts = JobOpt_FilterOptions(*acc, *values);
  const char* user = papplJobGetUsername(job);
  const char* title = papplJobGetName(job);
  args->filter = App_FilterPath();
  args->argv = {std::to_string(papplJobGetID(job)), user ? user : "guest", title ? title : "", "1", opts};
  args->env = Args_Env(**model, *acc, printer, contentType);
  papplLogJob(job, PAPPL_LOGLEVEL_DEBUG, "Filter options: %s", opts.c_str());
  papplLogJob(job, PAPPL_LOGLEVEL_DEBUG, "Filter environment: %s %s %s", args->env[0].c_str(), args->env[1].c_str(),
              args->env[2].c_str());
  return true;
}
