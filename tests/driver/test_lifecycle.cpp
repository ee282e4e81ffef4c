// Signal and exit handling of the filter's process, run in child processes.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/lifecycle.h"
#include "driver/printing_task.h"
#include "log/log.h"

namespace {

struct TChild {
  int status = -1;   // exit status, or 128 + signal
  std::string err;   // what the child wrote to standard error
};

// 'RunChild()' - Run body in a forked child whose standard error is
// captured; the child ends through body or with status 99.
TChild RunChild(void (*body)()) {
  TChild child;
  int fds[2];
  if (pipe(fds) != 0) return child;
  pid_t pid = fork();
  if (pid == 0) {
    dup2(fds[1], 2);
    close(fds[0]);
    close(fds[1]);
    body();
    _exit(99);
  }
  close(fds[1]);
  char buf[4096];
  ssize_t n;
  while ((n = read(fds[0], buf, sizeof buf)) > 0) child.err.append(buf, static_cast<size_t>(n));
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  child.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return child;
}

// 'PrepareChild()' - The start-up steps of main that concern signals and
// exit, with g_exitStatus preset to 5 so that it can be told from exit(1).
void PrepareChild() {
  g_exitStatus = 5;
  Proc_InstallSignalHandlers();
  atexit(Proc_ExitHandler);
}

}  // namespace

TEST(Lifecycle, TerminationSignalsEndWithTheGlobalExitStatus) {
  EXPECT_EQ(5, RunChild([] { PrepareChild(); raise(SIGTERM); }).status);
  EXPECT_EQ(5, RunChild([] { PrepareChild(); raise(SIGINT); }).status);
  EXPECT_EQ(5, RunChild([] { PrepareChild(); raise(SIGABRT); }).status);
}

TEST(Lifecycle, BrokenPipeIsIgnored) {
  EXPECT_EQ(99, RunChild([] {
              Proc_InstallSignalHandlers();
              raise(SIGPIPE);
            }).status);
}

TEST(Lifecycle, JobTimeTerminationOnlySetsTheCancelFlag) {
  EXPECT_EQ(42, RunChild([] {
              PrepareChild();
              Proc_InstallCancelHandler();
              g_cancelJob = 0;
              raise(SIGTERM);
              _exit(g_cancelJob == 1 ? 42 : 0);
            }).status);
}

TEST(Lifecycle, ExitHandlerDeletesTheTaskOnce) {
  TChild child = RunChild([] {
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_LOG);
    Log_SetDepth(0);
    PrepareChild();
    g_exitStatus = 3;
    static char arg0[] = "rastertobrellian";
    static char* argv[] = {arg0, nullptr};
    g_printingTask = new TPrintingTask(1, argv);
    exit(0);
  });
  EXPECT_EQ(3, child.status);
  EXPECT_EQ(" ~TPrintingTask --> gracefull exit.\n", child.err);
}

TEST(Lifecycle, ExitHandlerWithoutTaskOnlyExits) {
  TChild child = RunChild([] {
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_LOG);
    PrepareChild();
    g_printingTask = nullptr;
    exit(0);
  });
  EXPECT_EQ(5, child.status);
  EXPECT_EQ("", child.err);
}
