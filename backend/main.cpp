// usbbr: the CUPS backend of Brellian card printers on USB, built on the
// spooler's own usb backend.
// Copyright 2026 The rastertobrellian authors.
#include <cups/backend.h>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "backend/usbbr.h"
#include "backend/usbbr_lower.h"
#include "status/model_text.h"

volatile sig_atomic_t g_usbbrCancel = 0;

static const char USAGE[] = "Usage: usbbr job-id user title copies options [file]\n";

static const char HELP[] =
    "Usage: usbbr\n"
    "  or:  usbbr job-id user title copies options [file]\n"
    "  or:  usbbr --help\n"
    "\n"
    "The CUPS backend of Brellian retransfer ID-card printers (models {ids-and})\n"
    "on USB.  The spooler runs it; it is not meant to be run by hand\n"
    "except to list printers.  It does not talk to USB itself: it runs the\n"
    "spooler's own usb backend (" USBBR_LOWER_BACKEND "), which\n"
    "finds the printer, claims its print interface and sends the data.\n"
    "\n"
    "Without arguments it lists every connected printer of these models, one\n"
    "line each: the class \"direct\", the URI\n"
    "usbbr://MAKER/MODEL?serial=SERIAL (for example\n"
    "usbbr://Brellian/{default-name}?serial=ABC123), then, each in double quotes, the\n"
    "make and model (\"Brellian {default-name}\"), the make and model with the serial\n"
    "number, the IEEE 1284 device ID and an empty location.\n"
    "\n"
    "A printer is listed when the IEEE 1284 device ID it reports names the maker\n"
    "\"Brellian\" (MFG:) and the model {names-or} (MDL:).  The URI\n"
    "is usbbr://MFG/MDL?serial=SERN from that device ID; a device ID without SERN:\n"
    "takes the serial number of the usb backend's URI.  Other printers are left to\n"
    "the usb backend.\n"
    "\n"
    "With the job arguments it prints: the device URI (DEVICE_URI) names the\n"
    "printer, and the job (the file, or standard input) goes to the printer whose\n"
    "listed usbbr URI is the same; a URI without \"?serial=\" takes the first\n"
    "printer of its model.  While no such printer is connected it reports\n"
    "\"STATE: +connecting-to-device\" and looks again after 1, 2, 4, 8 and then\n"
    "every 10 seconds, until the printer appears or the job is cancelled\n"
    "(SIGTERM); after every look that finds nothing it says the waiting state\n"
    "and its INFO: line again, so that the printer's status keeps saying it.\n"
    "Then the usb backend takes over the process with the printer's usb:// URI\n"
    "(including any \"&interface=N\") and the same arguments: it sends\n"
    "the job, waits while the printer is busy, reports \"STATE:\", \"INFO:\" and\n"
    "\"ERROR:\" lines, honours a cancel and gives the exit status.\n"
    "\n"
    "The serial number in the usbbr URI is the one the filter rastertobrellian\n"
    "reads from DEVICE_URI to find the printer's presets (everything behind\n"
    "\"?serial=\"); the usbbr URI never carries \"&interface=N\", so the presets of\n"
    "the printer are always found.\n"
    "\n"
    "Options:\n"
    "  -h, --help   show this text\n"
    "\n"
    "Installation: " USBBR_BACKEND_DIR "/usbbr, owned by root, mode 0700,\n"
    "so that the spooler runs it as root, as the usb backend needs.\n"
    "\n"
    "Examples:\n"
    "  lpinfo -v | grep usbbr\n"
    "\n"
    "  lpadmin -p cards -E -v 'usbbr://Brellian/{default-name}?serial=ABC123' -P {default-ppd}\n"
    "\n"
    "Exit status (CUPS backend codes): 0 the printers were listed, the job was\n"
    "sent, or it was cancelled before it reached the printer; 1 wrong arguments,\n"
    "an unreadable print file, or the listing failed; 4 the device URI is not a\n"
    "usbbr URI or the usb backend cannot be run (the queue is stopped); once the\n"
    "usb backend has taken over, its own exit status.\n";

// 'Usbbr_OnSigterm()' - The job was cancelled: note it for the wait loop.
static void Usbbr_OnSigterm(int) { g_usbbrCancel = 1; }

int main(int argc, char** argv) {
  setbuf(stderr, nullptr);
  if (argc == 2 && (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0)) {
    fputs(Model_Expand(HELP).c_str(), stdout);
    return CUPS_BACKEND_OK;
  }
  struct sigaction action;
  memset(&action, 0, sizeof action);
  action.sa_handler = Usbbr_OnSigterm;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);  // no SA_RESTART: a wait ends at once
  if (argc == 1) return Usbbr_Discover();
  if (argc != 6 && argc != 7) {
    fputs(USAGE, stderr);
    return CUPS_BACKEND_FAILED;
  }
  return Usbbr_Print(argc, argv);
}
