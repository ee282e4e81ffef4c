// Log destination files kept open between lines, reopened whenever the
// path no longer names the open file.
// Copyright 2026 The rastertobrellian authors.
#include "log/log_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "log/log.h"
#include "util/trusted_file.h"

namespace {

// 'LogFile_StillNamed()' - True when path still names the open file as it
// was opened: the same device and inode, owner, group and mode, and one
// link.  A path that is gone, renamed, replaced, linked a second time or
// changed in its permissions is opened again, so that the line lands where
// and as an open for every line would put it (or is dropped as that open
// would be).  One lstat per line; the open would walk the same path.
bool LogFile_StillNamed(const TLogFile* file, const std::string& path) {
  if (file->fd < 0 || file->path != path) return false;
  struct stat st;
  if (lstat(path.c_str(), &st) != 0) return false;
  return st.st_dev == file->dev && st.st_ino == file->ino && st.st_mode == file->mode &&
         st.st_uid == file->uid && st.st_gid == file->gid && st.st_nlink == 1;
}

// 'LogFile_Open()' - Open path for appending into file.  False, with errno
// set, when it can't be opened or is refused.
bool LogFile_Open(TLogFile* file, const std::string& path) {
  int fd = File_OpenOwned(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  if (fd < 0) return false;
  struct stat st;
  if (fstat(fd, &st) != 0) {
    int error = errno;
    close(fd);
    errno = error;
    return false;
  }
  file->fd = fd;
  file->path = path;
  file->dev = st.st_dev;
  file->ino = st.st_ino;
  file->mode = st.st_mode;
  file->uid = st.st_uid;
  file->gid = st.st_gid;
  return true;
}

}  // namespace

void LogFile_Close(TLogFile* file) {
  if (file->fd >= 0) close(file->fd);
  file->fd = -1;
  file->path.clear();
}

bool LogFile_Append(TLogFile* file, const std::string& path, const char* line, size_t length,
                    bool rotate) {
  if (!LogFile_StillNamed(file, path)) {
    LogFile_Close(file);
    if (!LogFile_Open(file, path)) return false;
  }
  ssize_t unused = write(file->fd, line, length);
  (void)unused;
  // A write to a file opened for appending lands at its end, which is then
  // the position the rotation asks for.
  if (rotate && lseek(file->fd, 0, SEEK_CUR) > LOG_ROTATE_BYTES) {
    unlink(path.c_str());
    LogFile_Close(file);
  }
  return true;
}
