// One run of rastertobrellian as a child process, its output pumped to the device.
// Copyright 2026 The rastertobrellian authors.
#include "app/filter_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <grp.h>
#include <pthread.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

// 'Run_WriteAll()' - Write all bytes to fd; a broken pipe (the filter has
// ended) gives false instead of a signal.
bool Run_WriteAll(int fd, const unsigned char* buffer, size_t bytes) {
  size_t done = 0;
  while (done < bytes) {
    ssize_t n = write(fd, buffer + done, bytes - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

// 'Run_Clean()' - A filter line made safe for the job's message: control
// characters become spaces, at most 200 bytes.
std::string Run_Clean(const std::string& s) {
  std::string out = s.substr(0, 200);
  for (char& c : out)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
  return out;
}

// 'Run_FilterUser()' - The user the filter runs as when the application
// runs as root: $BRELLIAN_FILTER_USER, else "lp", the spooler's user that
// runs it under CUPS (an empty value keeps root).  False: keep the user.
bool Run_FilterUser(uid_t* uid, gid_t* gid) {
  if (geteuid() != 0) return false;
  const char* name = getenv("BRELLIAN_FILTER_USER");
  if (!name) name = "lp";
  if (!*name) return false;
  struct passwd pw, *found = nullptr;
  char buf[4096];
  if (getpwnam_r(name, &pw, buf, sizeof(buf), &found) != 0 || !found) return false;
  *uid = pw.pw_uid;
  *gid = pw.pw_gid;
  return true;
}

}  // namespace

// 'TFilterRun::WriteRaster()' - libcups' raster write callback: the pipe
// to the filter, and the kept copy when one is asked for.
ssize_t TFilterRun::WriteRaster(void* ctx, unsigned char* buffer, size_t bytes) {
  TFilterRun* run = static_cast<TFilterRun*>(ctx);
  if (run->keepFd_ >= 0 && !Run_WriteAll(run->keepFd_, buffer, bytes)) {
    close(run->keepFd_);
    run->keepFd_ = -1;
  }
  return Run_WriteAll(run->inFd_, buffer, bytes) ? static_cast<ssize_t>(bytes) : -1;
}

TFilterRun::TFilterRun(pappl_job_t* job, pappl_device_t* device, TFilterMessages* messages)
    : job_(job), device_(device), messages_(messages) {}

TFilterRun::~TFilterRun() {
  if (pid_ > 0) {
    Cancel();
    Finish();
  }
}

// 'TFilterRun::Start()' - Pipes with close-on-exec, fork and exec (as the
// spooler's user when running as root), pump thread.
bool TFilterRun::Start(const TFilterArgs& args) {
  int in[2], out[2], err[2];
  if (pipe2(in, O_CLOEXEC) != 0) return false;
  if (pipe2(out, O_CLOEXEC) != 0) {
    close(in[0]), close(in[1]);
    return false;
  }
  if (pipe2(err, O_CLOEXEC) != 0) {
    close(in[0]), close(in[1]), close(out[0]), close(out[1]);
    return false;
  }
  std::vector<char*> argv, envp;
  argv.push_back(const_cast<char*>("rastertobrellian"));
  for (const std::string& a : args.argv) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  for (const std::string& e : args.env) envp.push_back(const_cast<char*>(e.c_str()));
  envp.push_back(nullptr);
  uid_t uid = 0;
  gid_t gid = 0;
  bool drop = Run_FilterUser(&uid, &gid);
  int failPipe[2];
  if (pipe2(failPipe, O_CLOEXEC) != 0) failPipe[0] = failPipe[1] = -1;
  pid_ = fork();
  if (pid_ == 0) {
    // Child: only async-signal-safe calls until execve.
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    int code = 0;
    if (dup2(in[0], 0) < 0 || dup2(out[1], 1) < 0 || dup2(err[1], 2) < 0) code = errno;
    if (!code && drop && (setgroups(0, nullptr) != 0 || setgid(gid) != 0 || setuid(uid) != 0)) code = errno;
    if (!code) {
      execve(args.filter.c_str(), argv.data(), envp.data());
      code = errno;
    }
    if (failPipe[1] >= 0) (void)!write(failPipe[1], &code, sizeof(code));
    _exit(127);
  }
  close(in[0]), close(out[1]), close(err[1]);
  if (failPipe[1] >= 0) close(failPipe[1]);
  int childErr = pid_ < 0 ? errno : 0;
  if (pid_ > 0 && failPipe[0] >= 0 && read(failPipe[0], &childErr, sizeof(childErr)) != sizeof(childErr)) childErr = 0;
  if (failPipe[0] >= 0) close(failPipe[0]);
  if (childErr != 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "Unable to run %s: %s", args.filter.c_str(), strerror(childErr));
    close(in[1]), close(out[0]), close(err[0]);
    if (pid_ > 0) waitpid(pid_, nullptr, 0);
    pid_ = -1;
    return false;
  }
  papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Started %s as process %d", args.filter.c_str(), static_cast<int>(pid_));
  inFd_ = in[1];
  outFd_ = out[0];
  errFd_ = err[0];
  if (!args.keepRaster.empty())
    keepFd_ = open(args.keepRaster.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
  raster_ = cupsRasterOpenIO(TFilterRun::WriteRaster, this, CUPS_RASTER_WRITE);
  pump_ = std::thread(&TFilterRun::Pump, this);
  return raster_ != nullptr;
}

// 'TFilterRun::WriteHeader()' - One page header into the raster stream.
bool TFilterRun::WriteHeader(cups_page_header2_t* header) {
  if (!raster_ || inputBroken_) return false;
  if (!cupsRasterWriteHeader2(raster_, header)) inputBroken_ = true;
  return !inputBroken_;
}

// 'TFilterRun::WriteRow()' - One row of pixels.
bool TFilterRun::WriteRow(const unsigned char* row, unsigned bytes) {
  if (!raster_ || inputBroken_) return false;
  if (cupsRasterWritePixels(raster_, const_cast<unsigned char*>(row), bytes) != bytes) inputBroken_ = true;
  return !inputBroken_;
}

// 'TFilterRun::Cancel()' - SIGTERM once.
void TFilterRun::Cancel() {
  if (pid_ > 0 && !cancelled_) {
    cancelled_ = true;
    kill(pid_, SIGTERM);
  }
}

// 'TFilterRun::Finish()' - Close the input, wait for the output and the child.
bool TFilterRun::Finish() {
  if (pid_ <= 0) return false;
  if (raster_) cupsRasterClose(raster_);
  raster_ = nullptr;
  if (inFd_ >= 0) close(inFd_);
  inFd_ = -1;
  if (keepFd_ >= 0) close(keepFd_);
  keepFd_ = -1;
  if (pump_.joinable()) pump_.join();
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  close(outFd_), close(errFd_);
  outFd_ = errFd_ = -1;
  bool clean = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (!clean)
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "The filter ended with %s %d",
                WIFEXITED(status) ? "status" : "signal", WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status));
  return clean && !deviceFailed_;
}

// 'TFilterRun::Pump()' - Copy standard output to the device and turn
// standard error into job messages until both pipes close.
void TFilterRun::Pump() {
  std::string pending;
  char buf[65536];
  bool outOpen = true, errOpen = true;
  while (outOpen || errOpen) {
    pollfd fds[2] = {{outOpen ? outFd_ : -1, POLLIN, 0}, {errOpen ? errFd_ : -1, POLLIN, 0}};
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      break;
    }
    if (fds[0].revents) {
      ssize_t n = read(outFd_, buf, sizeof(buf));
      if (n > 0 && !deviceFailed_) {
        if (papplDeviceWrite(device_, buf, static_cast<size_t>(n)) != n) {
          deviceFailed_ = true;
          papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "Unable to send the job stream to the printer");
          Cancel();
        }
      } else if (n == 0 || (n < 0 && errno != EINTR)) {
        outOpen = false;
      }
    }
    if (fds[1].revents) {
      ssize_t n = read(errFd_, buf, sizeof(buf));
      if (n > 0) {
        pending.append(buf, static_cast<size_t>(n));
        size_t nl;
        while ((nl = pending.find('\n')) != std::string::npos) {
          HandleLine(pending.substr(0, nl));
          pending.erase(0, nl + 1);
        }
        if (pending.size() > 4096) pending.clear();
      } else if (n == 0 || (n < 0 && errno != EINTR)) {
        errOpen = false;
      }
    }
  }
  if (!pending.empty()) HandleLine(pending);
  papplDeviceFlush(device_);
}

// 'TFilterRun::HandleLine()' - "PAGE:", "INFO:", "WARNING:", "ERROR:".
void TFilterRun::HandleLine(const std::string& raw) {
  std::string line = Run_Clean(raw);
  auto text = [&](size_t prefix) {
    size_t start = line.find_first_not_of(' ', prefix);
    return start == std::string::npos ? std::string() : line.substr(start);
  };
  if (line.compare(0, 5, "PAGE:") == 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Filter page %s", text(5).c_str());
  } else if (line.compare(0, 5, "INFO:") == 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_INFO, "%s", text(5).c_str());
    if (messages_->warnings == 0 && messages_->errors == 0) papplJobSetMessage(job_, "%s", text(5).c_str());
  } else if (line.compare(0, 8, "WARNING:") == 0) {
    messages_->warnings++;
    messages_->lastWarning = text(8);
    papplLogJob(job_, PAPPL_LOGLEVEL_WARN, "%s", text(8).c_str());
    papplJobSetReasons(job_, PAPPL_JREASON_WARNINGS_DETECTED, PAPPL_JREASON_NONE);
    if (messages_->errors == 0) papplJobSetMessage(job_, "Warning: %s", text(8).c_str());
  } else if (line.compare(0, 6, "ERROR:") == 0) {
    messages_->errors++;
    messages_->lastError = text(6);
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "%s", text(6).c_str());
    papplJobSetReasons(job_, PAPPL_JREASON_ERRORS_DETECTED, PAPPL_JREASON_NONE);
    papplJobSetMessage(job_, "Error: %s", text(6).c_str());
  } else if (!line.empty()) {
    papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Filter: %s", line.c_str());
  }
}
