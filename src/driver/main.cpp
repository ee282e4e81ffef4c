// Entry point of the rastertobrellian filter: start-up, arguments, exit.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: rastertobrellian job-id user title copies options [file]
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/lifecycle.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "status/tables.h"

// 'main()' - Prepare the process (tables, log, signals, exit handler), log
// the command line, check the argument count and run the one printing task.
// Returns g_exitStatus; the exit handler then deletes the task and ends the
// process with that status.
int main(int argc,      // I - Number of arguments (6 or 7)
         char** argv) { // I - job-id user title copies options [file]
  Proc_GuardStandardDescriptors();

  Status_BuildTables();
  Log_SetFileName(BRELLIAN_LOG_FILE_NAME);
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(Log_ReadLevel(BRELLIAN_PROGRAM_NAME, LOG_LOG));

  struct utsname system;
  if (uname(&system) != 0) memset(&system, 0, sizeof system);
  Log_Write(LOG_LOG, "main --> entry(%d) os(%s) version(%s) driver(%s) log(%04X)", argc,
            system.sysname, system.version, BRELLIAN_VERSION,
            static_cast<unsigned>(Log_GetLevel()));

  // Directories and files created from here on get their full modes.  The
  // log directory, made by the line above when it was missing, keeps the
  // modes of the umask the filter was started with.
  umask(0);

  Proc_InstallSignalHandlers();
  setbuf(stderr, nullptr);
  atexit(Proc_ExitHandler);

  Proc_LogArguments(argc, argv);

  if (argc < 6 || argc > 7) {
    fprintf(stderr, "ERROR: %s job-id user title copies options [file]\n",
            Proc_BaseName(argc > 0 ? argv[0] : nullptr));
    g_exitStatus = 1;
    return 1;
  }

  // The exit handler, not main, deletes the task.
  g_printingTask = new (std::nothrow) TPrintingTask(argc, argv);
  if (!g_printingTask) {
    Log_Write(LOG_ERROR, "main --> out of memory for the printing task");
    g_exitStatus = 1;
    return 1;
  }
  g_printingTask->run();
  return g_exitStatus;
}
