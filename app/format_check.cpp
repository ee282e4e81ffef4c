// Documents the printer cannot print are refused at submission, with client-error-document-format-not-supported.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL 1.3.1 checks document-format against the printer's attributes of
// its own, where document-format-supported is not (the printer's list is
// among its driver attributes), so every format was accepted and an
// unprintable one then aborted.  It does find the format of data sent as
// "application/octet-stream" from its first bytes before it checks.  The
// application replaces that check, _papplJobValidateDocumentAttributes()
// (exported by libpappl 1.3.1 and called through its procedure linkage
// table, as app/stream_queue.cpp does for another function): PAPPL's own
// runs first, then the format is held to the printer's
// document-format-supported:
// - Print-Job and Send-Document: the format PAPPL found in the data, else
//   the one sent; data sent as octet-stream whose format PAPPL did not
//   recognise is refused too, since nothing could print it;
// - Validate-Job and Create-Job carry no data: a format named there is
//   checked, octet-stream is accepted (its data is checked when it comes).
#include "app/format_check.h"

#include <dlfcn.h>

#include <cstring>
#include <mutex>

namespace {

const char* const OCTET_STREAM = "application/octet-stream";

// 'Format_Name()' - A format's name in plain words, else its type.
std::string Format_Name(const char* format) {
  static const char* const names[][2] = {{"application/pdf", "PDF"},
                                         {"image/pwg-raster", "PWG raster"},
                                         {"image/urf", "Apple raster"},
                                         {"image/jpeg", "JPEG"},
                                         {"image/png", "PNG"},
                                         {"application/vnd.brellian-job", "card job streams"}};
  for (const auto& n : names)
    if (!strcmp(format, n[0])) return n[1];
  return format;
}

// 'Format_Listed()' - The formats the printer prints, for the message.
std::string Format_Listed(ipp_attribute_t* supported) {
  std::string out;
  for (int i = 0; i < ippGetCount(supported); ++i) {
    const char* f = ippGetString(supported, i, nullptr);
    if (!f || !strcmp(f, OCTET_STREAM)) continue;
    out += (out.empty() ? "" : ", ") + Format_Name(f);
  }
  return out;
}

// 'Format_Message()' - The refusal, cut to the 255 bytes of an IPP
// status-message.
std::string Format_Message(const std::string& what, ipp_attribute_t* supported) {
  std::string text = what + " This printer prints " + Format_Listed(supported) +
                     "; print other documents through a CUPS queue, which converts them.";
  return text.size() > 255 ? text.substr(0, 255) : text;
}

}  // namespace

// 'Format_Refusal()' - The rules at the head of this file.
std::string Format_Refusal(ipp_attribute_t* supported, ipp_op_t op, const char* sent, const char* detected) {
  if (!supported) return "";
  if (!sent) sent = OCTET_STREAM;
  bool withData = op == IPP_OP_PRINT_JOB || op == IPP_OP_SEND_DOCUMENT;
  if (withData && !strcmp(sent, OCTET_STREAM) && !detected)
    return Format_Message("The document's format was not recognised, so it cannot be printed.", supported);
  const char* format = withData && detected ? detected : sent;
  if (!strcmp(format, OCTET_STREAM)) return "";
  if (ippContainsString(supported, format)) return "";
  return Format_Message(std::string("Documents of the format ") + format + " cannot be printed.", supported);
}

#ifdef BRELLIAN_PAPPL_1_3

using TValidateDocument = bool (*)(pappl_client_t*);

// 'Format_Supported()' - The printers' document-format-supported, read
// from the first printer asked and kept: every printer of the application
// prints the same formats (the driver's format and the registered
// filters), and a copy of a printer's attributes per request would take
// the printer's lock again and again while jobs arrive.
ipp_attribute_t* Format_Supported(pappl_printer_t* printer) {
  static std::mutex lock;
  static ipp_t* kept = nullptr;
  static ipp_attribute_t* supported = nullptr;
  std::lock_guard<std::mutex> guard(lock);
  if (!kept) {
    ipp_t* attrs = papplPrinterGetDriverAttributes(printer);
    ipp_attribute_t* found = ippFindAttribute(attrs, "document-format-supported", IPP_TAG_MIMETYPE);
    if (found) {
      kept = ippNew();
      supported = ippCopyAttribute(kept, found, 0);
    }
    ippDelete(attrs);
  }
  return supported;
}

// '_papplJobValidateDocumentAttributes()' - PAPPL's checks of the
// document attributes, then the format against the printer's list (see
// the head of this file).  On a refusal the response carries the status,
// the message and the document-format in the unsupported group; the
// caller then drops the document's data, as after PAPPL's own refusals.
extern "C" bool _papplJobValidateDocumentAttributes(pappl_client_t* client) {
  static TValidateDocument pappl =
      reinterpret_cast<TValidateDocument>(dlsym(RTLD_NEXT, "_papplJobValidateDocumentAttributes"));
  if (!pappl(client)) return false;
  ipp_t* request = papplClientGetRequest(client);
  pappl_printer_t* printer = papplClientGetPrinter(client);
  if (!request || !printer) return true;
  ipp_attribute_t* sentAttr = ippFindAttribute(request, "document-format", IPP_TAG_MIMETYPE);
  const char* sent = ippGetString(sentAttr, 0, nullptr);
  const char* detected = ippGetString(ippFindAttribute(request, "document-format-detected", IPP_TAG_MIMETYPE), 0,
                                      nullptr);
  std::string refusal = Format_Refusal(Format_Supported(printer), ippGetOperation(request), sent, detected);
  if (refusal.empty()) return true;
  papplLogClient(client, PAPPL_LOGLEVEL_INFO, "Refused: %s", refusal.c_str());
  papplClientRespondIPP(client, IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED, "%s", refusal.c_str());
  if (sentAttr) {
    ipp_attribute_t* copy = ippCopyAttribute(papplClientGetResponse(client), sentAttr, 0);
    ippSetGroupTag(papplClientGetResponse(client), &copy, IPP_TAG_UNSUPPORTED_GROUP);
  }
  return false;
}

// 'Format_Active()' - Built against PAPPL 1.3.
bool Format_Active() { return true; }

#else

// 'Format_Active()' - Another PAPPL: its own check stays.
bool Format_Active() { return false; }

#endif
