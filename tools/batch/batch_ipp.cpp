// IPP requests of a batch: connection, printer status, Print-Job with a streamed document.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_ipp.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// Bytes read from the document and written to the request at a time.
constexpr size_t IPP_CHUNK = 64 * 1024;

// 'Ipp_Message()' - The printer's status message, or libcups' last error.
std::string Ipp_Message(ipp_t* response) {
  if (response) {
    ipp_attribute_t* a = ippFindAttribute(response, "status-message", IPP_TAG_TEXT);
    if (a && ippGetString(a, 0, nullptr)) return ippGetString(a, 0, nullptr);
    return ippErrorString(ippGetStatusCode(response));
  }
  return cupsLastErrorString();
}

// 'Ipp_IsTextOption()' - Options whose value is one text, never split at
// commas: the track data and the plug-in name.
bool Ipp_IsTextOption(const std::string& name) {
  return name.rfind("magEncodeData", 0) == 0 || name == "printerPlugin" ||
         (name.rfind("brellian-mag-track-", 0) == 0 && name.size() > 5 &&
          name.compare(name.size() - 5, 5, "-data") == 0) ||
         name == "brellian-plugin";
}

}  // namespace

TBatchPrinter::~TBatchPrinter() {
  if (http_) httpClose(http_);
}

// 'TBatchPrinter::Open()' - URI, host, port and resource of dest.
bool TBatchPrinter::Open(const std::string& dest, std::string* error) {
  if (dest.find("://") == std::string::npos) {
    if (dest.empty() || dest.find_first_of("/ \t#") != std::string::npos) {
      *error = "\"" + dest + "\" is neither a queue name nor a printer URI";
      return false;
    }
    host_ = cupsServer();
    port_ = ippPort();
    resource_ = "/printers/" + dest;
    uri_ = "ipp://localhost/printers/" + dest;
    encryption_ = cupsEncryption();
    return true;
  }
  char scheme[32], user[256], host[256], resource[1024];
  int port = 0;
  if (httpSeparateURI(HTTP_URI_CODING_ALL, dest.c_str(), scheme, sizeof scheme, user, sizeof user, host,
                      sizeof host, &port, resource, sizeof resource) < HTTP_URI_STATUS_OK ||
      (strcmp(scheme, "ipp") != 0 && strcmp(scheme, "ipps") != 0 && strcmp(scheme, "http") != 0 &&
       strcmp(scheme, "https") != 0)) {
    *error = "\"" + dest + "\" is not an ipp://, ipps://, http:// or https:// printer URI";
    return false;
  }
  uri_ = dest;
  host_ = host;
  port_ = port;
  resource_ = resource;
  encryption_ = (!strcmp(scheme, "ipps") || !strcmp(scheme, "https")) ? HTTP_ENCRYPTION_ALWAYS
                                                                       : HTTP_ENCRYPTION_IF_REQUESTED;
  return true;
}

// 'TBatchPrinter::Connection()' - The open connection, made when needed.
http_t* TBatchPrinter::Connection(std::string* error) {
  if (!http_) {
    http_ = httpConnect2(host_.c_str(), port_, nullptr, AF_UNSPEC, encryption_, 1, 30000, nullptr);
    if (!http_) *error = "cannot connect to " + host_ + ": " + cupsLastErrorString();
  }
  return http_;
}

// 'TBatchPrinter::Request()' - A request with printer-uri and the user.
ipp_t* TBatchPrinter::Request(ipp_op_t op) {
  ipp_t* request = ippNewRequest(op);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri_.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
  return request;
}

// 'TBatchPrinter::Do()' - Send request (freed here); the response when its
// status is a success, else null with *error.  A broken connection is
// dropped so that the next request connects again.
ipp_t* TBatchPrinter::Do(ipp_t* request, std::string* error) {
  http_t* http = Connection(error);
  if (!http) {
    ippDelete(request);
    return nullptr;
  }
  ipp_t* response = cupsDoRequest(http, request, resource_.c_str());
  if (!response || ippGetStatusCode(response) > IPP_STATUS_OK_EVENTS_COMPLETE) {
    *error = Ipp_Message(response);
    if (!response) {
      httpClose(http_);
      http_ = nullptr;
    }
    ippDelete(response);
    return nullptr;
  }
  return response;
}

// 'TBatchPrinter::Status()' - Get-Printer-Attributes, then the fault check.
void TBatchPrinter::Status(TPrinterStatus* status) {
  *status = TPrinterStatus();
  static const char* const kWanted[] = {"printer-state", "printer-state-reasons", "printer-state-message",
                                        "printer-is-accepting-jobs", "document-format-supported",
                                        "brellian-front-ribbon-supported",
                                        "pwg-raster-document-resolution-supported", "page-ranges-supported"};
  ipp_t* request = Request(IPP_OP_GET_PRINTER_ATTRIBUTES);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                static_cast<int>(sizeof kWanted / sizeof kWanted[0]), nullptr, kWanted);
  std::string error;
  ipp_t* response = Do(request, &error);
  if (!response) {
    status->fault = "the printer does not answer (" + error + ")";
    return;
  }
  status->reached = true;
  if (ipp_attribute_t* a = ippFindAttribute(response, "printer-state", IPP_TAG_ENUM))
    status->state = ippGetInteger(a, 0);
  if (ipp_attribute_t* a = ippFindAttribute(response, "printer-is-accepting-jobs", IPP_TAG_BOOLEAN))
    status->accepting = ippGetBoolean(a, 0) != 0;
  if (ipp_attribute_t* a = ippFindAttribute(response, "printer-state-reasons", IPP_TAG_KEYWORD))
    for (int i = 0; i < ippGetCount(a); ++i) status->reasons.push_back(ippGetString(a, i, nullptr));
  if (ipp_attribute_t* a = ippFindAttribute(response, "printer-state-message", IPP_TAG_TEXT))
    status->message = ippGetString(a, 0, nullptr) ? ippGetString(a, 0, nullptr) : "";
  if (ipp_attribute_t* a = ippFindAttribute(response, "document-format-supported", IPP_TAG_MIMETYPE))
    for (int i = 0; i < ippGetCount(a); ++i)
      if (!strcmp(ippGetString(a, i, nullptr), "application/pdf")) status->takesPdf = true;
  if (ipp_attribute_t* a = ippFindAttribute(response, "page-ranges-supported", IPP_TAG_BOOLEAN))
    status->pageRanges = ippGetBoolean(a, 0) != 0;
  status->appVocabulary = ippFindAttribute(response, "brellian-front-ribbon-supported", IPP_TAG_ZERO) != nullptr;
  if (ipp_attribute_t* a = ippFindAttribute(response, "pwg-raster-document-resolution-supported",
                                            IPP_TAG_RESOLUTION)) {
    ipp_res_t units;
    int y = 0;
    status->resolution = ippGetResolution(a, ippGetCount(a) - 1, &y, &units);
  }
  ippDelete(response);
  status->fault = Printer_Fault(*status);
}

// 'TBatchPrinter::Submit()' - Print-Job, its document streamed in chunks.
int32_t TBatchPrinter::Submit(const std::string& name, const TCardDocument& doc,
                              const std::vector<TJobOption>& options, int32_t* jobId, std::string* error) {
  *jobId = 0;
  error->clear();
  http_t* http = Connection(error);
  if (!http) return SUBMIT_RETRY;
  FILE* in = doc.command.empty() ? fopen(doc.path.c_str(), "rb") : popen(doc.command.c_str(), "r");
  if (!in) {
    *error = (doc.command.empty() ? doc.path : doc.command) + ": " + strerror(errno);
    return SUBMIT_REFUSED;
  }
  ipp_t* request = Request(IPP_OP_PRINT_JOB);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr, name.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format", nullptr, doc.format.c_str());
  for (const TJobOption& o : options) {
    if (Ipp_IsTextOption(o.name))
      ippAddString(request, IPP_TAG_JOB, IPP_TAG_TEXT, o.name.c_str(), nullptr, o.value.c_str());
    else
      cupsEncodeOption(request, IPP_TAG_JOB, o.name.c_str(), o.value.c_str());
  }
  if (doc.firstPage > 0 && doc.command.empty())
    ippAddRange(request, IPP_TAG_JOB, "page-ranges", doc.firstPage, doc.lastPage);
  bool ok = cupsSendRequest(http, request, resource_.c_str(), CUPS_LENGTH_VARIABLE) == HTTP_STATUS_CONTINUE;
  std::string buffer(IPP_CHUNK, '\0');
  size_t n;
  while (ok && (n = fread(&buffer[0], 1, buffer.size(), in)) > 0)
    ok = cupsWriteRequestData(http, buffer.data(), n) == HTTP_STATUS_CONTINUE;
  bool readFailed = ferror(in) != 0;
  int closed = doc.command.empty() ? fclose(in) : pclose(in);
  if (!doc.command.empty() && closed != 0) readFailed = true;
  ipp_t* response = cupsGetResponse(http, resource_.c_str());
  ippDelete(request);
  ipp_status_t code = response ? ippGetStatusCode(response) : IPP_STATUS_ERROR_SERVICE_UNAVAILABLE;
  if (!response || code > IPP_STATUS_OK_EVENTS_COMPLETE) {
    *error = Ipp_Message(response);
    if (!response) {
      httpClose(http_);
      http_ = nullptr;
    }
    ippDelete(response);
    return (code >= IPP_STATUS_ERROR_INTERNAL || code == IPP_STATUS_ERROR_BUSY) ? SUBMIT_RETRY : SUBMIT_REFUSED;
  }
  ipp_attribute_t* id = ippFindAttribute(response, "job-id", IPP_TAG_INTEGER);
  *jobId = id ? ippGetInteger(id, 0) : 0;
  ippDelete(response);
  if (*jobId <= 0) {
    *error = "the printer accepted the job without giving its id";
    return SUBMIT_RETRY;
  }
  if (readFailed) {
    std::string ignored;
    Cancel(*jobId, &ignored);
    *error = "the document could not be read whole, so job " + std::to_string(*jobId) + " was cancelled";
  }
  return SUBMIT_OK;
}
