// The application's access rules installed into PAPPL: web pages, IPP operations, the control socket.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

// 'Web_InstallSecurity()' - Called once after papplSystemCreate():
//   - without a PAM service (authService null or empty), PAPPL's pages and
//     operations are authorized by Web_AuthCallback() (this machine, or
//     the web password of the Security page);
//     PAPPL asks this same check for every IPP operation that changes
//     state (printers, the system, other users' jobs);
//   - the control socket of the client sub-commands is made owner-only
//     (mode 0600) as soon as the server runs.
void Web_InstallSecurity(pappl_system_t* system, const char* authService);

// 'Web_ControlSocketPath()' - The path of the control socket that PAPPL's
// main loop creates for the "server" sub-command: /run/NAME.sock for
// root, else TMPDIR/NAME<UID>.sock.
std::string Web_ControlSocketPath();
