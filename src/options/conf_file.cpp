// Opening configuration files with the trust checks, and the warnings that
// tell why one was refused.
// Copyright 2026 The rastertobrellian authors.
#include "options/conf_file.h"

#include <sys/stat.h>

#include <cerrno>

#include "driver/warning.h"
#include "log/log.h"
#include "util/safe_file.h"
#include "util/trusted_file.h"

namespace {

// 'Conf_WarnDirectory()' - The spooler's WARNING line for a file refused
// because of a directory on its way: which file, which directory, what is
// wrong with it and the command that puts it right.  Nothing for a refusal
// that concerns the file itself, nor when no file is there at all: the
// filter makes its directories 0777 itself, and a file that is missing is
// no loss to report.
void Conf_WarnDirectory(const char* path, const TDirectoryRefusal& directory) {
  struct stat st;
  if (directory.problem == DIR_PROBLEM_NONE || lstat(path, &st) != 0) return;
  const char* dir = directory.path.c_str();
  switch (directory.problem) {
    case DIR_PROBLEM_WRITABLE:
      Warn_Write("%s is not read: directory %s is writable by other users, so any of them could have put "
                 "the file there; make it writable by its owner only: chmod 755 %s", path, dir, dir);
      break;
    case DIR_PROBLEM_OWNER:
      Warn_Write("%s is not read: directory %s belongs to a user other than root or the filter's user; "
                 "give it to root: chown root %s", path, dir, dir);
      break;
    case DIR_PROBLEM_LINK:
      Warn_Write("%s is not read: %s is a symbolic link, not a directory; replace it with a directory "
                 "owned by root: rm %s && install -d -m 755 %s", path, dir, dir, dir);
      break;
    case DIR_PROBLEM_NONE: break;
  }
}

}  // namespace

int Conf_OpenFile(const char* path) {
  std::string refusal;
  TDirectoryRefusal directory;
  int fd = File_OpenConfig(path, &refusal, &directory);
  if (fd < 0 && !refusal.empty()) {
    int error = errno;
    Conf_WarnDirectory(path, directory);
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
