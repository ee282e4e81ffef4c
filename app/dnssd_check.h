// Whether DNS-SD (avahi-daemon) can be used; looking for network printers without it.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// The text shown where DNS-SD is needed but avahi-daemon does not answer.
extern const char* const g_dnssdUnavailableText;

// 'DnsSd_Available()' - Whether avahi-daemon answers now.  Asked once and
// remembered: PAPPL 1.3.1 makes its own DNS-SD connection once, when the
// server starts, so the answer holds for the life of the process.
//
// This file also gives the process its own avahi_service_browser_new(),
// which refuses a missing DNS-SD connection instead of aborting: PAPPL
// 1.3.1 passes one when it looks for network printers without avahi-daemon
// (the "Add Printer" page, the "devices" sub-command), and the DNS-SD
// library then ends the whole process on an assertion.
bool DnsSd_Available();
