// One filter run against a slow reader, interrupted by a signal while it
// writes its job command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <map>
#include <string>

struct TSignalTrial {
  std::string rasterPath;                   // the job's raster file (seventh argument)
  std::string options;                      // the options argument
  std::map<std::string, std::string> env;   // added to or replacing the environment
  int signal = 2;                           // the signal sent
  size_t signalAfterOutBytes = 0;           // sent once this much output has been read
  int signalDelayUs = 0;                    // and after this pause
  size_t readChunk = 4096;                  // the reader takes at most this much at a time
  int readPauseUs = 100;                    // and pauses this long after each read
  double deadlineSeconds = 30;              // the filter is killed after this
};

struct TSignalTrialResult {
  int status = -1;          // exit status, or 128 + signal number
  bool timedOut = false;    // killed at the deadline
  bool signalSent = false;  // the output reached signalAfterOutBytes
  std::string out;          // standard output (the job command stream)
  std::string err;          // standard error
};

// 'Signal_RunTrial()' - Run the built filter on the raster file, read its
// standard output slowly, send the signal once signalAfterOutBytes have
// been read (and the pause has passed), and read on until the filter ends.
TSignalTrialResult Signal_RunTrial(const TSignalTrial& trial);

// 'Signal_StreamVerdict()' - "" when the stream is well formed, complete or
// cut at a record boundary; otherwise the reader's description of the
// first violation.  *cut is set when the stream stops before ICMD_ENDJOB.
std::string Signal_StreamVerdict(const std::string& stream, bool* cut);
