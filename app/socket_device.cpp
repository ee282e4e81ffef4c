// The application's "socket:" devices: network printers reached over raw TCP, with a bounded connect and a plain cause.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL 1.3.1's own "socket" scheme waits up to 30 seconds for a printer
// that does not answer, while PAPPL holds the printer's lock (so every
// status request on the printer waits too), and words a refused
// connection "Host is down".  This one connects in the background within
// SOCKDEV_CONNECT_SECONDS (app/socket_connect.cpp) and waits for it at
// most SOCKDEV_OPEN_WAIT_MS, names the real cause, and records it
// (app/device_state.h) so that the printer's state message can show it;
// PAPPL tries again 5 seconds later and then takes the connection made
// meanwhile.
// It reads no status or device ID from the printer (PAPPL's asks SNMP):
// the application has no status query of the printer.
#include "app/socket_device.h"

#include <pappl/pappl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "app/device_state.h"

namespace {

// 'SockDev_Open()' - PAPPL open callback: the connection to the URI's
// host and port (9100 unless given) made in the background, recording
// the outcome for the state message.
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
  int fd = -1;
  switch (SockDev_Take(uri, host, port > 0 ? port : 9100, &fd, &message)) {
    case TConnectOutcome::CONNECTED:
      break;
    case TConnectOutcome::PENDING:
      // Still trying: the last failure stays the state message, else
      // this one says that the printer has not answered yet.
      if (!DevState_Message(uri).empty()) message = DevState_Message(uri);
      papplDeviceError(device, "%s", message.c_str());
      DevState_Failed(uri, message);
      return false;
    case TConnectOutcome::FAILED:
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

// 'SockDev_Register()' - Our "socket" scheme, before PAPPL adds its own.
void SockDev_Register() {
  papplDeviceAddScheme("socket", PAPPL_DEVTYPE_SOCKET, nullptr, SockDev_Open, SockDev_Close, SockDev_Read,
                       SockDev_Write, nullptr, nullptr);
}
