// One run of rastertobrellian as a child process, its output sent to the device once it has ended well.
// Copyright 2026 The rastertobrellian authors.
#include "app/filter_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
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

// 'Run_Reap()' - Wait for the upstream filters (after SIGTERM when kill
// is true); true when each ended with status 0.
bool Run_Reap(std::vector<pid_t>* pids, bool kill) {
  bool clean = true;
  for (pid_t pid : *pids) {
    if (kill) ::kill(pid, SIGTERM);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) clean = false;
  }
  pids->clear();
  return clean;
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

// 'TFilterRun::Start()' - Pipes with close-on-exec, the upstream
// filters when there are any, the filter, and the pump thread.
bool TFilterRun::Start(const TFilterArgs& args) {
  int out[2], err[2];
  if (pipe2(out, O_CLOEXEC) != 0) return false;
  if (pipe2(err, O_CLOEXEC) != 0) {
    close(out[0]), close(out[1]);
    return false;
  }
  int filterIn = -1, error = 0;
  std::string failed;
  if (args.upstream.empty()) {
    int in[2];
    if (pipe2(in, O_CLOEXEC) == 0) {
      filterIn = in[0];
      inFd_ = in[1];
    } else {
      error = errno;
      failed = "a pipe";
    }
  } else {
    filterIn = open(args.inputFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (filterIn < 0) error = errno, failed = args.inputFile;
    for (const TChildCommand& up : args.upstream) {
      if (filterIn < 0) break;
      int pipeFds[2];
      if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        error = errno, failed = "a pipe";
        close(filterIn);
        filterIn = -1;
        break;
      }
      TChildCommand cmd = up;
      cmd.in = filterIn, cmd.out = pipeFds[1], cmd.err = err[1];
      pid_t pid = Child_Spawn(cmd, &error);
      close(filterIn), close(pipeFds[1]);
      filterIn = pipeFds[0];
      if (pid < 0) {
        failed = up.path;
        close(filterIn);
        filterIn = -1;
        break;
      }
      upstream_.push_back(pid);
    }
  }
  if (filterIn >= 0) {
    TChildCommand cmd;
    cmd.path = args.filter;
    cmd.argv.push_back("rastertobrellian");
    cmd.argv.insert(cmd.argv.end(), args.argv.begin(), args.argv.end());
    cmd.env = args.env;
    cmd.in = filterIn, cmd.out = out[1], cmd.err = err[1];
    pid_ = Child_Spawn(cmd, &error);
    if (pid_ < 0) failed = args.filter;
    close(filterIn);
  }
  close(out[1]), close(err[1]);
  outFd_ = out[0];
  errFd_ = err[0];
  if (pid_ < 0) {
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "Unable to run %s: %s", failed.c_str(), strerror(error));
    pid_ = -1;
    Run_Reap(&upstream_, true);
    close(outFd_), close(errFd_);
    outFd_ = errFd_ = -1;
    if (inFd_ >= 0) close(inFd_);
    inFd_ = -1;
    return false;
  }
  papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "Started %s as process %d", args.filter.c_str(), static_cast<int>(pid_));
  if (!args.keepRaster.empty() && inFd_ >= 0)
    keepFd_ = open(args.keepRaster.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (inFd_ >= 0) raster_ = cupsRasterOpenIO(TFilterRun::WriteRaster, this, CUPS_RASTER_WRITE);
  pump_ = std::thread(&TFilterRun::Pump, this);
  return inFd_ < 0 || raster_ != nullptr;
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

// 'TFilterRun::Cancel()' - SIGTERM once, to the filter and the upstream
// filters.
void TFilterRun::Cancel() {
  if (pid_ > 0 && !cancelled_) {
    cancelled_ = true;
    for (pid_t up : upstream_) kill(up, SIGTERM);
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
  if (!Run_Reap(&upstream_, cancelled_ || discarded_) && !cancelled_ && !discarded_) {
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "A filter before the card filter failed");
    upstreamFailed_ = true;
  }
  close(outFd_), close(errFd_);
  outFd_ = errFd_ = -1;
  bool clean = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (!clean && !discarded_)
    papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "The filter ended with %s %d",
                WIFEXITED(status) ? "status" : "signal", WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status));
  clean = clean && !upstreamFailed_;
  if (clean && !discarded_ && !held_.empty()) {
    if (papplDeviceWrite(device_, held_.data(), held_.size()) != static_cast<ssize_t>(held_.size())) {
      deviceFailed_ = true;
      papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "Unable to send the job stream to the printer");
    }
    papplDeviceFlush(device_);
  } else if (!held_.empty()) {
    papplLogJob(job_, PAPPL_LOGLEVEL_INFO, "Not sent to the printer: %lu bytes of an unfinished job stream",
                static_cast<unsigned long>(held_.size()));
  }
  std::string().swap(held_);
  return clean && !discarded_ && !deviceFailed_;
}

// 'TFilterRun::Discard()' - Kill the filter; nothing of its stream is sent.
void TFilterRun::Discard() {
  discarded_ = true;
  if (pid_ > 0) kill(pid_, SIGKILL);
}

// 'TFilterRun::Pump()' - Keep standard output for Finish() and turn
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
      if (n > 0) {
        if (!discarded_) held_.append(buf, static_cast<size_t>(n));
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
}
