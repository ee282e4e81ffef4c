// The application's "file:" devices: job streams written into a directory or a file without following links.
// Copyright 2026 The rastertobrellian authors.
//
// The server runs as root, and a directory device names its file after the
// job, a name any client chooses.  So the stream is written to a new file
// that only this open can have made (O_CREAT | O_EXCL | O_NOFOLLOW, a name
// of the server's own) and renamed onto the job's file name when the job
// ends: rename replaces a planted link instead of writing through it.  A
// device that names a file appends to it, refusing a link or a hard-linked
// file; a character device (a printer port) is opened as it is.
#include "app/file_device.h"

#include <fcntl.h>
#include <pappl/pappl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "app/device_state.h"

// PAPPL 1.3.1 adds its built-in schemes only while it has none at all, so
// once ours is in, the network ("socket", "snmp", "dnssd") and "usb"
// schemes must be added by hand.  These two functions are exported by
// libpappl 1.3.1 but not declared in its public headers.
extern "C" void _papplDeviceAddNetworkSchemes(void);
extern "C" void _papplDeviceAddUSBScheme(void);

namespace {

// An open "file:" device.
struct TFileDevice {
  int fd = -1;
  int dirFd = -1;          // directory device: the directory, for the final rename
  std::string partName;    // directory device: the file written
  std::string finalName;   // directory device: the job's file name
};

std::atomic<unsigned> g_filePartCounter{0};

// 'FileDev_Fail()' - An open that failed: the reason to PAPPL's log and
// to the printer's state message (app/device_state.h).
void FileDev_Fail(pappl_device_t* device, const char* uri, const std::string& text) {
  papplDeviceError(device, "%s", text.c_str());
  DevState_Failed(uri, text);
}

// 'FileDev_Open()' - PAPPL open callback: a directory, a character device
// or a plain file.
bool FileDev_Open(pappl_device_t* device, const char* uri, const char* name) {
  char scheme[32], userpass[32], host[256], resource[1024];
  int port = 0;
  DevState_Opening(uri);
  if (httpSeparateURI(HTTP_URI_CODING_ALL, uri, scheme, sizeof(scheme), userpass, sizeof(userpass), host,
                      sizeof(host), &port, resource, sizeof(resource)) < HTTP_URI_STATUS_OK) {
    FileDev_Fail(device, uri, std::string("Bad file device URI \"") + uri + "\".");
    return false;
  }
  char* options = strchr(resource, '?');
  if (options) *options++ = '\0';
  TFileDevice* fdev = new TFileDevice;
  struct stat st;
  int dirFd = open(resource, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirFd >= 0) {
    fdev->dirFd = dirFd;
    fdev->finalName = FileDev_OutputName(name, FileDev_Extension(options));
    fdev->partName = ".part-" + std::to_string(getpid()) + "-" + std::to_string(++g_filePartCounter) + "-" +
                     fdev->finalName;
    fdev->fd = openat(dirFd, fdev->partName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0640);
    if (fdev->fd < 0)
      FileDev_Fail(device, uri,
                   std::string("Unable to create a file in \"") + resource + "\": " + strerror(errno) + ".");
  } else if (stat(resource, &st) == 0 && S_ISCHR(st.st_mode)) {
    fdev->fd = open(resource, O_WRONLY | O_CLOEXEC);
    if (fdev->fd < 0)
      FileDev_Fail(device, uri, std::string("Unable to open \"") + resource + "\": " + strerror(errno) + ".");
  } else {
    fdev->fd = open(resource, O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0640);
    if (fdev->fd >= 0 && (fstat(fdev->fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink != 1)) {
      FileDev_Fail(device, uri,
                   std::string("Not writing to \"") + resource + "\": not a regular file with one link.");
      close(fdev->fd);
      fdev->fd = -1;
    } else if (fdev->fd < 0) {
      FileDev_Fail(device, uri,
                   std::string("Unable to open \"") + resource + "\": " +
                       (errno == ELOOP ? "it is a symbolic link" : strerror(errno)) + ".");
    } else {
      fcntl(fdev->fd, F_SETFL, O_WRONLY | O_APPEND);
    }
  }
  if (fdev->fd < 0) {
    if (fdev->dirFd >= 0) close(fdev->dirFd);
    delete fdev;
    return false;
  }
  papplDeviceSetData(device, fdev);
  DevState_Opened(uri);
  return true;
}

// 'FileDev_Close()' - PAPPL close callback: a directory device's file
// gets its job's name.
void FileDev_Close(pappl_device_t* device) {
  TFileDevice* fdev = static_cast<TFileDevice*>(papplDeviceGetData(device));
  if (!fdev) return;
  if (fdev->fd >= 0) close(fdev->fd);
  if (fdev->dirFd >= 0) {
    if (renameat(fdev->dirFd, fdev->partName.c_str(), fdev->dirFd, fdev->finalName.c_str()) != 0)
      papplDeviceError(device, "The job stream stays in \"%s\": it could not be named \"%s\" (%s).",
                       fdev->partName.c_str(), fdev->finalName.c_str(), strerror(errno));
    close(fdev->dirFd);
  }
  delete fdev;
  papplDeviceSetData(device, nullptr);
}

// 'FileDev_Write()' - PAPPL write callback: every byte, or -1.
ssize_t FileDev_Write(pappl_device_t* device, const void* buffer, size_t bytes) {
  TFileDevice* fdev = static_cast<TFileDevice*>(papplDeviceGetData(device));
  if (!fdev || fdev->fd < 0) return -1;
  const char* p = static_cast<const char*>(buffer);
  size_t done = 0;
  while (done < bytes) {
    ssize_t n = write(fdev->fd, p + done, bytes - done);
    if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (n < 0) return -1;
    done += static_cast<size_t>(n);
  }
  return static_cast<ssize_t>(done);
}

}  // namespace

// 'FileDev_OutputName()' - Safe, bounded file name from a job name.
std::string FileDev_OutputName(const char* jobName, const std::string& ext) {
  std::string out;
  for (const char* p = jobName ? jobName : ""; *p && out.size() < FILEDEV_MAX_NAME; ++p) {
    char c = *p;
    bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                c == '_' || c == '.';
    out += keep ? c : '_';
  }
  if (out.empty()) out = "job";
  if (out[0] == '.') out[0] = '_';
  return out + "." + ext;
}

// 'FileDev_Extension()' - The "ext=" option, checked.
std::string FileDev_Extension(const char* options) {
  if (!options || strncmp(options, "ext=", 4) != 0) return "prn";
  std::string ext;
  for (const char* p = options + 4; *p && *p != '&'; ++p) {
    bool alnum = (*p >= 'a' && *p <= 'z') || (*p >= 'A' && *p <= 'Z') || (*p >= '0' && *p <= '9');
    if (!alnum || ext.size() >= 16) return "prn";
    ext += *p;
  }
  return ext.empty() ? "prn" : ext;
}

// 'FileDev_Register()' - Our "file" scheme, before PAPPL adds its own;
// then PAPPL's other schemes.
void FileDev_Register() {
  papplDeviceAddScheme("file", PAPPL_DEVTYPE_FILE, nullptr, FileDev_Open, FileDev_Close, nullptr, FileDev_Write,
                       nullptr, nullptr);
  _papplDeviceAddNetworkSchemes();
  _papplDeviceAddUSBScheme();
}
