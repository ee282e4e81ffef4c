// Running the built filter and tools as the spooler runs them: the one
// process runner of the tests (input, environment, signals, a deadline).
// Copyright 2026 The rastertobrellian authors.
#include "support/process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>

#include "brellian_paths.h"

extern char** environ;

namespace {

using TClock = std::chrono::steady_clock;

// 'Process_Environment()' - The test's environment with options.env added
// or replacing and options.unsetEnv removed.
std::vector<std::string> Process_Environment(const TProcessOptions& options) {
  std::vector<std::string> envStrings;
  for (char** e = environ; *e; ++e) {
    std::string entry(*e);
    std::string name = entry.substr(0, entry.find('='));
    bool drop = options.env.count(name) > 0;
    for (const std::string& u : options.unsetEnv) drop = drop || u == name;
    if (!drop) envStrings.push_back(entry);
  }
  for (const auto& kv : options.env) envStrings.push_back(kv.first + "=" + kv.second);
  return envStrings;
}

std::vector<char*> Process_Pointers(std::vector<std::string>* strings) {
  std::vector<char*> p;
  for (std::string& s : *strings) p.push_back(&s[0]);
  p.push_back(nullptr);
  return p;
}

// 'Process_Child()' - In the child: connect the pipes and standard output
// as asked, then run argv.
void Process_Child(const TProcessOptions& options, int inPipe[2], int outPipe[2], int errPipe[2],
                   char** argp, char** envp) {
  if (!options.workDir.empty() && chdir(options.workDir.c_str()) != 0) _exit(126);
  dup2(inPipe[0], 0);
  dup2(errPipe[1], 2);
  if (options.stdoutMode == TProcessStdout::Pipe) {
    dup2(outPipe[1], 1);
  } else if (options.stdoutMode == TProcessStdout::Full) {
    int full = open("/dev/full", O_WRONLY);
    dup2(full, 1);
    close(full);
  }
  for (int fd : {inPipe[0], inPipe[1], outPipe[0], outPipe[1], errPipe[0], errPipe[1]}) close(fd);
  if (options.stdoutMode == TProcessStdout::Closed) close(1);
  execve(argp[0], argp, envp);
  _exit(127);
}

}  // namespace

TProcessResult Test_RunProcess(const std::vector<std::string>& argv, const TProcessOptions& options) {
  TProcessResult result;
  std::vector<std::string> envStrings = Process_Environment(options), args = argv;
  std::vector<char*> envp = Process_Pointers(&envStrings), argp = Process_Pointers(&args);
  int inPipe[2], outPipe[2], errPipe[2];
  if (pipe(inPipe) || pipe(outPipe) || pipe(errPipe)) return result;
  pid_t pid = fork();
  if (pid == 0) Process_Child(options, inPipe, outPipe, errPipe, argp.data(), envp.data());
  close(inPipe[0]);
  close(outPipe[1]);
  close(errPipe[1]);
  signal(SIGPIPE, SIG_IGN);

  const auto deadline = TClock::now() + std::chrono::milliseconds(
                                            static_cast<int64_t>(options.deadlineSeconds * 1000));
  int inFd = inPipe[1];
  fcntl(inFd, F_SETFL, O_NONBLOCK);
  const std::string& input = options.input;
  size_t written = 0;
  bool signalSent = options.sigtermOnErr.empty();
  size_t limit = signalSent ? input.size() : std::min(options.holdInputAt, input.size());
  bool outOpen = true, errOpen = true;
  char buf[65536];
  while (outOpen || errOpen) {
    if (inFd >= 0 && written >= input.size()) {
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
    if (!signalSent && result.err.find(options.sigtermOnErr) != std::string::npos) {
      if (options.signalDelayMs > 0) usleep(static_cast<useconds_t>(options.signalDelayMs) * 1000);
      kill(pid, options.signal);
      signalSent = true;
      limit = input.size();
    }
    if (inIdx >= 0 && fds[inIdx].revents) {
      if (fds[inIdx].revents & (POLLERR | POLLHUP)) {
        close(inFd);
        inFd = -1;
      } else {
        ssize_t w = write(inFd, input.data() + written, limit - written);
        if (w > 0) written += static_cast<size_t>(w);
        if (w < 0 && errno != EAGAIN) written = input.size();
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
  return result;
}

TProcessResult Test_RunFilter(const std::vector<std::string>& args, const TProcessOptions& options) {
  std::vector<std::string> argv = {BRELLIAN_FILTER_PATH};
  argv.insert(argv.end(), args.begin(), args.end());
  return Test_RunProcess(argv, options);
}

std::string Test_ConfDir() { return BRELLIAN_CONF_DIR; }
std::string Test_LogDir() { return BRELLIAN_LOG_DIR; }
std::string Test_LogFile() { return std::string(BRELLIAN_LOG_DIR) + "/rastertobrellian.log"; }

std::string Test_GeneratedPPD(int model) {
  return std::string(BRELLIAN_BINARY_DIR) + "/ppd/br" + std::to_string(model) + ".ppd";
}

std::string Test_ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

void Test_WriteFile(const std::string& path, const std::string& data) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << data;
}

void Test_RemoveTree(const std::string& path) {
  std::string cmd = "rm -rf '" + path + "'";
  int rc = system(cmd.c_str());
  (void)rc;
}

void Test_MakeDirs(const std::string& path) {
  std::string cmd = "mkdir -p '" + path + "'";
  int rc = system(cmd.c_str());
  (void)rc;
  // The configuration tree is made as the package makes it: every directory
  // from the build's system root down to path writable by its owner only,
  // since the filter treats files below a directory others can write as
  // not found.  (A test may have left them with other modes.)
  const std::string conf = BRELLIAN_CONF_DIR;
  if (path.compare(0, conf.size(), conf) != 0) return;
  const std::string root = BRELLIAN_SYSROOT;
  size_t end = root.empty() ? conf.size() : root.size();
  for (;;) {
    struct stat st;
    std::string dir = path.substr(0, end);
    if (lstat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) chmod(dir.c_str(), st.st_mode & 0755);
    if (end >= path.size()) break;
    end = std::min(path.find('/', end + 1), path.size());
  }
}

void Test_ResetLog() {
  unlink(Test_LogFile().c_str());
  unlink(BRELLIAN_LOG_CONFIG_FILE);
}

void Test_SetLogLevelWord(const std::string& word) {
  Test_MakeDirs(Test_LogDir());
  Test_WriteFile(BRELLIAN_LOG_CONFIG_FILE, "rastertobrellian = " + word + "\n");
}

std::vector<std::string> Test_LogMessages() {
  std::vector<std::string> lines;
  std::istringstream in(Test_ReadFile(Test_LogFile()));
  std::string line;
  while (std::getline(in, line)) lines.push_back(line.size() >= 16 ? line.substr(16) : line);
  return lines;
}

bool Test_Contains(const std::vector<std::string>& lines, const std::string& line) {
  for (const std::string& l : lines)
    if (l == line) return true;
  return false;
}

std::string Test_WithoutWarnings(const std::string& err) {
  std::string rest;
  size_t start = 0;
  while (start < err.size()) {
    size_t end = err.find('\n', start);
    size_t next = end == std::string::npos ? err.size() : end + 1;
    if (err.compare(start, 9, "WARNING: ") != 0) rest.append(err, start, next - start);
    start = next;
  }
  return rest;
}

// 'Test_Lines()' - Split at each line feed.
std::vector<std::string> Test_Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t at = 0;
  while (at < text.size()) {
    size_t nl = text.find('\n', at);
    if (nl == std::string::npos) nl = text.size();
    lines.push_back(text.substr(at, nl - at));
    at = nl + 1;
  }
  return lines;
}
