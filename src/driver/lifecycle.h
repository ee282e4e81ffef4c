// Process lifecycle of the filter: descriptors, signals, exit, arguments.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// Arguments this long or longer are logged as "{too long}".
constexpr size_t PROC_ARG_LOG_LIMIT = 1000;

// 'Proc_GuardStandardDescriptors()' - Open /dev/null on any of descriptors
// 0, 1 and 2 that is closed, so that no file the filter opens later can
// take the place of standard output.
void Proc_GuardStandardDescriptors();

// 'Proc_InstallSignalHandlers()' - SIGTERM, SIGABRT, SIGINT, SIGHUP and
// SIGQUIT end the process through exit(1), whose exit handler delivers
// g_exitStatus (not 1); SIGPIPE is ignored.
void Proc_InstallSignalHandlers();

// 'Proc_InstallCancelHandler()' - The job-time SIGTERM handler: it only sets
// g_cancelJob.
void Proc_InstallCancelHandler();

// 'Proc_ExitHandler()' - Registered with atexit: pushes out the records
// still buffered, destroys the task and ends the process with g_exitStatus
// (in sanitizer builds after the leak check).
void Proc_ExitHandler();

// 'Proc_LogArguments()' - "ARG%d: %s" for every argument.
void Proc_LogArguments(int argc, char** argv);

// 'Proc_BaseName()' - The part of path after its last "/" (the whole path if
// it has none; "" for null).
const char* Proc_BaseName(const char* path);
