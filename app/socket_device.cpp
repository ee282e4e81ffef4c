// The application's "socket:" devices: network printers reached over raw TCP, with a bounded connect and a plain cause.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL 1.3.1's own "socket" scheme waits up to 30 seconds for a printer
// that does not answer, while PAPPL holds the printer's lock, and words a
// refused connection "Host is down".  This one connects within
// SOCKDEV_CONNECT_SECONDS, names the real cause, and records it
// (app/device_state.h) so that the printer's state message can show it.
// It reads no status or device ID from the printer (PAPPL's asks SNMP):
// the application has no status query of the printer.
#include "app/socket_device.h"

#include <fcntl.h>
#include <netdb.h>
#include <pappl/pappl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "app/device_state.h"

namespace {

// 'SockDev_HostPort()' - "host:port", with brackets around an IPv6 address.
std::string SockDev_HostPort(const std::string& host, int port) {
  bool v6 = host.find(':') != std::string::npos;
  return (v6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

// 'SockDev_TryAddress()' - One non-blocking connect, waited for until the
// deadline.  The socket, or -1 with errno set (ETIMEDOUT when the time ran out).
int SockDev_TryAddress(const addrinfo* ai, std::chrono::steady_clock::time_point deadline) {
  int fd = socket(ai->ai_family, ai->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, ai->ai_protocol);
  if (fd < 0) return -1;
  int rc = connect(fd, ai->ai_addr, ai->ai_addrlen);
  int err = rc == 0 ? 0 : errno;
  while (err == EINPROGRESS || err == EINTR) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      err = ETIMEDOUT;
      break;
    }
    pollfd p = {fd, POLLOUT, 0};
    int n = poll(&p, 1, static_cast<int>(left.count()));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      err = n == 0 ? ETIMEDOUT : errno;
      break;
    }
    socklen_t len = sizeof(err);
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &err, &len) != 0) err = errno;
  }
  if (err != 0) {
    close(fd);
    errno = err;
    return -1;
  }
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return fd;
}

// 'SockDev_Open()' - PAPPL open callback: connect to the URI's host and
// port (9100 unless given), recording the outcome for the state message.
bool SockDev_Open(pappl_device_t* device, const char* uri, const char*) {
  char scheme[32], userpass[32], host[256], resource[256];
  int port = 0;
  DevState_Opening(uri);
  if (httpSeparateURI(HTTP_URI_CODING_ALL, uri, scheme, sizeof(scheme), userpass, sizeof(userpass), host,
                      sizeof(host), &port, resource, sizeof(resource)) < HTTP_URI_STATUS_OK || !*host) {
    std::string message = std::string("The device URI \"") + uri + "\" is not socket://HOST[:PORT]; correct it "
                          "on the printer's page.";
    papplDeviceError(device, "%s", message.c_str());
    DevState_Failed(uri, message);
    return false;
  }
  std::string message;
  int fd = SockDev_Connect(host, port > 0 ? port : 9100, SOCKDEV_CONNECT_SECONDS, &message);
  if (fd < 0) {
    papplDeviceError(device, "%s", message.c_str());
    DevState_Failed(uri, message);
    return false;
  }
  DevState_Opened(uri);
  papplDeviceSetData(device, reinterpret_cast<void*>(static_cast<intptr_t>(fd) + 1));
  return true;
}

// 'SockDev_Fd()' - The device's socket, or -1 (the data holds fd + 1, so
// that no data means no socket).
int SockDev_Fd(pappl_device_t* device) {
  return static_cast<int>(reinterpret_cast<intptr_t>(papplDeviceGetData(device))) - 1;
}

// 'SockDev_Close()' - PAPPL close callback.
void SockDev_Close(pappl_device_t* device) {
  int fd = SockDev_Fd(device);
  if (fd >= 0) close(fd);
  papplDeviceSetData(device, nullptr);
}

// 'SockDev_Read()' - PAPPL read callback: what the printer sent within 10 seconds, or -1.
ssize_t SockDev_Read(pappl_device_t* device, void* buffer, size_t bytes) {
  int fd = SockDev_Fd(device);
  if (fd < 0) return -1;
  pollfd p = {fd, POLLIN, 0};
  int n;
  while ((n = poll(&p, 1, 10000)) < 0 && errno == EINTR) {
  }
  if (n < 1 || !(p.revents & POLLIN)) return -1;
  ssize_t got;
  while ((got = read(fd, buffer, bytes)) < 0 && (errno == EINTR || errno == EAGAIN)) {
  }
  return got;
}

// 'SockDev_Write()' - PAPPL write callback: every byte, or -1.
ssize_t SockDev_Write(pappl_device_t* device, const void* buffer, size_t bytes) {
  int fd = SockDev_Fd(device);
  if (fd < 0) return -1;
  const char* p = static_cast<const char*>(buffer);
  size_t done = 0;
  while (done < bytes) {
    ssize_t n = send(fd, p + done, bytes - done, MSG_NOSIGNAL);
    if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (n < 0) return -1;
    done += static_cast<size_t>(n);
  }
  return static_cast<ssize_t>(done);
}

}  // namespace

// 'SockDev_Connect()' - Every address of the host in turn, all within the time.
int SockDev_Connect(const std::string& host, int port, int timeoutSeconds, std::string* message) {
  const std::string where = SockDev_HostPort(host, port);
  const std::string advice = " Check that the printer is switched on and connected to the network; the job prints "
                             "as soon as it answers.";
  addrinfo hints = {};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  int gai = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
  if (gai != 0) {
    *message = "Cannot find the address of \"" + host + "\": " +
               (gai == EAI_SYSTEM ? strerror(errno) : gai_strerror(gai)) + "." + advice;
    return -1;
  }
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
  int fd = -1, err = 0;
  for (const addrinfo* ai = list; ai && fd < 0 && std::chrono::steady_clock::now() < deadline; ai = ai->ai_next) {
    fd = SockDev_TryAddress(ai, deadline);
    if (fd < 0) err = errno;
  }
  freeaddrinfo(list);
  if (fd >= 0) return fd;
  if (err == ETIMEDOUT || err == 0)
    *message = "Cannot connect to " + where + ": no answer within " + std::to_string(timeoutSeconds) + " seconds." +
               advice;
  else
    *message = "Cannot connect to " + where + ": " + strerror(err) + "." + advice;
  return -1;
}

// 'SockDev_Register()' - Our "socket" scheme, before PAPPL adds its own.
void SockDev_Register() {
  papplDeviceAddScheme("socket", PAPPL_DEVTYPE_SOCKET, nullptr, SockDev_Open, SockDev_Close, SockDev_Read,
                       SockDev_Write, nullptr, nullptr);
}
