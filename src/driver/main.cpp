// Entry point of the rastertobrellian filter: start-up, arguments, exit.
// Copyright 2026 The rastertobrellian authors.
//
// Usage: rastertobrellian job-id user title copies options [file]
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/lifecycle.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "status/tables.h"

int main(int argc, char** argv) {
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

  // Directories and files created from here on get their full modes.
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

  g_printingTask = new TPrintingTask(argc, argv);
  g_printingTask->run();
  return g_exitStatus;
}
