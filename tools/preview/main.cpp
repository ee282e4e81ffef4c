// brellian-preview: what a job will print, one composite picture per card side.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>

#include <cstdio>
#include <string>
#include <vector>

#include "lib/card_preview.h"
#include "lib/job_split.h"
#include "lib/job_text.h"
#include "jobstream/stream_reader.h"
#include "lib/panel_png.h"
#include "lib/png_io.h"
#include "lib/tool_file.h"
#include "lib/tool_model.h"

static const char USAGE[] =
    "Usage: brellian-preview [options] [FILE]\n"
    "\n"
    "Read a job command stream (the filter's output) from FILE, or from standard input\n"
    "when FILE is missing or \"-\", and write what each card side will look like as one\n"
    "picture, DIR/side<S>-card.png (S 0 front, 1 back):\n"
    "  1. the colour panel on a white card, each byte through the side's lookup table\n"
    "     (the ICMD_LUTTABLE sent with the side; the identity for \"Firmware\");\n"
    "  2. the black (resin) panel over it: each channel c becomes\n"
    "     (c x (255 - k) + 127) / 255 for black byte k;\n"
    "  3. the UV panel: its region (bytes of 128 or more) outlined and hatched with\n"
    "     lines running down to the right, in violet (128, 0, 255) and white;\n"
    "  4. the overlay panel: its region outlined and hatched with lines running up\n"
    "     to the right, in green (0, 160, 0) and white.\n"
    "The colours of the marks alternate in small blocks, so that they show on any\n"
    "picture; between the hatch lines the picture is unchanged.  A side with UV or\n"
    "overlay gets a legend band below the card: a swatch and the name of each mark.\n"
    "The panels are shown as they are sent, after any rotation of the job; the\n"
    "stream does not say whether the page was portrait, so give --portrait to turn\n"
    "a portrait card upright again.  A capture of several jobs sent back to back\n"
    "gives pictures job<J>-side<S>-card.png for each job J.\n"
    "\n"
    "Options:\n"
    "  -o, --output DIR  write the pictures into DIR (created if missing; default \".\")\n"
    "  -P, --portrait    turn each card 90 degrees clockwise: a portrait page, which\n"
    "                    the filter turned to lie on its side, is shown upright\n"
    "  -p, --panels      also write every panel as brellian-jobdump --png does\n"
    "  -q, --quiet       print nothing but errors\n"
    "  -h, --help        show this text\n"
    "\n"
    "Example:\n"
    "  rastertobrellian 1 user card 1 \"frontUV=Preset1\" page.ras > job.bin\n"
    "\n"
    "  brellian-preview -o preview job.bin\n"
    "\n"
    "Exit status: 0 a complete job, 1 the stream breaks a rule (the sides read before\n"
    "the fault are still written), 2 bad arguments or a file that cannot be read or\n"
    "written, 3 the stream stops before its end (a cancelled job).\n";

// 'Preview_Fail()' - Print "brellian-preview: message"; INSPECT_FAILED.
// The exit statuses are brellian-jobdump's (INSPECT_*); after a violation
// the sides read before it are still written.
static int Preview_Fail(const std::string& message) {
  fprintf(stderr, "brellian-preview: %s\n", message.c_str());
  return INSPECT_FAILED;
}

// 'Preview_Write()' - The composites (and with panels every panel) of check
// into dir.  False on the first file that cannot be written.
static bool Preview_Write(const std::string& dir, const TStreamCheck& check, const std::string& prefix,
                          bool portrait, bool panels, bool quiet) {
  for (const TCardPreview& side : Preview_Compose(check, portrait)) {
    for (const std::string& note : side.skipped)
      fprintf(stderr, "brellian-preview: side %d: left out %s\n", static_cast<int>(side.side), note.c_str());
    std::string path = dir + "/" + prefix + Preview_FileName(side.side);
    if (!Png_WriteRGB(path, side.width, side.height, side.rgb.data())) {
      Preview_Fail("cannot write " + path);
      return false;
    }
    if (!quiet) printf("wrote %s (%u x %u)\n", path.c_str(), side.width, side.height);
  }
  for (const TStreamPanel& panel : check.panels) {
    if (!panels || panel.rows == 0) continue;
    std::string path;
    if (!Inspect_WritePanelPng(dir, panel, &path, prefix)) {
      Preview_Fail("cannot write " + path);
      return false;
    }
    if (!quiet) printf("wrote %s (%u x %u)\n", path.c_str(), panel.width, panel.rows);
  }
  return true;
}

// 'main()' - Options, then the command; the exit status says how it went.
int main(int argc, char** argv) {
  Tool_Init();
  static const struct option kOptions[] = {
      {"output", required_argument, nullptr, 'o'}, {"panels", no_argument, nullptr, 'p'},
      {"portrait", no_argument, nullptr, 'P'},
      {"quiet", no_argument, nullptr, 'q'},        {"help", no_argument, nullptr, 'h'},
      {nullptr, 0, nullptr, 0},
  };
  std::string dir = ".";
  bool panels = false, portrait = false, quiet = false;
  int c;
  while ((c = getopt_long(argc, argv, "o:pPqh", kOptions, nullptr)) != -1) {
    switch (c) {
      case 'o': dir = optarg; break;
      case 'p': panels = true; break;
      case 'P': portrait = true; break;
      case 'q': quiet = true; break;
      case 'h': fputs(USAGE, stdout); return INSPECT_COMPLETE;
      default: fputs(USAGE, stderr); return INSPECT_FAILED;
    }
  }
  if (argc - optind > 1) return Preview_Fail("more than one FILE given");
  std::string path = optind < argc ? argv[optind] : "-";
  std::string bytes, error;
  if (!Inspect_ReadCapture(path, &bytes, &error) || !Tool_MakeDir(dir, &error)) return Preview_Fail(error);

  std::vector<TStreamCheck> checks = Inspect_ReadJobs(bytes);
  const bool several = Inspect_SplitJobs(bytes).size() > 1;
  for (size_t j = 0; j < checks.size(); ++j) {
    const TStreamCheck& check = checks[j];
    std::string verdict = (several ? "job " + std::to_string(j + 1) + ": " : std::string()) + Inspect_Verdict(check);
    if (!check.ok) fprintf(stderr, "brellian-preview: %s\n", verdict.c_str());
    else if (!quiet) puts(verdict.c_str());
    std::string prefix = several ? "job" + std::to_string(j + 1) + "-" : "";
    if (!Preview_Write(dir, check, prefix, portrait, panels, quiet)) return INSPECT_FAILED;
  }
  return Inspect_ExitStatus(checks);
}
