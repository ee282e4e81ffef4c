// IPP requests about a batch's jobs: their states, a job found by its name, Cancel-Job.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "tools/batch/batch_ipp.h"

// 'TBatchPrinter::Job()' - Get-Job-Attributes: state and reasons.
bool TBatchPrinter::Job(int32_t jobId, TJobStatus* status, std::string* error) {
  *status = TJobStatus();
  static const char* const kWanted[] = {"job-state", "job-state-reasons"};
  ipp_t* request = Request(IPP_OP_GET_JOB_ATTRIBUTES);
  ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", jobId);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 2, nullptr, kWanted);
  ipp_t* response = Do(request, error);
  if (!response) return cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND;  // known stays false
  status->known = true;
  if (ipp_attribute_t* a = ippFindAttribute(response, "job-state", IPP_TAG_ENUM)) status->state = ippGetInteger(a, 0);
  if (ipp_attribute_t* a = ippFindAttribute(response, "job-state-reasons", IPP_TAG_KEYWORD))
    for (int i = 0; i < ippGetCount(a); ++i)
      status->reasons += (i ? ", " : "") + std::string(ippGetString(a, i, nullptr));
  ippDelete(response);
  return true;
}

// 'TBatchPrinter::FindJob()' - Get-Jobs of every state, matched by name.
bool TBatchPrinter::FindJob(const std::string& name, int32_t* jobId, std::string* error) {
  *jobId = 0;
  static const char* const kWanted[] = {"job-id", "job-name"};
  ipp_t* request = Request(IPP_OP_GET_JOBS);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "which-jobs", nullptr, "all");
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 2, nullptr, kWanted);
  ipp_t* response = Do(request, error);
  if (!response) return false;
  int32_t id = 0;
  bool match = false;
  for (ipp_attribute_t* a = ippFirstAttribute(response);; a = ippNextAttribute(response)) {
    const char* attr = a ? ippGetName(a) : nullptr;
    if (!attr) {  // a separator or the end: one job's attributes are complete
      if (match && id > 0) *jobId = id;
      id = 0;
      match = false;
      if (!a) break;
    } else if (!strcmp(attr, "job-id")) {
      id = ippGetInteger(a, 0);
    } else if (!strcmp(attr, "job-name")) {
      const char* value = ippGetString(a, 0, nullptr);
      match = value && name == value;
    }
  }
  ippDelete(response);
  return true;
}

// 'TBatchPrinter::Cancel()' - Cancel-Job.
bool TBatchPrinter::Cancel(int32_t jobId, std::string* error) {
  ipp_t* request = Request(IPP_OP_CANCEL_JOB);
  ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", jobId);
  ipp_t* response = Do(request, error);
  ippDelete(response);
  return response != nullptr;
}
