// Files uploaded through a web form: taken only from the server's own temporary files.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_upload.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "util/safe_file.h"

namespace {

// 'Upload_IsMultipart()' - The request body was multipart/form-data.
bool Upload_IsMultipart(pappl_client_t* client) {
  http_t* http = papplClientGetHTTP(client);
  const char* type = http ? httpGetField(http, HTTP_FIELD_CONTENT_TYPE) : nullptr;
  return type && strncasecmp(type, "multipart/form-data", 19) == 0;
}

// 'Upload_TempDir()' - PAPPL's temporary directory, links resolved, no
// trailing slash; "" when it cannot be resolved.
std::string Upload_TempDir() {
  char resolved[PATH_MAX];
  if (!realpath(papplGetTempDir(), resolved)) return "";
  std::string dir = resolved;
  while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
  return dir;
}

}  // namespace

// 'Upload_IsTempName()' - dir, one slash, hexadecimal digits.
bool Upload_IsTempName(const std::string& path, const std::string& dir) {
  if (dir.empty() || path.size() <= dir.size() + 1 || path.compare(0, dir.size(), dir) != 0 ||
      path[dir.size()] != '/')
    return false;
  std::string name = path.substr(dir.size() + 1);
  if (name.size() > 64) return false;
  for (char c : name)
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return false;
  return true;
}

// 'Upload_Read()' - Check where the value points, then read it.
bool Upload_Read(pappl_client_t* client, const std::string& value, size_t cap, std::string* bytes,
                 std::string* error) {
  bytes->clear();
  *error = "No file was uploaded.";
  if (value.empty() || !Upload_IsMultipart(client) || !Upload_IsTempName(value, Upload_TempDir())) return false;
  int fd = open(value.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink != 1 || st.st_uid != geteuid()) {
    close(fd);
    return false;
  }
  int32_t rc = File_ReadAll(fd, cap, bytes);  // closes fd
  if (rc == 0) return true;
  bytes->clear();
  *error = errno == EFBIG ? "The file is larger than " + std::to_string(cap / 1024) + " KiB."
                          : "The uploaded file could not be read.";
  return false;
}
