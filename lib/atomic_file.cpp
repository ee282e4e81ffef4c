// Replacing a file through a temporary file, fsync and rename.
// Copyright 2026 The rastertobrellian authors.
#include "lib/atomic_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

// The temporary file to remove when a signal ends the process; empty when
// none exists.  Written before the handlers are installed.
char g_toolTempPath[4096];

// 'Tool_TempSignal()' - Remove the temporary file and end with 128 + sig.
void Tool_TempSignal(int sig) {
  if (g_toolTempPath[0]) unlink(g_toolTempPath);
  _exit(128 + sig);
}

const int kTempSignals[] = {SIGTERM, SIGINT, SIGHUP};

// 'Tool_GuardTemp()' - Install (guard true) or restore the signal handlers
// that remove the temporary file.
void Tool_GuardTemp(bool guard, struct sigaction saved[3]) {
  for (int i = 0; i < 3; ++i) {
    if (guard) {
      struct sigaction sa;
      memset(&sa, 0, sizeof sa);
      sa.sa_handler = Tool_TempSignal;
      sigemptyset(&sa.sa_mask);
      sigaction(kTempSignals[i], &sa, &saved[i]);
    } else {
      sigaction(kTempSignals[i], &saved[i], nullptr);
    }
  }
}

// 'Tool_WriteFd()' - Write all bytes to fd; false on any error.
bool Tool_WriteFd(int fd, const std::string& bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

// 'Tool_Fail()' - *error = what and the system error text; false.
bool Tool_Fail(std::string* error, const std::string& what) {
  if (error) *error = what + ": " + strerror(errno);
  return false;
}

}  // namespace

// 'Tool_ReplaceFile()' - Temporary file, write, fsync, rename, flush the directory.
bool Tool_ReplaceFile(const std::string& path, const std::string& bytes, unsigned mode,
                      std::string* error) {
  struct stat st;
  if (lstat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    errno = S_ISLNK(st.st_mode) ? ELOOP : EINVAL;
    return Tool_Fail(error, "cannot replace " + path);
  }
  size_t slash = path.rfind('/');
  std::string dir = slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
  std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  std::string temp = (slash == std::string::npos ? "" : path.substr(0, slash + 1)) + "." + base + ".XXXXXX";
  if (temp.size() >= sizeof g_toolTempPath) {
    errno = ENAMETOOLONG;
    return Tool_Fail(error, "cannot create a temporary file for " + path);
  }
  struct sigaction saved[3];
  sigset_t block, old;
  sigemptyset(&block);
  for (int sig : kTempSignals) sigaddset(&block, sig);
  // The name is recorded and the handlers installed before the file
  // exists, with the signals held back until both are in place.
  sigprocmask(SIG_BLOCK, &block, &old);
  memcpy(g_toolTempPath, temp.c_str(), temp.size() + 1);
  int fd = mkostemp(g_toolTempPath, O_CLOEXEC);
  if (fd < 0) g_toolTempPath[0] = '\0';
  Tool_GuardTemp(true, saved);
  sigprocmask(SIG_SETMASK, &old, nullptr);
  if (fd < 0) {
    Tool_GuardTemp(false, saved);
    return Tool_Fail(error, "cannot create a temporary file in " + dir);
  }
  bool ok = true;
  std::string what;
  if (!Tool_WriteFd(fd, bytes)) ok = false, what = "cannot write " + std::string(g_toolTempPath);
  if (ok && fchmod(fd, mode) != 0) ok = false, what = "cannot set the mode of " + std::string(g_toolTempPath);
  if (ok && fsync(fd) != 0) ok = false, what = "cannot flush " + std::string(g_toolTempPath);
  if (close(fd) != 0 && ok) ok = false, what = "cannot close " + std::string(g_toolTempPath);
#ifdef BRELLIAN_TOOL_FAULTS
  // Test builds only: fail the step before the rename on request.
  const char* fault = getenv("BRELLIAN_TOOL_FAULT");
  if (ok && fault && strcmp(fault, "term") == 0) raise(SIGTERM);
  if (ok && fault && strcmp(fault, "rename") == 0) {
    errno = EIO;
    ok = false;
    what = "cannot rename " + std::string(g_toolTempPath) + " to " + path;
  }
#endif
  if (ok) {
    ok = rename(g_toolTempPath, path.c_str()) == 0;
    if (!ok) what = "cannot rename " + std::string(g_toolTempPath) + " to " + path;
  }
  int saveErrno = errno;
  if (!ok) unlink(g_toolTempPath);
  sigprocmask(SIG_BLOCK, &block, &old);
  g_toolTempPath[0] = '\0';
  Tool_GuardTemp(false, saved);
  sigprocmask(SIG_SETMASK, &old, nullptr);
  if (!ok) {
    errno = saveErrno;
    return Tool_Fail(error, what);
  }
  int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirFd >= 0) {
    fsync(dirFd);
    close(dirFd);
  }
  return true;
}
