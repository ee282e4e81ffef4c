// Holding back the signals whose handlers end the process.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <csignal>
#include <pthread.h>

// 'TSignalBlock' - Blocks SIGTERM, SIGINT, SIGABRT, SIGHUP and SIGQUIT for
// its lifetime and restores the previous mask afterwards.  Their handlers
// call exit(), whose exit handler frees memory and writes the log: were one
// to arrive while the allocator is busy with the page buffer, that handler
// would wait for the allocator's lock for ever.  A signal that arrives
// meanwhile is delivered when the block ends.
class TSignalBlock {
 public:
  TSignalBlock() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGABRT);
    sigaddset(&set, SIGHUP);
    sigaddset(&set, SIGQUIT);
    pthread_sigmask(SIG_BLOCK, &set, &saved_);
  }
  ~TSignalBlock() { pthread_sigmask(SIG_SETMASK, &saved_, nullptr); }
  TSignalBlock(const TSignalBlock&) = delete;
  TSignalBlock& operator=(const TSignalBlock&) = delete;

 private:
  sigset_t saved_;
};
