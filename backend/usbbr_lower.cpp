// The lower layer of the usbbr backend: the spooler's own USB backend.
// Copyright 2026 The rastertobrellian authors.
#include "backend/usbbr_lower.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>

#ifndef USBBR_LOWER_BACKEND
#error "USBBR_LOWER_BACKEND must name the spooler's usb backend"
#endif

std::string Usbbr_LowerPath() {
#ifdef BRELLIAN_USBBR_STANDIN
  const char* standIn = getenv("BRELLIAN_USBBR_LOWER");
  if (standIn && *standIn) return standIn;
#endif
  return USBBR_LOWER_BACKEND;
}

namespace {

// 'Lower_Start()' - Fork and exec path without arguments, its standard
// output into a pipe.  The child's pid, or -1 with *error set.
pid_t Lower_Start(const std::string& path, bool quietStderr, int* readFd, std::string* error) {
  int fds[2];
  if (pipe(fds) != 0) {
    *error = std::string("cannot make a pipe: ") + strerror(errno);
    return -1;
  }
  pid_t pid = fork();
  if (pid < 0) {
    *error = std::string("cannot start a process: ") + strerror(errno);
    close(fds[0]);
    close(fds[1]);
    return -1;
  }
  if (pid == 0) {
    dup2(fds[1], 1);
    close(fds[0]);
    close(fds[1]);
    if (quietStderr) {
      int null = open("/dev/null", O_WRONLY);
      if (null >= 0) dup2(null, 2);
    }
    signal(SIGTERM, SIG_DFL);
    execl(path.c_str(), "usb", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(fds[1]);
  *readFd = fds[0];
  return pid;
}

}  // namespace

int32_t Usbbr_ListLower(const std::string& path, bool quietStderr, volatile sig_atomic_t* cancel,
                        std::vector<TBackendDevice>* devices, int* exitStatus, std::string* error) {
  devices->clear();
  *exitStatus = -1;
  if (access(path.c_str(), X_OK) != 0) {
    *error = "cannot run the USB backend " + path + ": " + strerror(errno);
    return USBBR_LIST_NOT_RUN;
  }
  int fd = -1;
  pid_t pid = Lower_Start(path, quietStderr, &fd, error);
  if (pid < 0) return USBBR_LIST_NOT_RUN;

  std::string text;
  char buf[4096];
  bool cancelled = false;
  for (;;) {
    if (cancel && *cancel) {
      cancelled = true;
      break;
    }
    ssize_t n = read(fd, buf, sizeof buf);
    if (n > 0) text.append(buf, static_cast<size_t>(n));
    else if (n == 0 || errno != EINTR) break;
  }
  close(fd);
  if (cancelled) kill(pid, SIGTERM);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    if (cancel && *cancel && !cancelled) {
      cancelled = true;
      kill(pid, SIGTERM);
    }
  }
  if (cancelled) return USBBR_LIST_CANCELLED;
  *exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (*exitStatus == 127) {
    *error = "cannot run the USB backend " + path;
    return USBBR_LIST_NOT_RUN;
  }

  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    TBackendDevice device;
    if (Backend_ParseLine(line, &device)) devices->push_back(device);
  }
  return USBBR_LIST_OK;
}
