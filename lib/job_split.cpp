// Captures of several job command streams sent back to back: reading one, one check per job, the verdict.
// Copyright 2026 The rastertobrellian authors.
#include "lib/job_split.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "jobstream/records.h"
#include "lib/tool_file.h"
#include "util/safe_file.h"

namespace {

// 'Split_Type()' - Record type of the header at 'at', or 0 when no whole
// header is there.
uint16_t Split_Type(const std::string& bytes, size_t at) {
  if (bytes.size() - at < ICMD_HEADER_BYTES) return 0;
  return Rec_Get16(reinterpret_cast<const uint8_t*>(bytes.data()) + at);
}

// 'Split_Shift()' - Make the offsets of a check relative to the capture.
void Split_Shift(TStreamCheck* check, size_t by) {
  for (TStreamRecord& rec : check->records) rec.offset += by;
  for (TStreamPanel& panel : check->panels) panel.offset += by;
  if (!check->ok) check->errorOffset += by;
}

}  // namespace

// 'Inspect_SplitJobs()' - Cut after every ICMD_ENDJOB that a ICMD_STARTJOB follows.
std::vector<TJobSpan> Inspect_SplitJobs(const std::string& bytes) {
  std::vector<TJobSpan> jobs;
  const uint8_t* data = reinterpret_cast<const uint8_t*>(bytes.data());
  size_t start = 0, at = 0;
  while (bytes.size() - at >= ICMD_HEADER_BYTES) {
    uint16_t type = Rec_Get16(data + at);
    uint32_t length = Rec_Get32(data + at + 2);
    if (length > bytes.size() - at - ICMD_HEADER_BYTES) break;
    at += ICMD_HEADER_BYTES + length;
    if (type == ICMD_ENDJOB && Split_Type(bytes, at) == ICMD_STARTJOB) {
      jobs.push_back({start, at - start});
      start = at;
    }
  }
  jobs.push_back({start, bytes.size() - start});
  return jobs;
}

// 'Inspect_ReadJobs()' - Read the jobs in order up to the first violation.
std::vector<TStreamCheck> Inspect_ReadJobs(const std::string& bytes) {
  std::vector<TStreamCheck> checks;
  for (const TJobSpan& span : Inspect_SplitJobs(bytes)) {
    checks.emplace_back();
    Stream_Read(reinterpret_cast<const uint8_t*>(bytes.data()) + span.offset, span.size, &checks.back());
    Split_Shift(&checks.back(), span.offset);
    if (!checks.back().ok) break;
  }
  return checks;
}

// 'Inspect_ReadCapture()' - Standard input or a regular file, capped.
bool Inspect_ReadCapture(const std::string& path, std::string* bytes, std::string* error) {
  const bool in = path.empty() || path == "-";
  errno = 0;
  if (in ? Tool_ReadAll(stdin, INSPECT_MAX_STREAM_BYTES, bytes)
         : File_ReadCapped(path.c_str(), INSPECT_MAX_STREAM_BYTES, bytes) == 0)
    return true;
  *error = "cannot read " + (in ? std::string("standard input") : path) + ": " +
           (errno == EFBIG ? "more than 1 GiB" : strerror(errno));
  return false;
}

// 'Inspect_ExitStatus()' - The last job decides.
int Inspect_ExitStatus(const std::vector<TStreamCheck>& checks) {
  if (!checks.back().ok) return INSPECT_MALFORMED;
  return checks.back().complete ? INSPECT_COMPLETE : INSPECT_CUT;
}
