// Raw job streams: checked with the library's stream reader before they reach the printer.
// Copyright 2026 The rastertobrellian authors.
#include "app/raw_job.h"

#include <cerrno>
#include <string>

#include "jobstream/stream_reader.h"
#include "util/safe_file.h"

// Largest raw stream taken: two sides of every panel at 600 dpi fit easily.
constexpr size_t RAW_MAX_BYTES = 256u * 1024u * 1024u;

// 'Raw_PrintFile()' - Read, check, send once per copy.
bool Raw_PrintFile(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device) {
  std::string bytes;
  if (File_ReadCapped(papplJobGetFilename(job), RAW_MAX_BYTES, &bytes) != 0) {
    papplJobSetMessage(job, "The job stream could not be read%s.", errno == EFBIG ? " (too large)" : "");
    return false;
  }
  TStreamCheck check;
  Stream_Read(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &check);
  if (!check.ok || !check.complete) {
    std::string why = !check.ok ? check.error + " at offset " + std::to_string(check.errorOffset)
                                : "it stops before the end of the job (" + check.openLevel + ")";
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "Not a usable job stream: %s", why.c_str());
    papplJobSetMessage(job, "Not a usable job stream: %s", why.c_str());
    return false;
  }
  int copies = options && options->copies > 1 ? options->copies : 1;
  for (int copy = 0; copy < copies && !papplJobIsCanceled(job); ++copy) {
    if (papplDeviceWrite(device, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
      papplJobSetMessage(job, "Unable to send the job stream to the printer.");
      return false;
    }
  }
  papplDeviceFlush(device);
  if (copies > 1)
    papplJobSetMessage(job, "Job stream sent %d times.", copies);
  else
    papplJobSetMessage(job, "Job stream sent.");
  return true;
}
