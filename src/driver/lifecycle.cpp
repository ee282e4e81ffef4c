// Process lifecycle of the filter: descriptors, signals, exit, arguments.
// Copyright 2026 The rastertobrellian authors.
#include "driver/lifecycle.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "jobstream/record_out.h"
#include "log/log.h"
#include "util/signal_block.h"

#if defined(BRELLIAN_LEAK_CHECK)
#include <sanitizer/lsan_interface.h>

// '__lsan_default_suppressions()' - Leaks the filter cannot free: the PPD
// library of Debian 12 (libcups 2.4.2) loses a few strings it copies while
// it builds its PPD cache (cupsMarkOptions with a "media" option), although
// the filter closes the PPD.  Suppressed by that library function only, so
// that every leak of the filter's own code is still reported.
extern "C" const char* __lsan_default_suppressions() { return "leak:_ppdCacheCreateWithPPD\n"; }
#endif

namespace {

// 'Proc_ExitSignal()' - Before the job starts a termination request ends the
// process; the exit handler then delivers g_exitStatus.
void Proc_ExitSignal(int) { exit(1); }

// 'Proc_CancelSignal()' - While the job runs a termination request only asks
// the page loop to stop.
void Proc_CancelSignal(int) { g_cancelJob = 1; }

}  // namespace

void Proc_GuardStandardDescriptors() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (fcntl(fd, F_GETFD) != -1) continue;
    int nullFd = open("/dev/null", fd == 0 ? O_RDONLY : O_WRONLY);
    if (nullFd >= 0 && nullFd != fd) {
      dup2(nullFd, fd);
      close(nullFd);
    }
  }
}

void Proc_InstallSignalHandlers() {
  signal(SIGTERM, Proc_ExitSignal);
  signal(SIGABRT, Proc_ExitSignal);
  signal(SIGINT, Proc_ExitSignal);
  // A hang-up or quit request (a filter run from a terminal) ends the
  // process the way SIGINT does, so that it too leaves whole records and
  // the status the job has reached, instead of cutting a record short or
  // dumping core.
  signal(SIGHUP, Proc_ExitSignal);
  signal(SIGQUIT, Proc_ExitSignal);
  // SIGKILL cannot be caught; the attempt is refused by the system and its
  // result ignored.
  signal(SIGKILL, Proc_ExitSignal);
  signal(SIGPIPE, SIG_IGN);
}

void Proc_InstallCancelHandler() { signal(SIGTERM, Proc_CancelSignal); }

void Proc_ExitHandler() {
  // Held for good: the process ends here, and a second signal must not call
  // exit() again while the task is being destroyed.
  TSignalBlock hold;
  if (g_printingTask) {
    TPrintingTask* task = g_printingTask;
    g_printingTask = nullptr;
    // Every record is handed to the output whole, so what is still
    // buffered ends on a record boundary: push it out.
    Rec_FlushWhole(task->output);
    delete task;
  }
#if defined(BRELLIAN_LEAK_CHECK)
  // _exit skips the sanitizer's own check at exit; run it here, after the
  // task is gone, so that a sanitizer build reports what the job leaked.
  __lsan_do_leak_check();
#endif
  _exit(g_exitStatus);
}

void Proc_LogArguments(int argc, char** argv) {
  for (int i = 0; i < argc; ++i) {
    const char* arg = argv[i] ? argv[i] : "";
    if (strnlen(arg, PROC_ARG_LOG_LIMIT) >= PROC_ARG_LOG_LIMIT)
      Log_Write(LOG_LOG, "ARG%d: %s", i, "{too long}");
    else
      Log_Write(LOG_LOG, "ARG%d: %s", i, arg);
  }
}

const char* Proc_BaseName(const char* path) {
  if (!path) return "";
  const char* slash = strrchr(path, '/');
  return slash ? slash + 1 : path;
}
