// Captures of several job command streams sent back to back: reading one, one check per job, the verdict.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

// Exit statuses of the tools that read a capture (brellian-jobdump,
// brellian-preview).
constexpr int INSPECT_COMPLETE = 0;   // a complete, well-formed job
constexpr int INSPECT_MALFORMED = 1;  // a violation was found
constexpr int INSPECT_FAILED = 2;     // bad arguments, unreadable input, unwritable output
constexpr int INSPECT_CUT = 3;        // well-formed but stops before ICMD_ENDJOB

// Largest capture read.
constexpr size_t INSPECT_MAX_STREAM_BYTES = 1024u * 1024u * 1024u;

// 'Inspect_ReadCapture()' - The whole capture from the file at path, or from
// standard input when path is "" or "-", at most INSPECT_MAX_STREAM_BYTES.
// False with *error ("cannot read PATH: reason", PATH "standard input" for
// standard input).
bool Inspect_ReadCapture(const std::string& path, std::string* bytes, std::string* error);

// 'Inspect_ExitStatus()' - The exit status that the last check of
// Inspect_ReadJobs() gives: INSPECT_MALFORMED, INSPECT_COMPLETE or
// INSPECT_CUT.  checks must not be empty.
int Inspect_ExitStatus(const std::vector<TStreamCheck>& checks);

// One job of a capture: where its bytes lie.
struct TJobSpan {
  size_t offset = 0;  // of its first byte in the capture
  size_t size = 0;    // bytes
};

// 'Inspect_SplitJobs()' - The jobs of a capture.  Walking the record headers
// (type and length only), a job ends after an ICMD_ENDJOB record that is
// followed by the header of an ICMD_STARTJOB record: the next job begins
// there.  Anything else (a record after ICMD_ENDJOB that is not
// ICMD_STARTJOB, a header that does not fit) stays in the job it follows,
// so that reading the job reports it.  An empty capture is one empty job.
std::vector<TJobSpan> Inspect_SplitJobs(const std::string& bytes);

// 'Inspect_ReadJobs()' - Check every job of the capture with Stream_Read, in
// order, and stop after the first that is not ok (nothing after a
// violation is read).  Record, panel and error offsets are offsets in the
// whole capture.
std::vector<TStreamCheck> Inspect_ReadJobs(const std::string& bytes);
