// One filter run against a slow reader, interrupted by a signal while it
// writes its job command stream.
// Copyright 2026 The rastertobrellian authors.
#include "support/signal_trial.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "brellian_paths.h"
#include "jobstream/stream_reader.h"

extern char** environ;

namespace {

using TClock = std::chrono::steady_clock;

// 'Trial_Strings()' - Pointers to the strings, null-terminated.
std::vector<char*> Trial_Strings(std::vector<std::string>* strings) {
  std::vector<char*> p;
  for (std::string& s : *strings) p.push_back(&s[0]);
  p.push_back(nullptr);
  return p;
}

// 'Trial_ReadAll()' - What is left in a descriptor, until end of file.
void Trial_ReadAll(int fd, std::string* out) {
  char buf[65536];
  ssize_t r;
  while ((r = read(fd, buf, sizeof buf)) > 0) out->append(buf, static_cast<size_t>(r));
}

}  // namespace

TSignalTrialResult Signal_RunTrial(const TSignalTrial& trial) {
  TSignalTrialResult result;
  std::vector<std::string> envStrings;
  for (char** e = environ; *e; ++e) {
    std::string entry(*e);
    if (trial.env.count(entry.substr(0, entry.find('='))) == 0) envStrings.push_back(entry);
  }
  for (const auto& kv : trial.env) envStrings.push_back(kv.first + "=" + kv.second);
  std::vector<std::string> args = {BRELLIAN_FILTER_PATH, "7", "user", "title", "1", trial.options,
                                   trial.rasterPath};
  std::vector<char*> envp = Trial_Strings(&envStrings), argp = Trial_Strings(&args);

  // Standard error goes to an unlinked file, so that it never blocks the
  // filter while the reader is slow on purpose.
  std::string errPath = std::string(BRELLIAN_BINARY_DIR) + "/signal-trial-err-XXXXXX";
  int errFd = mkstemp(&errPath[0]);
  if (errFd < 0) return result;
  unlink(errPath.c_str());
  int outPipe[2];
  if (pipe(outPipe) != 0) {
    close(errFd);
    return result;
  }
  pid_t pid = fork();
  if (pid == 0) {
    int in = open("/dev/null", O_RDONLY);
    dup2(in, 0);
    dup2(outPipe[1], 1);
    dup2(errFd, 2);
    for (int fd : {in, outPipe[0], outPipe[1], errFd}) close(fd);
    execve(argp[0], argp.data(), envp.data());
    _exit(127);
  }
  close(outPipe[1]);

  const auto deadline = TClock::now() + std::chrono::milliseconds(
                                            static_cast<int64_t>(trial.deadlineSeconds * 1000));
  std::vector<char> buf(trial.readChunk ? trial.readChunk : 1);
  for (;;) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - TClock::now());
    if (left.count() <= 0) {
      kill(pid, SIGKILL);
      result.timedOut = true;
      break;
    }
    struct pollfd p = {outPipe[0], POLLIN, 0};
    if (poll(&p, 1, static_cast<int>(left.count() < 100 ? left.count() : 100)) <= 0) continue;
    ssize_t r = read(outPipe[0], buf.data(), buf.size());
    if (r <= 0) break;
    result.out.append(buf.data(), static_cast<size_t>(r));
    if (!result.signalSent && result.out.size() >= trial.signalAfterOutBytes) {
      if (trial.signalDelayUs > 0) usleep(static_cast<useconds_t>(trial.signalDelayUs));
      kill(pid, trial.signal);
      result.signalSent = true;
    }
    if (trial.readPauseUs > 0) usleep(static_cast<useconds_t>(trial.readPauseUs));
  }
  close(outPipe[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  lseek(errFd, 0, SEEK_SET);
  Trial_ReadAll(errFd, &result.err);
  close(errFd);
  return result;
}

std::string Signal_StreamVerdict(const std::string& stream, bool* cut) {
  TStreamCheck check;
  Stream_Read(stream, &check);
  *cut = check.ok && !check.complete;
  if (check.ok) return "";
  return "at offset " + std::to_string(check.errorOffset) + ": " + check.error;
}
