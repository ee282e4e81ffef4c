// brellian-jobdump: check a job command stream, list its records, write its panels as PNG.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>

#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "lib/job_split.h"
#include "lib/job_text.h"
#include "jobstream/stream_reader.h"
#include "lib/panel_png.h"
#include "lib/tool_file.h"

static const char USAGE[] =
    "Usage: brellian-jobdump [options] [FILE]\n"
    "Check a job command stream (FILE, or standard input when FILE is missing or \"-\"),\n"
    "print one line per record with its offset and decoded fields, and end with a verdict:\n"
    "  OK: ...                  a complete job\n"
    "  CUT: ...                 well-formed but stops before ICMD_ENDJOB (a cancelled job)\n"
    "  ERROR at offset N: ...   the first violation; nothing after it is read\n"
    "\n"
    "A capture of several jobs sent back to back (each ICMD_ENDJOB followed by the\n"
    "next ICMD_STARTJOB, as when one print request holds several documents) is\n"
    "reported job by job: a line \"JOB J of N at offset X, B bytes\" before each job's\n"
    "records and verdict; offsets count from the start of the capture.\n"
    "\n"
    "Options:\n"
    "  -p, --png DIR   write every panel as a PNG into DIR (created if missing), named\n"
    "                  side<S>-panel<I>-<color|k|uv|po>.png (job<J>-side... for the\n"
    "                  jobs of a capture of several); colour panels as RGB,\n"
    "                  one-byte panels as grey 255 - value (applied dots show dark)\n"
    "  -c, --chunks    list every ICMD_IMAGE record instead of one summary per image\n"
    "  -q, --quiet     print only the verdict (and the JOB lines of a capture)\n"
    "  -h, --help      show this text\n"
    "\n"
    "Exit status: 0 complete, 1 malformed, 2 usage or input/output failure, 3 cut short.\n"
    "A capture of several jobs exits 1 when one of them is malformed, else as its last job.\n";

static const struct option LONG_OPTIONS[] = {
    {"png", required_argument, nullptr, 'p'}, {"chunks", no_argument, nullptr, 'c'},
    {"quiet", no_argument, nullptr, 'q'},     {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

// 'Inspect_WritePanels()' - Write every panel that holds rows into dir and
// list the files.  False when one cannot be written.
static bool Inspect_WritePanels(const std::string& dir, const TStreamCheck& check, const std::string& prefix,
                             bool quiet) {
  std::string error;
  if (!Tool_MakeDir(dir, &error)) {
    fprintf(stderr, "brellian-jobdump: %s\n", error.c_str());
    return false;
  }
  for (const TStreamPanel& panel : check.panels) {
    if (panel.rows == 0) continue;
    std::string path;
    if (!Inspect_WritePanelPng(dir, panel, &path, prefix)) {
      fprintf(stderr, "brellian-jobdump: cannot write %s\n", path.c_str());
      return false;
    }
    if (!quiet)
      printf("wrote %s (%" PRIu32 " x %" PRIu32 "%s)\n", path.c_str(), panel.width, panel.rows,
             panel.complete ? "" : ", cut short");
  }
  return true;
}

int main(int argc, char** argv) {
  std::string pngDir;
  bool eachChunk = false, quiet = false;
  int c;
  while ((c = getopt_long(argc, argv, "p:cqh", LONG_OPTIONS, nullptr)) != -1) {
    switch (c) {
      case 'p': pngDir = optarg; break;
      case 'c': eachChunk = true; break;
      case 'q': quiet = true; break;
      case 'h': fputs(USAGE, stdout); return INSPECT_COMPLETE;
      default: fputs(USAGE, stderr); return INSPECT_FAILED;
    }
  }
  if (argc - optind > 1) {
    fputs("brellian-jobdump: more than one FILE given\n", stderr);
    fputs(USAGE, stderr);
    return INSPECT_FAILED;
  }
  std::string bytes, error;
  if (!Inspect_ReadCapture(optind < argc ? argv[optind] : "", &bytes, &error)) {
    fprintf(stderr, "brellian-jobdump: %s\n", error.c_str());
    return INSPECT_FAILED;
  }

  std::vector<TJobSpan> spans = Inspect_SplitJobs(bytes);
  std::vector<TStreamCheck> checks = Inspect_ReadJobs(bytes);
  const bool several = spans.size() > 1;
  for (size_t j = 0; j < checks.size(); ++j) {
    const TStreamCheck& check = checks[j];
    if (several)
      printf("JOB %zu of %zu at offset %zu, %zu bytes\n", j + 1, spans.size(), spans[j].offset, spans[j].size);
    if (!quiet)
      for (const std::string& line : Inspect_Listing(check, eachChunk)) puts(line.c_str());
    std::string verdict = Inspect_Verdict(check);
    puts(verdict.c_str());
    if (!check.ok) fprintf(stderr, "brellian-jobdump: %s\n", verdict.c_str());
    fflush(stdout);
    std::string prefix = several ? "job" + std::to_string(j + 1) + "-" : "";
    if (!pngDir.empty() && !Inspect_WritePanels(pngDir, check, prefix, quiet)) return INSPECT_FAILED;
  }
  if (checks.size() < spans.size())
    printf("NOT READ: jobs %zu to %zu, after the violation\n", checks.size() + 1, spans.size());
  return Inspect_ExitStatus(checks);
}
