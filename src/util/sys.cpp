// Time and sleep helpers.
// Copyright 2026 The rastertobrellian authors.
#include "util/sys.h"

#include <cerrno>
#include <ctime>
#include <sys/time.h>

uint64_t Sys_NowMs() {
  struct timeval tv;
  gettimeofday(&tv, nullptr);
  return static_cast<uint64_t>(tv.tv_sec) * 1000u + static_cast<uint64_t>(tv.tv_usec) / 1000u;
}

void Sys_SleepMs(uint32_t ms) {
  struct timespec req;
  req.tv_sec = ms / 1000;
  req.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
  struct timespec rem;
  while (nanosleep(&req, &rem) != 0 && errno == EINTR) req = rem;
}
