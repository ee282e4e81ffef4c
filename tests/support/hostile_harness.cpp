// Running the filter on hostile input: a deadline, memory and file checks.
// Copyright 2026 The rastertobrellian authors.
#include "support/hostile_harness.h"

#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cups/raster.h>
#include <gtest/gtest.h>

#include "brellian_paths.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

// 'Harness_ListTree()' - Every path below dir (files and directories).
void Harness_ListTree(const std::string& dir, std::set<std::string>* out) {
  DIR* d = opendir(dir.c_str());
  if (!d) return;
  while (dirent* e = readdir(d)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    std::string path = dir + "/" + name;
    out->insert(path);
    struct stat st;
    if (lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) Harness_ListTree(path, out);
  }
  closedir(d);
}

bool Harness_Under(const std::string& path, const std::string& dir) {
  return path.compare(0, dir.size(), dir) == 0 &&
         (path.size() == dir.size() || path[dir.size()] == '/');
}

std::string Harness_SysRoot() {
  std::string conf = BRELLIAN_CONF_DIR;
  return conf.substr(0, conf.size() - strlen("/etc/brellian"));
}

}  // namespace

std::string Hostile_Scratch(const std::string& name) {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile/" + name;
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  return dir;
}

THostileResult Hostile_Run(const THostileRun& run) {
  THostileResult result;
  std::string home = Hostile_Scratch("home"), work = Hostile_Scratch("cwd"),
              tmp = Hostile_Scratch("tmp");
  std::set<std::string> before;
  Harness_ListTree(Harness_SysRoot(), &before);

  TProcessOptions options;
  options.input = run.input;
  options.env = run.env;
  options.env.emplace("HOME", home);
  options.env.emplace("TMPDIR", tmp);
  // A sanitized filter keeps freed memory in quarantine (256 MiB by
  // default); a small one keeps its peak a measure of what the filter holds.
  const char* asan = getenv("ASAN_OPTIONS");
  options.env.emplace("ASAN_OPTIONS", std::string(asan && *asan ? asan : "") +
                                          (asan && *asan ? ":" : "") + "quarantine_size_mb=16");
  options.stdoutMode = run.stdoutMode;
  options.workDir = work;
  options.deadlineSeconds = run.deadlineSeconds;
  options.sigtermOnErr = run.sigtermOnErr;
  options.holdInputAt = run.sigtermAfterBytes;
  options.signalDelayMs = run.sigtermDelayMs;
  options.signal = run.signal;
  static_cast<TProcessResult&>(result) = Test_RunFilter(run.args, options);

  std::set<std::string> after;
  Harness_ListTree(Harness_SysRoot(), &after);
  for (const std::string& p : after)
    if (!before.count(p) && !Harness_Under(p, BRELLIAN_CONF_DIR) &&
        !Harness_Under(p, BRELLIAN_LOG_DIR))
      result.strayFiles.push_back(p);
  for (const std::string& dir : {home, work, tmp}) {
    std::set<std::string> inside;
    Harness_ListTree(dir, &inside);
    result.strayFiles.insert(result.strayFiles.end(), inside.begin(), inside.end());
  }
  return result;
}

// 'Hostile_HeaderBytes()' - The header as the raster library writes it on
// this machine: the version-2 structure, byte for byte.
std::string Hostile_HeaderBytes(const THostileHeader& h) {
  static_assert(sizeof(cups_page_header2_t) == 1796, "raster page header size");
  cups_page_header2_t hd;
  memset(&hd, 0, sizeof hd);
  if (!h.terminateStrings) {
    for (char* s : {hd.MediaClass, hd.MediaColor, hd.MediaType, hd.OutputType})
      memset(s, 'S', 64);
    memset(hd.cupsMarkerType, 'T', sizeof hd.cupsMarkerType);
    memset(hd.cupsRenderingIntent, 'T', sizeof hd.cupsRenderingIntent);
    memset(hd.cupsPageSizeName, 'T', sizeof hd.cupsPageSizeName);
    memset(hd.cupsString, 'T', sizeof hd.cupsString);
  }
  hd.HWResolution[0] = hd.HWResolution[1] = 300;
  hd.NumCopies = h.numCopies;
  hd.cupsWidth = h.width;
  hd.cupsHeight = h.height;
  hd.cupsBitsPerColor = h.bitsPerColor;
  hd.cupsBitsPerPixel = h.bitsPerPixel;
  hd.cupsBytesPerLine = h.bytesPerLine;
  // Enumeration fields take any word, as a hostile stream may hold.
  memcpy(&hd.Duplex, &h.duplex, 4);
  memcpy(&hd.Tumble, &h.tumble, 4);
  memcpy(&hd.cupsColorOrder, &h.colorOrder, 4);
  memcpy(&hd.cupsColorSpace, &h.colorSpace, 4);
  return std::string(reinterpret_cast<const char*>(&hd), sizeof hd);
}

std::string Hostile_Stream(const std::vector<std::string>& pages) {
  std::string s = "3SaR";   // "RaS3" as a little-endian word
  for (const std::string& p : pages) s += p;
  return s;
}

bool Hostile_Clean(const THostileResult& r, std::string* why) {
  why->clear();
  if (r.timedOut) *why += "timed out; ";
  for (const char* mark : {"Sanitizer", "runtime error:", "LeakSanitizer", "AddressSanitizer"})
    if (r.err.find(mark) != std::string::npos) *why += std::string("report: ") + mark + "; ";
  if (r.maxRssKb > HOSTILE_MAX_RSS_KB) *why += "peak memory " + std::to_string(r.maxRssKb) + " KB; ";
  for (const std::string& f : r.strayFiles) *why += "stray file " + f + "; ";
  return why->empty();
}

std::string Hostile_ProgressErr(const std::vector<uint32_t>& heights) {
  std::string err;
  int page = 0;
  for (uint32_t h : heights) {
    ++page;
    err += "PAGE: " + std::to_string(page) + " 1\n";
    for (uint64_t row = 0; row < h; row += 128)
      err += "INFO: Printing page " + std::to_string(page) + ", " +
             std::to_string(row * 100 / h) + "% complete...\n";
  }
  return err + "INFO: Ready to print.\n";
}

bool Hostile_LogHas(const std::vector<std::string>& log, const std::string& text) {
  for (const std::string& line : log) {
    size_t start = line.find_first_not_of(' ');
    if (start != std::string::npos && line.compare(start, std::string::npos, text) == 0) return true;
  }
  return false;
}

void Hostile_ExpectLogLines(const std::vector<std::string>& present, const std::vector<std::string>& absent) {
  std::vector<std::string> log = Test_LogMessages();
  for (const std::string& line : present) EXPECT_TRUE(Hostile_LogHas(log, line)) << line;
  for (const std::string& line : absent) EXPECT_FALSE(Hostile_LogHas(log, line)) << line;
}

void Hostile_ExpectPrintedWithDefaults(const THostileResult& r, const std::vector<std::string>& present,
                                       const std::vector<std::string>& absent) {
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(Hostile_ProgressErr({2}), Test_WithoutWarnings(r.err));
  Hostile_ExpectLogLines(present, absent);
}

std::vector<uint16_t> Hostile_SimplexColorCard(uint32_t height, uint32_t rowsPerRecord) {
  std::vector<uint16_t> t = {1, 3, 6, 11, 8};
  for (uint32_t row = 0; row < height; row += rowsPerRecord) t.push_back(10);
  for (uint16_t r : {9, 7, 4, 2}) t.push_back(r);
  return t;
}

std::string Hostile_ValidPage() {
  std::string s;
  Raster_WriteStream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)}, false, &s);
  return s;
}
