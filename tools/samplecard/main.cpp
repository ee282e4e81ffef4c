// brellian-samplecard - write the demo's sample card job as CUPS raster.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "lib/raster_writer.h"
#include "lib/sample_card.h"
#include "status/model_text.h"
#include "util/safe_file.h"

static int Usage(FILE* f) {
  fputs(Model_Expand(
          "Usage: brellian-samplecard [--dpi 300|600] [--compressed] [--all-panels] OUTPUT\n"
          "\n"
          "Writes the built-in sample card as a CUPS raster stream of five\n"
          "panel-sized pages for a duplex \"ColorK\" job with an overlay page:\n"
          "front colour, front black, front overlay, back colour, back black.\n"
          "The pages are the model's panel size: {panel-sizes}.\n"
          "--dpi 600 is the default. OUTPUT \"-\" writes to standard output.\n"
          "\n"
          "--all-panels writes eight pages instead, every panel kind on both\n"
          "sides: front colour, black, UV and overlay, then the same for the\n"
          "back (for jobs with frontUV, backUV, frontPO and backPO set to Page).\n").c_str(),
        f);
  return f == stderr ? 2 : 0;
}

int main(int argc, char** argv) {
  uint32_t dpi = 600;
  bool compressed = false;
  bool allPanels = false;
  const char* output = nullptr;
  for (int i = 1; i < argc; ++i) {
    if (strcmp(argv[i], "--help") == 0 || strcmp(argv[i], "-h") == 0) return Usage(stdout);
    if (strcmp(argv[i], "--compressed") == 0) {
      compressed = true;
    } else if (strcmp(argv[i], "--all-panels") == 0) {
      allPanels = true;
    } else if (strcmp(argv[i], "--dpi") == 0 && i + 1 < argc) {
      dpi = static_cast<uint32_t>(strtoul(argv[++i], nullptr, 10));
      if (dpi != 300 && dpi != 600) {
        fprintf(stderr, "brellian-samplecard: --dpi must be 300 or 600, not \"%s\"\n", argv[i]);
        return 2;
      }
    } else if (!output && (argv[i][0] != '-' || strcmp(argv[i], "-") == 0)) {
      output = argv[i];
    } else {
      fprintf(stderr, "brellian-samplecard: unknown argument \"%s\"\n", argv[i]);
      return Usage(stderr);
    }
  }
  if (!output) return Usage(stderr);
  uint32_t width = dpi == 600 ? 2072 : 1036, height = dpi == 600 ? 1328 : 664;
  std::vector<TRasterPage> pages = allPanels ? Raster_MakeSampleCardAllPanelsJob(width, height, dpi)
                                            : Raster_MakeSampleCardJob(width, height, dpi);
  std::string stream;
  if (!Raster_WriteStream(pages, compressed, &stream)) {
    fprintf(stderr, "brellian-samplecard: libcups refused to write the raster stream\n");
    return 1;
  }
  // A regular file only: never written through a symbolic link.
  FILE* f = strcmp(output, "-") == 0 ? stdout : File_FOpenRegular(output, "wb");
  if (!f) {
    perror("brellian-samplecard: cannot create the output file");
    return 1;
  }
  bool ok = fwrite(stream.data(), 1, stream.size(), f) == stream.size();
  ok = (f == stdout ? fflush(f) : fclose(f)) == 0 && ok;
  if (!ok) {
    fprintf(stderr, "brellian-samplecard: cannot write the output\n");
    return 1;
  }
  return 0;
}
