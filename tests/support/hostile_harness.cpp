// Running the filter on hostile input: a deadline, memory and file checks.
// Copyright 2026 The rastertobrellian authors.
#include "support/hostile_harness.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cups/raster.h>
#include <gtest/gtest.h>

#include "brellian_paths.h"
#include "support/process.h"

extern char** environ;

namespace {

using TClock = std::chrono::steady_clock;

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

std::vector<char*> Harness_Pointers(std::vector<std::string>* strings) {
  std::vector<char*> p;
  for (std::string& s : *strings) p.push_back(&s[0]);
  p.push_back(nullptr);
  return p;
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

  std::vector<std::string> envStrings;
  std::map<std::string, std::string> env = run.env;
  env.emplace("HOME", home);
  env.emplace("TMPDIR", tmp);
  // A sanitized filter keeps freed memory in quarantine (256 MiB by
  // default); a small one keeps its peak a measure of what the filter holds.
  const char* asan = getenv("ASAN_OPTIONS");
  env.emplace("ASAN_OPTIONS", std::string(asan && *asan ? asan : "") +
                                  (asan && *asan ? ":" : "") + "quarantine_size_mb=16");
  for (char** e = environ; *e; ++e) {
    std::string entry(*e);
    std::string name = entry.substr(0, entry.find('='));
    if (env.count(name) == 0) envStrings.push_back(entry);
  }
  for (const auto& kv : env) envStrings.push_back(kv.first + "=" + kv.second);
  std::vector<std::string> args = {BRELLIAN_FILTER_PATH};
  args.insert(args.end(), run.args.begin(), run.args.end());
  std::vector<char*> envp = Harness_Pointers(&envStrings), argp = Harness_Pointers(&args);

  int inPipe[2], outPipe[2], errPipe[2];
  if (pipe(inPipe) || pipe(outPipe) || pipe(errPipe)) return result;
  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(work.c_str()) != 0) _exit(126);
    dup2(inPipe[0], 0);
    dup2(errPipe[1], 2);
    if (run.stdoutMode == THostileStdout::Pipe) {
      dup2(outPipe[1], 1);
    } else if (run.stdoutMode == THostileStdout::Full) {
      int full = open("/dev/full", O_WRONLY);
      dup2(full, 1);
      close(full);
    }
    for (int fd : {inPipe[0], inPipe[1], outPipe[0], outPipe[1], errPipe[0], errPipe[1]}) close(fd);
    if (run.stdoutMode == THostileStdout::Closed) close(1);
    execve(argp[0], argp.data(), envp.data());
    _exit(127);
  }
  close(inPipe[0]);
  close(outPipe[1]);
  close(errPipe[1]);
  signal(SIGPIPE, SIG_IGN);

  const auto deadline = TClock::now() + std::chrono::milliseconds(
                                            static_cast<int64_t>(run.deadlineSeconds * 1000));
  int inFd = inPipe[1];
  fcntl(inFd, F_SETFL, O_NONBLOCK);
  size_t written = 0;
  size_t limit = run.sigtermOnErr.empty() ? run.input.size() : run.sigtermAfterBytes;
  bool sigtermSent = run.sigtermOnErr.empty();
  bool outOpen = true, errOpen = true;
  char buf[65536];
  while (outOpen || errOpen) {
    if (inFd >= 0 && written >= run.input.size()) {
      close(inFd);
      inFd = -1;
    }
    int remaining = static_cast<int>(
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - TClock::now()).count());
    if (remaining <= 0) {
      kill(pid, SIGKILL);
      result.timedOut = true;
      break;
    }
    struct pollfd fds[3];
    int n = 0, outIdx = -1, errIdx = -1, inIdx = -1;
    if (outOpen) { fds[n] = {outPipe[0], POLLIN, 0}; outIdx = n++; }
    if (errOpen) { fds[n] = {errPipe[0], POLLIN, 0}; errIdx = n++; }
    if (inFd >= 0 && written < limit) { fds[n] = {inFd, POLLOUT, 0}; inIdx = n++; }
    int ready = poll(fds, n, remaining < 100 ? remaining : 100);
    if (ready < 0 && errno != EINTR) break;
    if (outIdx >= 0 && fds[outIdx].revents) {
      ssize_t r = read(outPipe[0], buf, sizeof buf);
      if (r <= 0) outOpen = false; else result.out.append(buf, r);
    }
    if (errIdx >= 0 && fds[errIdx].revents) {
      ssize_t r = read(errPipe[0], buf, sizeof buf);
      if (r <= 0) errOpen = false; else result.err.append(buf, r);
    }
    if (!sigtermSent && result.err.find(run.sigtermOnErr) != std::string::npos) {
      usleep(static_cast<useconds_t>(run.sigtermDelayMs) * 1000);
      kill(pid, run.signal);
      sigtermSent = true;
      limit = run.input.size();
    }
    if (inIdx >= 0 && fds[inIdx].revents) {
      if (fds[inIdx].revents & (POLLERR | POLLHUP)) {
        close(inFd);
        inFd = -1;
      } else {
        ssize_t w = write(inFd, run.input.data() + written, limit - written);
        if (w > 0) written += static_cast<size_t>(w);
        if (w < 0 && errno != EAGAIN) written = run.input.size();
      }
    }
  }
  if (inFd >= 0) close(inFd);
  close(outPipe[0]);
  close(errPipe[0]);
  int status = 0;
  struct rusage usage;
  memset(&usage, 0, sizeof usage);
  wait4(pid, &status, 0, &usage);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.maxRssKb = usage.ru_maxrss;

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

std::vector<uint16_t> Hostile_RecordTypes(const std::string& s) {
  std::vector<uint16_t> types;
  size_t pos = 0;
  while (pos + 6 <= s.size()) {
    const uint8_t* p = reinterpret_cast<const uint8_t*>(s.data() + pos);
    types.push_back(static_cast<uint16_t>(p[0] | p[1] << 8));
    pos += 6 + (static_cast<size_t>(p[2]) | static_cast<size_t>(p[3]) << 8 |
                static_cast<size_t>(p[4]) << 16 | static_cast<size_t>(p[5]) << 24);
  }
  if (pos != s.size()) types.push_back(0xFFFF);
  return types;
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
  EXPECT_EQ(Hostile_ProgressErr({2}), r.err);
  Hostile_ExpectLogLines(present, absent);
}

std::vector<uint16_t> Hostile_SimplexColorCard(uint32_t height, uint32_t rowsPerRecord) {
  std::vector<uint16_t> t = {1, 3, 6, 11, 8};
  for (uint32_t row = 0; row < height; row += rowsPerRecord) t.push_back(10);
  for (uint16_t r : {9, 7, 4, 2}) t.push_back(r);
  return t;
}
