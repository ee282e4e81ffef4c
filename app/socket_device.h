// The application's "socket:" devices: network printers reached over raw TCP, with a bounded connect and a plain cause.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// How long one attempt to connect to a network printer may take.
constexpr int SOCKDEV_CONNECT_SECONDS = 10;

// 'SockDev_Register()' - Register the "socket" scheme of the application.
// Must be called before PAPPL's own network schemes are added (see
// FileDev_Register()): PAPPL keeps the first handler of a scheme.
void SockDev_Register();

// 'SockDev_Connect()' - Connect to host:port within timeoutSeconds.
// Returns the connected, blocking socket, or -1 with *message saying in
// plain words what went wrong ("Cannot connect to 192.0.2.20:9100:
// Connection refused.").  The caller closes the socket.
int SockDev_Connect(const std::string& host, int port, int timeoutSeconds, std::string* message);
