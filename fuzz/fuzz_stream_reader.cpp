// Fuzz target: the job stream reader, and the inspector's listing, verdict
// and panel pictures of whatever it read.
// Copyright 2026 The rastertobrellian authors.
//
// Beyond memory errors it checks what the reader promises: a violation has
// an offset inside the stream and a text; a complete stream is ok; every
// panel holds exactly rows x width x bytes-per-pixel bytes; the listing has
// a line for every record (or every image); and every panel picture the
// inspector writes decodes back to the bytes it was made from.
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "lib/job_text.h"
#include "jobstream/stream_reader.h"
#include "lib/panel_png.h"
#include "lib/png_io.h"

namespace {

// 'Fuzz_Fail()' - Report a broken promise and abort.
[[noreturn]] void Fuzz_Fail(const char* what) {
  fprintf(stderr, "stream reader: %s\n", what);
  abort();
}

// 'Fuzz_CheckPicture()' - Write the panel as the inspector does, read the
// file back and compare it with the picture it was made from.
void Fuzz_CheckPicture(const std::string& dir, const TStreamPanel& panel) {
  std::string path;
  bool written = Inspect_WritePanelPng(dir, panel, &path);
  if (panel.rows == 0) {
    if (written) Fuzz_Fail("a panel without rows was written");
    return;
  }
  if (!written) Fuzz_Fail("a panel picture could not be written");
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) Fuzz_Fail("the panel picture is missing");
  std::string bytes;
  char buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) bytes.append(buf, n);
  fclose(f);
  remove(path.c_str());
  TPngImage image;
  std::string error;
  bool decoded = panel.bytesPerPixel == 3 ? Png_DecodeRGB(bytes, &image, &error)
                                          : Png_DecodeGray(bytes, &image, &error);
  if (!decoded) Fuzz_Fail(error.c_str());
  if (image.width != panel.width || image.height != panel.rows ||
      image.pixels != Inspect_PanelImage(panel))
    Fuzz_Fail("the panel picture differs from the panel");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string dir = [] {
    std::string d = std::string(BRELLIAN_FUZZ_WORK_DIR) + "/fuzz-panels";
    mkdir(d.c_str(), 0700);
    return d;
  }();
  TStreamCheck check;
  int32_t status = Stream_Read(data, size, &check);
  if ((status == 0) != check.ok) Fuzz_Fail("status and verdict disagree");
  if (!check.ok && (check.error.empty() || check.errorOffset >= size))
    Fuzz_Fail("a violation without text or outside the stream");
  if (check.complete && !check.ok) Fuzz_Fail("complete but not ok");

  for (const TStreamPanel& p : check.panels) {
    if (p.pixels.size() != static_cast<size_t>(p.rows) * p.width * p.bytesPerPixel)
      Fuzz_Fail("panel bytes do not match its rows");
    if (p.rows > p.height || (p.complete && p.rows != p.height)) Fuzz_Fail("panel rows");
  }
  std::vector<std::string> chunks = Inspect_Listing(check, true);
  std::vector<std::string> summary = Inspect_Listing(check, false);
  if (chunks.size() < check.records.size() || summary.size() > chunks.size())
    Fuzz_Fail("listing lines");
  for (const TStreamRecord& r : check.records) Inspect_Fields(r);
  if (Inspect_Verdict(check).empty()) Fuzz_Fail("empty verdict");
  // Pictures: a few per input, so that one input cannot write thousands.
  for (size_t i = 0; i < check.panels.size() && i < 4; ++i) Fuzz_CheckPicture(dir, check.panels[i]);
  return 0;
}
