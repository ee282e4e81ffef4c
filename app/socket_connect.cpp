// Connections to network printers: bounded in time, with the cause in plain words, made in the background.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL opens a printer's device while it holds the printer's lock, so
// the open must not wait long: the connection is made by a thread of its
// own (one per device URI at a time), and the open waits for it at most
// SOCKDEV_OPEN_WAIT_MS.  A connection that succeeds later is kept for the
// next open (PAPPL tries again every 5 seconds), for at most
// SOCKDEV_KEEP_SECONDS.
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>

#include "app/socket_device.h"

namespace {

// The background connection to one device URI.
struct TConnectAttempt {
  bool running = false;  // the thread is connecting
  bool done = false;     // it has ended: fd or message hold the outcome
  int fd = -1;
  std::string message;
  time_t doneAt = 0;
};

// The attempts and their lock.  Never destroyed: a connecting thread may
// still run while the process exits.
struct TConnects {
  std::mutex lock;
  std::condition_variable done;
  std::map<std::string, TConnectAttempt> byUri;
};
TConnects& g_connects = *new TConnects;

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


// 'SockDev_Take()' - Start the attempt when none runs, wait for it a
// little, and hand over its outcome once it has one.
TConnectOutcome SockDev_Take(const std::string& uri, const std::string& host, int port, int* fd,
                             std::string* message) {
  std::unique_lock<std::mutex> lock(g_connects.lock);
  TConnectAttempt& attempt = g_connects.byUri[uri];
  if (attempt.done && attempt.fd >= 0 && time(nullptr) - attempt.doneAt > SOCKDEV_KEEP_SECONDS) {
    close(attempt.fd);  // too old to trust: the printer may have dropped it
    attempt = TConnectAttempt();
  }
  if (!attempt.running && !attempt.done) {
    attempt.running = true;
    std::thread([uri, host, port]() {
      std::string text;
      int connected = SockDev_Connect(host, port, SOCKDEV_CONNECT_SECONDS, &text);
      std::lock_guard<std::mutex> done(g_connects.lock);
      TConnectAttempt& a = g_connects.byUri[uri];
      a = TConnectAttempt();
      a.done = true;
      a.fd = connected;
      a.message = text;
      a.doneAt = time(nullptr);
      g_connects.done.notify_all();
    }).detach();
  }
  if (!g_connects.done.wait_for(lock, std::chrono::milliseconds(SOCKDEV_OPEN_WAIT_MS), [&] { return attempt.done; })) {
    *message = "Connecting to " + SockDev_HostPort(host, port) + ": no answer yet.";
    return TConnectOutcome::PENDING;
  }
  *fd = attempt.fd;
  *message = attempt.message;
  g_connects.byUri.erase(uri);
  return *fd >= 0 ? TConnectOutcome::CONNECTED : TConnectOutcome::FAILED;
}
