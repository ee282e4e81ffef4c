// The connection of a client sub-command to a running server.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/cups.h>

#include <string>

// A connection and the URIs that name the server's objects on it.
struct TCliServer {
  http_t* http = nullptr;
  std::string hostPort;    // "HOST:PORT", or "localhost" on the local socket
  std::string systemUri;   // "ipp://HOST:PORT/ipp/system"
  std::string printerUri;  // the printer named by -d (or by the -u URI's path), "" for the default
};

// 'Cli_Connect()' - Connect to the server that -u URI names, else to the
// local server through its socket (/run/brellian-printer-app.sock for
// root), starting one as the other sub-commands do when none runs.
// printer is the -d value or nullptr.  False with a message on standard
// error when no server can be reached; the caller closes *server->http.
bool Cli_Connect(const char* program, const char* uri, const char* printer, TCliServer* server);

// 'Cli_Request()' - A new request of operation for uri with the usual
// operation attributes (charset, language, the URI, the user's name).
ipp_t* Cli_Request(ipp_op_t op, const char* uriName, const std::string& uri);

// 'Cli_PrinterUri()' - The printer's URI; for the default printer, asks
// the server which it is.  "" with a message when there is none.
std::string Cli_PrinterUri(const char* program, TCliServer* server);
