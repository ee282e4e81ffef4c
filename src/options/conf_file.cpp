// Opening configuration files with the trust checks, and the warning that
// tells why one was refused.
// Copyright 2026 The rastertobrellian authors.
#include "options/conf_file.h"

#include <cerrno>

#include "log/log.h"
#include "util/safe_file.h"
#include "util/trusted_file.h"

int Conf_OpenFile(const char* path) {
  std::string refusal;
  int fd = File_OpenConfig(path, &refusal);
  if (fd < 0 && !refusal.empty()) {
    int error = errno;
    Log_Write(LOG_WARNING, "Conf_OpenFile --> file not trusted (%s): %s", path, refusal.c_str());
    errno = error;
  }
  return fd;
}

int Conf_ReadFile(const char* path, size_t maxBytes, std::string* out) {
  out->clear();
  int fd = Conf_OpenFile(path);
  if (fd < 0) return -1;
  return File_ReadAll(fd, maxBytes, out);
}
