// The application's "socket:" devices: network printers reached over raw TCP, with a bounded connect and a plain cause.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// How long one attempt to connect to a network printer may take.
constexpr int SOCKDEV_CONNECT_SECONDS = 10;
// How long the device open (under PAPPL's printer lock) waits for it.
constexpr int SOCKDEV_OPEN_WAIT_MS = 1500;
// How long a connection made after its open gave up is kept for the next open.
constexpr int SOCKDEV_KEEP_SECONDS = 30;

// What SockDev_Take() found.
enum class TConnectOutcome { CONNECTED, FAILED, PENDING };

// 'SockDev_Register()' - Register the "socket" scheme of the application.
// Must be called before PAPPL's own network schemes are added (see
// FileDev_Register()): PAPPL keeps the first handler of a scheme.
void SockDev_Register();

// 'SockDev_Connect()' - Connect to host:port within timeoutSeconds.
// Returns the connected, blocking socket, or -1 with *message saying in
// plain words what went wrong ("Cannot connect to 192.0.2.20:9100:
// Connection refused.").  The caller closes the socket.
int SockDev_Connect(const std::string& host, int port, int timeoutSeconds, std::string* message);

// 'SockDev_Take()' - The background connection to host:port for the
// device uri: starts it when none runs, waits for it at most
// SOCKDEV_OPEN_WAIT_MS, then CONNECTED with the socket in *fd (the
// caller's to close), FAILED with the cause in *message, or PENDING
// (still trying; *message says so) when it has not ended yet.
TConnectOutcome SockDev_Take(const std::string& uri, const std::string& host, int port, int* fd,
                             std::string* message);
