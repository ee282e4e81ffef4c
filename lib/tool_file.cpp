// Whole-file output and input for the tools.
// Copyright 2026 The rastertobrellian authors.
#include "lib/tool_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "util/safe_file.h"

// 'Tool_WriteFile()' - Replace the regular file at path with bytes.
bool Tool_WriteFile(const std::string& path, const std::string& bytes) {
  int fd = File_OpenRegular(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  return close(fd) == 0 && done == bytes.size();
}

// 'Tool_WriteAll()' - Write bytes to a stream and flush it.
bool Tool_WriteAll(FILE* stream, const std::string& bytes) {
  if (!stream) return false;
  size_t n = bytes.empty() ? 0 : fwrite(bytes.data(), 1, bytes.size(), stream);
  return fflush(stream) == 0 && n == bytes.size();
}

// 'Tool_ReadAll()' - Read a stream to its end, at most maxBytes.
bool Tool_ReadAll(FILE* stream, size_t maxBytes, std::string* out) {
  if (!stream || !out) return false;
  out->clear();
  char buf[65536];
  for (;;) {
    size_t n = fread(buf, 1, sizeof buf, stream);
    if (n > 0) {
      if (out->size() + n > maxBytes) {
        errno = EFBIG;
        return false;
      }
      out->append(buf, n);
    }
    if (n < sizeof buf) return !ferror(stream);
  }
}

// 'Tool_MakeDir()' - mkdir, then a check of what is there.
bool Tool_MakeDir(const std::string& dir, std::string* error) {
  if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST) {
    *error = "cannot create " + dir + ": " + strerror(errno);
    return false;
  }
  struct stat st;
  if (lstat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    *error = dir + " is not a directory";
    return false;
  }
  return true;
}
