// The printer side of a batch: a CUPS queue or an IPP printer URI, reached through libcups' IPP client API.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/cups.h>

#include <cstdint>
#include <string>
#include <vector>

// One option of a job: name and value as given with -o or in a CSV column.
struct TJobOption {
  std::string name;
  std::string value;
};

// What the printer says about itself before each card.
struct TPrinterStatus {
  bool reached = false;        // the printer answered
  int state = 0;               // printer-state: 3 idle, 4 processing, 5 stopped
  bool accepting = true;       // printer-is-accepting-jobs
  std::vector<std::string> reasons;
  std::string message;         // printer-state-message
  std::string fault;           // empty, or why no card may be sent now
  bool appVocabulary = false;  // the printer has the brellian-... card attributes
  bool takesPdf = false;       // application/pdf in document-format-supported
  bool pageRanges = false;     // page-ranges-supported is true
  int resolution = 0;          // dots per inch of the printer's raster, 0 when unknown
};

// A job's state as the printer tells it.
struct TJobStatus {
  bool known = false;  // the printer knows the job
  int state = 0;       // job-state: 3 pending ... 7 cancelled, 8 aborted, 9 completed
  std::string reasons; // job-state-reasons, joined with ", "
};

// The document of one card: a file, whole or some of its pages, or a
// command whose standard output is the document (a PDF turned into raster).
struct TCardDocument {
  std::string path;
  std::string format;    // MIME type
  int32_t firstPage = 0; // 0: the whole file
  int32_t lastPage = 0;
  std::string command;   // when not empty: run with the shell, its output is sent
};

// Results of TBatchPrinter::Submit.
constexpr int32_t SUBMIT_OK = 0;
constexpr int32_t SUBMIT_RETRY = 1;
constexpr int32_t SUBMIT_REFUSED = 2;

// A connection to the destination.  A name without "://" is a queue of the
// CUPS server that libcups uses (CUPS_SERVER, client.conf, the local one);
// a URI (ipp://, ipps://, http://) is any IPP printer.
class TBatchPrinter {
 public:
  TBatchPrinter() = default;
  ~TBatchPrinter();
  TBatchPrinter(const TBatchPrinter&) = delete;
  TBatchPrinter& operator=(const TBatchPrinter&) = delete;

  // 'Open()' - Work out the URI and resource of dest; connects lazily.
  bool Open(const std::string& dest, std::string* error);
  // 'Status()' - Printer state, reasons and, when not ready, *fault set.
  void Status(TPrinterStatus* status);
  // 'Submit()' - One Print-Job request named name with the document and
  // options: SUBMIT_OK with *jobId (a document that could not be read whole
  // has its job cancelled at once, and *error says so), SUBMIT_RETRY when
  // the printer was busy or the connection failed (a job may still have
  // been made: look for it by name), SUBMIT_REFUSED when the printer
  // refused the request (*error carries its message).
  int32_t Submit(const std::string& name, const TCardDocument& doc, const std::vector<TJobOption>& options,
              int32_t* jobId, std::string* error);
  // 'Job()' - The state of job jobId.
  bool Job(int32_t jobId, TJobStatus* status, std::string* error);
  // 'FindJob()' - The id of a job named name, 0 when there is none.
  bool FindJob(const std::string& name, int32_t* jobId, std::string* error);
  // 'Cancel()' - Cancel job jobId.
  bool Cancel(int32_t jobId, std::string* error);
  const std::string& Uri() const { return uri_; }

 private:
  http_t* Connection(std::string* error);
  ipp_t* Request(ipp_op_t op);
  ipp_t* Do(ipp_t* request, std::string* error);

  std::string uri_;
  std::string host_;
  int port_ = 0;
  std::string resource_;
  http_encryption_t encryption_ = HTTP_ENCRYPTION_IF_REQUESTED;
  http_t* http_ = nullptr;
};

// 'Printer_Fault()' - Why no card may be sent, from the printer's state,
// reasons and message; empty when it may.
std::string Printer_Fault(const TPrinterStatus& status);
