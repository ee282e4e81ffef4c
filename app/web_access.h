// Who may change a printer's presets and settings from the web interface, and small page helpers.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

// 'Web_IsLocalClient()' - The request came from this machine's own
// loopback address (127.0.0.1 or ::1) or a local socket.
bool Web_IsLocalClient(pappl_client_t* client);

// 'Web_MayChange()' - Changes are accepted: with a PAM service configured
// (auth-service), from a user PAPPL has authenticated; without one, only
// from this machine.  Debian's PAPPL 1.3.1 checks web passwords wrongly,
// so a password alone is not trusted.
bool Web_MayChange(pappl_client_t* client);

// 'Web_Message()' - A paragraph with a message; error messages in bold.
void Web_Message(pappl_client_t* client, const std::string& text, bool error);

// 'Web_FormValue()' - A form value, "" when absent.
std::string Web_FormValue(int num_form, cups_option_t* form, const char* name);
