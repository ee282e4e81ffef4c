// Opening log and configuration files that no other user can have planted.
// Copyright 2026 The rastertobrellian authors.
#include "util/trusted_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "util/safe_file.h"

namespace {

// 'File_Refuse()' - Close fd (when open), set *refusal to "<path> <why>"
// and errno to error; returns -1.
int File_Refuse(int fd, const std::string& path, const std::string& why, std::string* refusal,
                int error) {
  if (fd >= 0) close(fd);
  *refusal = path + " " + why;
  errno = error;
  return -1;
}

// 'File_NameDirectory()' - Record in *directory (when given) that the
// directory at path was refused for problem.
void File_NameDirectory(TDirectoryRefusal* directory, const std::string& path, TDirectoryProblem problem) {
  if (!directory) return;
  directory->problem = problem;
  directory->path = path;
}

// 'File_CheckDirectory()' - 0 when the open directory dir (at path) is
// owned by root or the process's user and no one else may write in it;
// else -1 with the reason in *refusal and the directory in *directory.
int File_CheckDirectory(int dir, const std::string& path, std::string* refusal,
                        TDirectoryRefusal* directory) {
  struct stat st;
  if (fstat(dir, &st) != 0) return -1;
  if (!File_IsTrustedOwner(st.st_uid)) {
    File_NameDirectory(directory, path, DIR_PROBLEM_OWNER);
    return File_Refuse(-1, path, "is owned by user " + std::to_string(st.st_uid), refusal, ENOENT);
  }
  if (st.st_mode & (S_IWGRP | S_IWOTH)) {
    File_NameDirectory(directory, path, DIR_PROBLEM_WRITABLE);
    return File_Refuse(-1, path, "is writable by other users", refusal, ENOENT);
  }
  return 0;
}

// 'File_OpenRoot()' - Open the directory the walk starts from: the build's
// system root when path lies below it, else "/".  *rest receives the part
// of path below it, *walked the root's own path.
int File_OpenRoot(const char* path, const char** rest, std::string* walked) {
  const size_t rootLen = strlen(BRELLIAN_SYSROOT);
  if (rootLen > 0 && strncmp(path, BRELLIAN_SYSROOT, rootLen) == 0 && path[rootLen] == '/') {
    *rest = path + rootLen;
    *walked = BRELLIAN_SYSROOT;
    return open(BRELLIAN_SYSROOT, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  }
  *rest = path;
  *walked = "/";
  return open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// 'File_OpenStep()' - Open one component name below the open directory dir
// (closed here): a directory when more components follow, else the file.
// Returns the new descriptor or -1.
int File_OpenStep(int dir, const std::string& name, const std::string& path, bool last,
                  std::string* refusal, TDirectoryRefusal* directory) {
  int flags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | (last ? O_NONBLOCK : O_DIRECTORY);
  int fd = openat(dir, name.c_str(), flags);
  int error = errno;
  struct stat st;
  bool isLink = fd < 0 && fstatat(dir, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 &&
                S_ISLNK(st.st_mode);
  close(dir);
  if (isLink && !last) File_NameDirectory(directory, path, DIR_PROBLEM_LINK);
  if (isLink) return File_Refuse(-1, path, "is a symbolic link", refusal, last ? ELOOP : ENOENT);
  if (fd < 0) {
    errno = error;
    return -1;
  }
  if (!last) {
    if (File_CheckDirectory(fd, path, refusal, directory) != 0) {
      close(fd);
      return -1;
    }
    return fd;
  }
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
    return File_Refuse(fd, path, "is not a regular file", refusal, EINVAL);
  if (File_CheckOwned(st, path.c_str(), refusal) != 0) {
    close(fd);
    errno = ENOENT;
    return -1;
  }
  return fd;
}

}  // namespace

bool File_IsTrustedOwner(uid_t uid) { return uid == 0 || uid == geteuid(); }

int File_CheckOwned(const struct stat& st, const char* path, std::string* reason) {
  if (st.st_nlink != 1) {
    if (reason) *reason = std::string(path) + " has " + std::to_string(st.st_nlink) + " links";
    return EMLINK;
  }
  if (!File_IsTrustedOwner(st.st_uid)) {
    if (reason) *reason = std::string(path) + " is owned by user " + std::to_string(st.st_uid);
    return EPERM;
  }
  return 0;
}

int File_OpenOwned(const char* path, int flags, unsigned mode) {
  int fd = File_OpenRegular(path, flags, mode);
  if (fd < 0) return -1;
  struct stat st;
  int error = fstat(fd, &st) == 0 ? File_CheckOwned(st, path) : errno;
  if (error != 0) {
    close(fd);
    errno = error;
    return -1;
  }
  return fd;
}

int File_OpenConfig(const char* path, std::string* refusal, TDirectoryRefusal* directory) {
  refusal->clear();
  if (directory) *directory = TDirectoryRefusal();
  if (!path || path[0] != '/') {
    errno = ENOENT;
    return -1;
  }
  const char* rest;
  std::string walked;
  int dir = File_OpenRoot(path, &rest, &walked);
  if (dir < 0) return -1;
  if (File_CheckDirectory(dir, walked, refusal, directory) != 0) {
    close(dir);
    return -1;
  }
  if (walked == "/") walked.clear();
  const char* p = rest;
  while (*p == '/') ++p;
  if (*p == '\0') return File_Refuse(dir, path, "is not a regular file", refusal, EINVAL);
  for (;;) {
    const char* end = strchr(p, '/');
    std::string name = end ? std::string(p, static_cast<size_t>(end - p)) : std::string(p);
    while (end && *end == '/') ++end;
    bool last = !end || *end == '\0';
    walked += "/" + name;
    if (name == "." || name == "..")
      return File_Refuse(dir, walked, "is not a plain name", refusal, ENOENT);
    dir = File_OpenStep(dir, name, walked, last, refusal, directory);
    if (dir < 0 || last) return dir;
    p = end;
  }
}

int File_ReadConfig(const char* path, size_t maxBytes, std::string* out, std::string* refusal) {
  out->clear();
  int fd = File_OpenConfig(path, refusal);
  if (fd < 0) return -1;
  return File_ReadAll(fd, maxBytes, out);
}
