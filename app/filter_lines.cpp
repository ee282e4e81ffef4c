// A filter run's standard error: each line becomes a job log line, message or reason.
// Copyright 2026 The rastertobrellian authors.
#include <string>

#include "app/filter_run.h"

namespace {

// 'Run_Clean()' - A filter line made safe for the job's message: control
// characters become spaces, at most 200 bytes.
std::string Run_Clean(const std::string& s) {
  std::string out = s.substr(0, 200);
  for (char& c : out)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
  return out;
}

}  // namespace

// 'TFilterRun::HandleLine()' - "PAGE:", "INFO:", "WARNING:", "ERROR:".
void TFilterRun::HandleLine(const std::string& raw) {
  std::string line = Run_Clean(raw);
  auto text = [&](size_t prefix) {
    size_t start = line.find_first_not_of(' ', prefix);
    return start == std::string::npos ? std::string() : line.substr(start);
  };
  if (line.compare(0, 5, "PAGE:") == 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Filter page %s", text(5).c_str());
  } else if (line.compare(0, 5, "INFO:") == 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_INFO, "%s", text(5).c_str());
    if (messages_->warnings == 0 && messages_->errors == 0) papplJobSetMessage(job_, "%s", text(5).c_str());
  } else if (line.compare(0, 8, "WARNING:") == 0) {
    messages_->warnings++;
    messages_->lastWarning = text(8);
    papplLogJob(job_, PAPPL_LOGLEVEL_WARN, "%s", text(8).c_str());
    papplJobSetReasons(job_, PAPPL_JREASON_WARNINGS_DETECTED, PAPPL_JREASON_NONE);
    if (messages_->errors == 0) papplJobSetMessage(job_, "Warning: %s", text(8).c_str());
  } else if (line.compare(0, 6, "ERROR:") == 0) {
    messages_->errors++;
    messages_->lastError = text(6);
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "%s", text(6).c_str());
    papplJobSetReasons(job_, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
    papplJobSetMessage(job_, "Error: %s", text(6).c_str());
  } else if (!line.empty()) {
    papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Filter: %s", line.c_str());
  }
}
