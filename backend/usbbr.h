// The two modes of the usbbr backend: listing printers and printing a job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <csignal>

// Set by the SIGTERM handler: the job was cancelled.
extern volatile sig_atomic_t g_usbbrCancel;

// 'Usbbr_Discover()' - List every connected printer of the model table as
// a "direct usbbr://..." line on standard output.  Returns a CUPS backend
// exit status.
int Usbbr_Discover();

// 'Usbbr_Print()' - Send the job (argv[6], or standard input) to the
// printer named by the device URI, waiting while it is not connected.
// Returns a CUPS backend exit status; on success it does not return, as the
// USB backend takes over the process.
int Usbbr_Print(int argc, char** argv);
