// Captures of several job command streams sent back to back, one check per job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

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
