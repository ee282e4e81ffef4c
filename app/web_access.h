// Who may change a printer, the system or a preset, and small page helpers.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

// 'Web_IsLocalClient()' - The request came from this machine itself: a
// local socket, or a connection from 127.0.0.1 or ::1 whose Host header
// (and Origin and Referer, when sent) name the loopback address.  The
// HTTP library of PAPPL 1.3.1 drops header fields it does not know, so
// forwarding headers (Forwarded, X-Forwarded-For) cannot be seen: a
// reverse proxy on this machine is told apart by the Host, Origin or
// Referer of the client it forwards, which name the proxy's public name.
bool Web_IsLocalClient(pappl_client_t* client);

// 'Web_HostIsLoopback()' - host (a Host header or the host part of a URL,
// with or without a port) names the loopback address: "localhost",
// "127.0.0.1", "[::1]".
bool Web_HostIsLoopback(const std::string& host);

// 'Web_IsSignedIn()' - The request carries HTTP Basic credentials whose
// password is the web password set on the Security page.  False when no
// web password is set.
bool Web_IsSignedIn(pappl_client_t* client);

// 'Web_SameOrigin()' - The request has no Origin header, or one naming
// the host and port it was sent to (a form of this server, not of another
// web site).
bool Web_SameOrigin(pappl_client_t* client);

// 'Web_AuthCallback()' - PAPPL's authorization callback (used when no PAM
// service is configured): this machine, or a signed-in administrator
// whose request does not come from another site's form; everything else
// gets 401 (sign in) or 403 (no web password set, or another site).
http_status_t Web_AuthCallback(pappl_client_t* client, const char* group, gid_t groupid, void* data);

// 'Web_MayChange()' - Changes are accepted from this client: PAPPL's own
// authorization, which is Web_AuthCallback() or, with a PAM service
// (auth-service), a user that service authenticates.
bool Web_MayChange(pappl_client_t* client);

// 'Web_SessionToken()' - The application's own form token for this
// client's session: a hash of the server run's session key and the
// client's credentials (the Authorization header), or of "local" for this
// machine.  PAPPL 1.3.1's own token is one value for every client of a
// server run; this one also differs between signed-in sessions.  Take it
// before the request body is read (the header fields are gone after).
std::string Web_SessionToken(pappl_client_t* client);

// 'Web_StartForm()' - papplClientHTMLStartForm() plus a hidden
// "brellian-token" field holding token.
void Web_StartForm(pappl_client_t* client, const char* path, bool multipart, const std::string& token);

// 'Web_FormTokenOk()' - The posted form passes PAPPL's own check and its
// "brellian-token" field is token, which is not empty.
bool Web_FormTokenOk(pappl_client_t* client, int num_form, cups_option_t* form, const std::string& token);

// The message of a form that fails Web_FormTokenOk().
extern const char* const WEB_INVALID_FORM;

// 'Web_Message()' - A paragraph with a message; error messages in bold.
// The text is escaped.
void Web_Message(pappl_client_t* client, const std::string& text, bool error);

// 'Web_FormValue()' - A form value, "" when absent.
std::string Web_FormValue(int num_form, cups_option_t* form, const char* name);

// 'Web_ParseNumber()' - text is a decimal number from lo to hi and
// nothing else (no sign, space or trailing character): true with *value.
bool Web_ParseNumber(const std::string& text, int lo, int hi, int* value);
