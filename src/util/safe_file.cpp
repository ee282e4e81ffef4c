// Opening files without following links or blocking on FIFOs.
// Copyright 2026 The rastertobrellian authors.
#include "util/safe_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int File_OpenRegular(const char* path, int flags, unsigned mode) {
  if (!path || !*path) {
    errno = ENOENT;
    return -1;
  }
  int fd = open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, static_cast<mode_t>(mode));
  if (fd < 0) return -1;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    errno = EINVAL;
    return -1;
  }
  // O_NONBLOCK stays on: it only keeps the open from waiting on a FIFO, and
  // has no effect on reading or writing a regular file.
  return fd;
}

FILE* File_FOpenRegular(const char* path, const char* mode) {
  int flags;
  if (strcmp(mode, "r") == 0 || strcmp(mode, "rb") == 0) {
    flags = O_RDONLY;
  } else if (strcmp(mode, "w") == 0 || strcmp(mode, "wb") == 0) {
    flags = O_WRONLY | O_CREAT | O_TRUNC;
  } else if (strcmp(mode, "a") == 0 || strcmp(mode, "ab") == 0) {
    flags = O_WRONLY | O_CREAT | O_APPEND;
  } else if (strcmp(mode, "a+") == 0) {
    flags = O_RDWR | O_CREAT | O_APPEND;
  } else {
    errno = EINVAL;
    return nullptr;
  }
  int fd = File_OpenRegular(path, flags);
  if (fd < 0) return nullptr;
  FILE* f = fdopen(fd, mode);
  if (!f) {
    int e = errno;
    close(fd);
    errno = e;
  }
  return f;
}

int File_ReadAll(int fd, size_t maxBytes, std::string* out) {
  out->clear();
  char buf[65536];
  for (;;) {
    ssize_t n = read(fd, buf, sizeof buf);
    if (n < 0) {
      if (errno == EINTR) continue;
      int e = errno;
      close(fd);
      out->clear();
      errno = e;
      return -1;
    }
    if (n == 0) break;
    if (out->size() + static_cast<size_t>(n) > maxBytes) {
      close(fd);
      out->clear();
      errno = EFBIG;
      return -1;
    }
    out->append(buf, static_cast<size_t>(n));
  }
  close(fd);
  return 0;
}

int File_ReadCapped(const char* path, size_t maxBytes, std::string* out) {
  out->clear();
  int fd = File_OpenRegular(path, O_RDONLY);
  if (fd < 0) return -1;
  return File_ReadAll(fd, maxBytes, out);
}

bool File_IsSafeName(const char* name, size_t maxLen) {
  if (!name || !*name || name[0] == '.') return false;
  size_t n = 0;
  for (const char* p = name; *p; ++p, ++n) {
    unsigned char c = static_cast<unsigned char>(*p);
    if (c == '/' || c < 0x20 || c == 0x7F) return false;
    if (n >= maxLen) return false;
  }
  return true;
}
