// The job of one page loop fuzz input: options from its first bytes, the
// raster stream from the rest, screened against the page caps.
// Copyright 2026 The rastertobrellian authors.
#include "fuzz/page_input.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include <cups/raster.h>

#include "imaging/panel.h"
#include "status/models.h"

namespace {

// Largest page buffer a fuzz input may claim, and most pages per input.
constexpr uint64_t kFuzzPageBytes = 32u * 1024u * 1024u;
constexpr int kFuzzPages = 64;
// Offset of the first page header: after the 4-byte sync word.
constexpr size_t kFirstHeader = 4;

const char* const kRibbons[] = {"Monochrome", "Grayscale", "Color", "ColorK"};
const char* const kSides[] = {"front", "back"};
// A small area in dots, inside even the smallest panel used here.
const char* const kArea = "Custom.4px 3px 40px 20px";

// 'Fuzz_Path()' - The one regular file the raster bytes go through.
const std::string& Fuzz_Path() {
  static const std::string path = [] {
    std::string templ = std::string(BRELLIAN_FUZZ_WORK_DIR) + "/fuzz-raster-XXXXXX";
    std::vector<char> name(templ.begin(), templ.end());
    name.push_back(0);
    int fd = mkstemp(name.data());
    if (fd >= 0) close(fd);
    return std::string(name.data());
  }();
  return path;
}

// 'Fuzz_Acceptable()' - Read the stream as the page loop would and say
// whether every page stays within the fuzzing caps.
bool Fuzz_Acceptable(const std::string& path) {
  int fd = open(path.c_str(), O_RDONLY);
  if (fd < 0) return false;
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  bool ok = true;
  int pages = 0;
  cups_page_header2_t header;
  std::vector<uint8_t> line;
  while (ok && raster && cupsRasterReadHeader2(raster, &header)) {
    uint64_t bytes = 0;
    if (!CUPS_PageBytes(&header, &bytes) || bytes > kFuzzPageBytes || ++pages > kFuzzPages) {
      ok = false;
      break;
    }
    line.resize(header.cupsBytesPerLine ? header.cupsBytesPerLine : 1);
    while (cupsRasterReadPixels(raster, line.data(), header.cupsBytesPerLine) != 0) {
    }
  }
  if (raster) cupsRasterClose(raster);
  close(fd);
  return ok;
}

// 'Fuzz_Options()' - The options argument the option bytes choose.
std::string Fuzz_Options(const uint8_t* o) {
  std::string s;
  auto add = [&s](const std::string& name, const std::string& value) {
    s += (s.empty() ? "" : " ") + name + "=\"" + value + "\"";
  };
  for (int side = 0; side < 2; ++side) {
    std::string n = kSides[side];
    add(n + "Ribbon", kRibbons[(o[1] >> (2 * side)) & 3]);
    if (o[1] & (0x10 << side)) add(n + "Rotation", "Yes");
    uint32_t resin = o[2 + side] % 12;
    add(n + "Resin", resin == 0 ? "Page" : resin == 11 ? "CustomAreas" : "Preset" + std::to_string(resin));
    uint32_t uv = (o[4] >> (4 * side) & 15) % 7;
    if (uv == 1) add(n + "UV", "Page");
    else if (uv > 1) add(n + "UV", "Preset" + std::to_string(uv - 1));
    uint32_t po = o[5 + side] % 13;
    if (po == 1) add(n + "PO", "Page");
    else if (po == 12) add(n + "PO", "CustomAreas");
    else if (po > 1) add(n + "PO", "Preset" + std::to_string(po - 1));
    const char* areaKeys[] = {"ResinInclude1", "ResinExclude1", "PeelOff1", "NonPeelOff1"};
    for (int a = 0; a < 4; ++a)
      if (o[7] & (1 << (4 * side + a))) add(n + areaKeys[a], kArea);
  }
  return s;
}

}  // namespace

bool Fuzz_PageJob(const uint8_t* data, size_t size, TFuzzJob* job) {
  uint8_t o[FUZZ_OPTION_BYTES] = {};
  size_t head = size < FUZZ_OPTION_BYTES ? size : FUZZ_OPTION_BYTES;
  for (size_t i = 0; i < head; ++i) o[i] = data[i];
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  const TModelInfo& model = models[(o[0] & 0x7F) % count];
  job->model = model.id;
  job->ppd = std::string(BRELLIAN_FUZZ_PPD_DIR) + "/" + model.ppdName;
  job->smallPanels = (o[0] & 0x80) == 0;
  job->options = Fuzz_Options(o);

  std::string raster(reinterpret_cast<const char*>(data) + head, size - head);
  // Duplex and Tumble of the first page header, whatever the byte order.
  const size_t duplexAt = kFirstHeader + offsetof(cups_page_header2_t, Duplex);
  const size_t tumbleAt = kFirstHeader + offsetof(cups_page_header2_t, Tumble);
  if ((o[1] & 0x40) && raster.size() >= duplexAt + 4) raster.replace(duplexAt, 4, "\x01\x01\x01\x01", 4);
  if ((o[1] & 0x80) && raster.size() >= tumbleAt + 4) raster.replace(tumbleAt, 4, "\x01\x01\x01\x01", 4);

  job->rasterPath = Fuzz_Path();
  FILE* f = fopen(job->rasterPath.c_str(), "wb");
  if (!f) abort();
  if (!raster.empty()) fwrite(raster.data(), 1, raster.size(), f);
  fclose(f);
  return Fuzz_Acceptable(job->rasterPath);
}
