// brellian-drainbench: the cost of pages after the card is complete.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: brellian-drainbench [-n RUNS] FILTER [OTHER_FILTER]
//
// Makes compressed raster jobs of 40 pages just under the page cap
// (256 MiB each), whose first page prints the card and whose other 39 are
// only read, and jobs of the first page alone, runs FILTER (and OTHER_FILTER, e.g. an earlier build) on each
// through pipes RUNS times, and prints the median wall time, the peak
// resident size, and whether the two filters gave the same standard output
// and standard error.  Nothing here fails on a time.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <cups/raster.h>

namespace {

struct TJobShape {
  const char* name;
  uint32_t width, height;   // pixels and rows of every page
};

// 'Drain_Page()' - One compressed page of one colour: each encoded row
// repeats 256 times and is made of runs of up to 128 equal pixels.
std::string Drain_Page(uint32_t width, uint32_t height) {
  cups_page_header2_t h;
  memset(&h, 0, sizeof h);
  h.HWResolution[0] = h.HWResolution[1] = 300;
  h.NumCopies = 1;
  h.cupsWidth = width;
  h.cupsHeight = height;
  h.cupsBitsPerColor = 8;
  h.cupsBitsPerPixel = 24;
  h.cupsBytesPerLine = width * 3;
  h.cupsColorSpace = CUPS_CSPACE_RGB;
  std::string runs;
  for (uint32_t left = width; left > 0;) {
    uint32_t run = left < 128 ? left : 128;
    runs += static_cast<char>(run - 1);
    runs += "\x20\x60\xC0";
    left -= run;
  }
  std::string s(reinterpret_cast<const char*>(&h), sizeof h);
  for (uint32_t rows = 0; rows < height;) {
    uint32_t repeat = std::min<uint32_t>(height - rows, 256);
    s += static_cast<char>(repeat - 1);
    s += runs;
    rows += repeat;
  }
  return s;
}

struct TRun {
  double seconds = 0;
  double cpuSeconds = 0;    // user and system time of the filter
  long rssKb = 0;
  int status = -1;
  std::string out, err;
};

// 'Drain_ReadFile()' - The whole of a file.
std::string Drain_ReadFile(const std::string& path) {
  std::string s;
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return s;
  char buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) s.append(buf, n);
  fclose(f);
  return s;
}

// 'Drain_MaskCardIds()' - The stream with the card id of ICMD_STARTCARD and
// ICMD_ENDCARD (taken from the clock) set to zero, so that two runs compare.
std::string Drain_MaskCardIds(std::string s) {
  size_t pos = 0;
  while (pos + 6 <= s.size()) {
    const uint8_t* p = reinterpret_cast<const uint8_t*>(s.data() + pos);
    uint32_t type = p[0] | p[1] << 8;
    size_t length = p[2] | p[3] << 8 | p[4] << 16 | static_cast<size_t>(p[5]) << 24;
    if ((type == 3 || type == 4) && pos + 14 <= s.size()) memset(&s[pos + 6], 0, 8);
    pos += 6 + length;
  }
  return s;
}

// 'Drain_Run()' - The filter on the raster file, output and error into files.
TRun Drain_Run(const std::string& filter, const std::string& raster, const std::string& dir) {
  TRun r;
  std::string outPath = dir + "/out.bin", errPath = dir + "/err.txt";
  auto t0 = std::chrono::steady_clock::now();
  pid_t pid = fork();
  if (pid == 0) {
    int in = open(raster.c_str(), O_RDONLY);
    int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (in < 0 || out < 0 || err < 0) _exit(126);
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    execl(filter.c_str(), filter.c_str(), "1", "user", "title", "1", "", static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  struct rusage usage;
  memset(&usage, 0, sizeof usage);
  wait4(pid, &status, 0, &usage);
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  r.rssKb = usage.ru_maxrss;
  r.cpuSeconds = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
                 (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  r.out = Drain_MaskCardIds(Drain_ReadFile(outPath));
  r.err = Drain_ReadFile(errPath);
  return r;
}

// 'Drain_Median()' - Median wall time and the largest peak of runs of one filter.
TRun Drain_Median(const std::string& filter, const std::string& raster, const std::string& dir,
                  int runs) {
  std::vector<TRun> all;
  for (int i = 0; i < runs; ++i) all.push_back(Drain_Run(filter, raster, dir));
  std::sort(all.begin(), all.end(), [](const TRun& a, const TRun& b) { return a.seconds < b.seconds; });
  TRun m = all[all.size() / 2];
  for (const TRun& r : all) m.rssKb = std::max(m.rssKb, r.rssKb);
  return m;
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 3;
  int arg = 1;
  if (arg + 1 < argc && strcmp(argv[arg], "-n") == 0) {
    runs = std::max(1, atoi(argv[arg + 1]));
    arg += 2;
  }
  if (arg >= argc) {
    fprintf(stderr, "usage: brellian-drainbench [-n RUNS] FILTER [OTHER_FILTER]\n");
    return 2;
  }
  std::vector<std::string> filters(argv + arg, argv + argc);
  char dirTemplate[] = "/tmp/brellian-drain-XXXXXX";
  if (!mkdtemp(dirTemplate)) return 1;
  std::string dir = dirTemplate;
  // Every page holds just under 256 MiB: 86367 rows of 1036 pixels, or the
  // same turned.  The tall pages are portrait: the card's page is turned.
  const TJobShape shapes[] = {{"tall 1036 x 86367", 1036, 86367}, {"wide 86367 x 1036", 86367, 1036}};
  printf("%-22s %6s %9s %-7s %9s %9s %9s %6s %s\n", "page shape", "pages", "input KB", "filter",
         "median s", "its CPU s", "peak MB", "status", "same output");
  for (const TJobShape& shape : shapes) {
    std::string page = Drain_Page(shape.width, shape.height);
    // The card's page alone, then with 39 pages after the card.
    for (int pages : {1, 40}) {
      std::string stream = "2SaR";
      for (int i = 0; i < pages; ++i) stream += page;
      std::string raster = dir + "/job.ras";
      FILE* f = fopen(raster.c_str(), "wb");
      if (!f) return 1;
      fwrite(stream.data(), 1, stream.size(), f);
      fclose(f);
      std::vector<TRun> results;
      for (size_t i = 0; i < filters.size(); ++i) {
        results.push_back(Drain_Median(filters[i], raster, dir, runs));
        const TRun& r = results.back();
        const char* same =
            i == 0 ? "-" : (r.out == results[0].out && r.err == results[0].err ? "yes" : "NO");
        printf("%-22s %6d %9zu %-7s %9.3f %9.3f %9.1f %6d %s\n", shape.name, pages,
               stream.size() / 1024, i == 0 ? "first" : "second", r.seconds, r.cpuSeconds,
               r.rssKb / 1024.0, r.status, same);
      }
      unlink(raster.c_str());
    }
  }
  unlink((dir + "/out.bin").c_str());
  unlink((dir + "/err.txt").c_str());
  rmdir(dir.c_str());
  return 0;
}
