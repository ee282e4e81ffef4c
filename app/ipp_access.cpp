// The IPP operation callback: who may change printers, the system and other users' jobs, and custom-areas checks.
// Copyright 2026 The rastertobrellian authors.
#include <map>
#include <string>

#include "job_options.h"
#include "web_access.h"
#include "web_security.h"

namespace {

// 'Ipp_ChangesState()' - Operations only an administrator may send.
bool Ipp_ChangesState(ipp_op_t op) {
  switch (static_cast<int>(op)) {
    case IPP_OP_CREATE_PRINTER:
    case IPP_OP_DELETE_PRINTER:
    case IPP_OP_SET_PRINTER_ATTRIBUTES:
    case IPP_OP_SET_SYSTEM_ATTRIBUTES:
    case IPP_OP_PAUSE_PRINTER:
    case IPP_OP_RESUME_PRINTER:
    case IPP_OP_PAUSE_ALL_PRINTERS:
    case IPP_OP_RESUME_ALL_PRINTERS:
    case IPP_OP_SHUTDOWN_ALL_PRINTERS:
    case IPP_OP_DISABLE_PRINTER:
    case IPP_OP_ENABLE_PRINTER:
    case IPP_OP_DISABLE_ALL_PRINTERS:
    case IPP_OP_ENABLE_ALL_PRINTERS:
    case IPP_OP_HOLD_NEW_JOBS:
    case IPP_OP_RELEASE_HELD_NEW_JOBS:
    case IPP_OP_CANCEL_JOBS:
    case IPP_OP_CANCEL_CURRENT_JOB:
    case IPP_OP_PURGE_JOBS:
    case IPP_OP_RESTART_PRINTER:
    case IPP_OP_SHUTDOWN_PRINTER:
    case IPP_OP_STARTUP_PRINTER:
    case IPP_OP_REGISTER_OUTPUT_DEVICE:
    case IPP_OP_CUPS_ADD_MODIFY_PRINTER:
    case IPP_OP_CUPS_DELETE_PRINTER:
      return true;
    default:
      return false;
  }
}

// 'Ipp_TouchesAJob()' - Operations on one job, allowed to its owner.
bool Ipp_TouchesAJob(ipp_op_t op) {
  return op == IPP_OP_CANCEL_JOB || op == IPP_OP_HOLD_JOB || op == IPP_OP_RELEASE_JOB ||
         op == IPP_OP_RESTART_JOB || op == IPP_OP_SET_JOB_ATTRIBUTES || op == IPP_OP_CANCEL_MY_JOBS ||
         op == IPP_OP_CLOSE_JOB || op == IPP_OP_SEND_DOCUMENT;
}

// 'Ipp_Refuse()' - Answer with the status of the access check.
bool Ipp_Refuse(pappl_client_t* client) {
  http_status_t status = papplClientIsAuthorized(client);
  if (status == HTTP_STATUS_CONTINUE) status = HTTP_STATUS_FORBIDDEN;
  papplClientRespond(client, status, nullptr, nullptr, 0, 0);
  return true;
}

// 'Ipp_IsOwner()' - The job named by job-id (or job-uri) belongs to the
// requesting user name.  Cancel-My-Jobs acts on the requester's own jobs.
bool Ipp_IsOwner(pappl_client_t* client, ipp_t* request) {
  if (papplClientGetOperation(client) == IPP_OP_CANCEL_MY_JOBS) return true;
  pappl_printer_t* printer = papplClientGetPrinter(client);
  ipp_attribute_t* id = ippFindAttribute(request, "job-id", IPP_TAG_INTEGER);
  if (!printer || !id) return true;  // PAPPL answers the malformed request itself
  pappl_job_t* job = papplPrinterFindJob(printer, ippGetInteger(id, 0));
  if (!job) return true;
  ipp_attribute_t* user = ippFindAttribute(request, "requesting-user-name", IPP_TAG_NAME);
  const char* owner = papplJobGetUsername(job);
  return user && owner && std::string(ippGetString(user, 0, nullptr)) == owner;
}

// 'Ipp_BadCustomAreas()' - A brellian-*-custom-areas text of the request
// that the filter could not use: *error says why.
bool Ipp_BadCustomAreas(ipp_t* request, std::string* error) {
  for (ipp_attribute_t* a = ippFirstAttribute(request); a; a = ippNextAttribute(request)) {
    const char* name = ippGetName(a);
    if (!name) continue;
    std::string n = name;
    int side = n == "brellian-front-custom-areas" ? 0 : n == "brellian-back-custom-areas" ? 1 : -1;
    if (side < 0) continue;
    const char* text = ippGetString(a, 0, nullptr);
    std::map<std::string, std::string> areas;
    std::string why;
    if (text && !JobOpt_ParseAreas(text, side, &areas, &why)) {
      *error = "\"" + n + "\" cannot be used: " + why + " (at most 5 areas per group).";
      return true;
    }
  }
  return false;
}

}  // namespace

// 'Ipp_AccessCallback()' - Refuse what this client may not do.
bool Ipp_AccessCallback(pappl_client_t* client, void*) {
  ipp_op_t op = papplClientGetOperation(client);
  ipp_t* request = papplClientGetRequest(client);
  if (Ipp_ChangesState(op) && !Web_MayChange(client)) return Ipp_Refuse(client);
  if (Ipp_TouchesAJob(op) && !Web_MayChange(client) && !Ipp_IsOwner(client, request))
    return Ipp_Refuse(client);
  std::string error;
  if ((op == IPP_OP_PRINT_JOB || op == IPP_OP_CREATE_JOB || op == IPP_OP_VALIDATE_JOB ||
       op == IPP_OP_SET_PRINTER_ATTRIBUTES) &&
      Ipp_BadCustomAreas(request, &error)) {
    papplClientRespondIPP(client, IPP_STATUS_ERROR_ATTRIBUTES_OR_VALUES, "%s", error.c_str());
    return true;
  }
  return false;
}
