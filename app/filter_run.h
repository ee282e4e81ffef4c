// One run of rastertobrellian as a child process: raster in, job stream out to the device, messages to the job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/raster.h>
#include <pappl/pappl.h>
#include <sys/types.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "app/child_spawn.h"

// What a filter run is started with.
struct TFilterArgs {
  std::string filter;                // path of rastertobrellian
  std::string keepRaster;            // when set, a copy of the raster stream goes to this file
  std::vector<std::string> argv;     // job-id, user, title, copies, options
  std::vector<std::string> env;      // "NAME=value" entries
  // Filters run before rastertobrellian, each reading the one before; the
  // first reads inputFile and the last one's output is the filter's
  // input (no raster is then written through WriteHeader/WriteRow).
  std::vector<TChildCommand> upstream;
  std::string inputFile;
};

// The messages a filter run left for its job.
struct TFilterMessages {
  int32_t warnings = 0;
  int32_t errors = 0;
  std::string lastWarning;
  std::string lastError;
};

// A running filter.  Start, feed pages, Finish; the stream it writes is
// collected by a thread of its own while it runs (at most one card's
// stream) and sent to the device once the filter has ended well.
class TFilterRun {
 public:
  TFilterRun(pappl_job_t* job, pappl_device_t* device, TFilterMessages* messages);
  ~TFilterRun();

  // 'Start()' - Spawn the filter; false (and a job log line) on failure.
  bool Start(const TFilterArgs& args);
  // 'WriteHeader()'/'WriteRow()' - One page header, one row of pixels.
  // False once the filter no longer takes input.
  bool WriteHeader(cups_page_header2_t* header);
  bool WriteRow(const unsigned char* row, unsigned bytes);
  // 'Cancel()' - End the stream as the filter does on a cancel: SIGTERM.
  void Cancel();
  // 'Discard()' - Kill the filter (SIGKILL): none of its stream reaches
  // the device.  For a document that did not arrive whole.
  void Discard();
  // 'Finish()' - Close the input, wait for the child, and only then send
  // its stream to the device: when the filter ended with status 0 (a
  // cancelled run included, which ends the stream as designed) and the
  // run was not discarded.  A failed run's stream is never sent.  True
  // when the filter ended with status 0 and every byte reached the device.
  bool Finish();
  // 'InputBroken()' - The filter no longer takes input (it has ended).
  bool InputBroken() const { return inputBroken_; }

 private:
  static ssize_t WriteRaster(void* ctx, unsigned char* buffer, size_t bytes);
  void Pump();
  void HandleLine(const std::string& line);

  pappl_job_t* job_;
  pappl_device_t* device_;
  TFilterMessages* messages_;
  pid_t pid_ = -1;
  int inFd_ = -1, outFd_ = -1, errFd_ = -1, keepFd_ = -1;
  cups_raster_t* raster_ = nullptr;
  std::thread pump_;
  std::string held_;  // the filter's standard output, sent by Finish()
  std::atomic<bool> discarded_{false};
  std::vector<pid_t> upstream_;
  bool upstreamFailed_ = false;
  bool deviceFailed_ = false;
  bool cancelled_ = false;
  bool inputBroken_ = false;
};
