// Polling standard input without waiting.
// Copyright 2026 The rastertobrellian authors.
#include <sys/select.h>
#include <unistd.h>

#include "status/tables.h"

// 'Sys_StdinReady()' - select() on descriptor 0 with a zero timeout: 1 when
// standard input is readable (data or end of file), 0 when not or on error.
int32_t Sys_StdinReady() {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(STDIN_FILENO, &readable);
  struct timeval zero = {0, 0};
  int n = select(STDIN_FILENO + 1, &readable, nullptr, nullptr, &zero);
  return (n > 0 && FD_ISSET(STDIN_FILENO, &readable)) ? 1 : 0;
}
