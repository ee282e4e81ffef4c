// usbbr printing: find the USB backend's URI of the queue's printer, wait
// while it is not connected, then hand the job to the USB backend.
// Copyright 2026 The rastertobrellian authors.
#include <cups/backend.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "backend/usbbr.h"
#include "backend/usbbr_device.h"
#include "backend/usbbr_lower.h"

namespace {

// Longest wait between two looks for a printer that is not connected.
constexpr unsigned USBBR_MAX_DELAY_S = 10;

// 'Print_Wait()' - Sleep seconds in steps of 100 ms; false when cancelled.
bool Print_Wait(unsigned seconds) {
  for (unsigned i = 0; i < seconds * 10; ++i) {
    if (g_usbbrCancel) return false;
    struct timespec step = {0, 100 * 1000 * 1000};
    nanosleep(&step, nullptr);
  }
  return !g_usbbrCancel;
}

// 'Print_FindLower()' - The USB URI of the printer that uri names, "" when
// it is not connected; -1 when the USB backend cannot be run, -2 when
// cancelled, else 0.
int Print_FindLower(const std::string& lowerPath, const std::string& uri, std::string* lowerUri,
                    std::string* error) {
  std::vector<TBackendDevice> lower;
  int status = 0;
  int32_t r = Usbbr_ListLower(lowerPath, true, &g_usbbrCancel, &lower, &status, error);
  if (r == USBBR_LIST_NOT_RUN) return -1;
  if (r == USBBR_LIST_CANCELLED) return -2;
  lowerUri->clear();
  for (const TBackendDevice& l : lower) {
    TBackendDevice d;
    if (Usbbr_FromLower(l, &d) && Usbbr_Matches(uri, d)) {
      *lowerUri = l.uri;
      break;
    }
  }
  return 0;
}

// 'Print_Exec()' - Run the USB backend in this process with the same job
// arguments and its own device URI.  Returns only on failure.
int Print_Exec(const std::string& lowerPath, const std::string& lowerUri, int argc, char** argv) {
  std::vector<char*> args;
  args.push_back(const_cast<char*>(lowerUri.c_str()));
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  args.push_back(nullptr);
  setenv("DEVICE_URI", lowerUri.c_str(), 1);
  fprintf(stderr, "DEBUG: usbbr: sending the job through %s with %s\n", lowerPath.c_str(),
          lowerUri.c_str());
  signal(SIGTERM, SIG_DFL);
  execv(lowerPath.c_str(), args.data());
  fprintf(stderr, "ERROR: Unable to run the USB backend %s: %s\n", lowerPath.c_str(), strerror(errno));
  return CUPS_BACKEND_STOP;
}

}  // namespace

int Usbbr_Print(int argc, char** argv) {
  const char* envUri = cupsBackendDeviceURI(argv);
  std::string uri = envUri ? envUri : "", error;
  if (!Usbbr_CheckUri(uri, &error)) {
    fprintf(stderr, "ERROR: usbbr: %s.\n", error.c_str());
    return CUPS_BACKEND_STOP;
  }
  if (argc == 7 && access(argv[6], R_OK) != 0) {
    fprintf(stderr, "ERROR: Unable to open print file \"%s\": %s\n", argv[6], strerror(errno));
    return CUPS_BACKEND_FAILED;
  }
  std::string lowerPath = Usbbr_LowerPath(), lowerUri;
  bool waiting = false;
  for (unsigned delay = 1;; delay = delay * 2 > USBBR_MAX_DELAY_S ? USBBR_MAX_DELAY_S : delay * 2) {
    int found = Print_FindLower(lowerPath, uri, &lowerUri, &error);
    if (found == -1) {
      fprintf(stderr, "ERROR: usbbr: %s\n", error.c_str());
      return CUPS_BACKEND_STOP;
    }
    if (found == 0 && !lowerUri.empty()) break;
    if (found == 0) {
      // Said again on every look: the spooler shows the last INFO: line of
      // any filter of the job, so a message written once is soon replaced
      // (by the upstream filters' "Rendering completed") while the job
      // still waits for the printer.
      fputs("STATE: +connecting-to-device\n", stderr);
      fprintf(stderr, "INFO: Waiting for printer %s to be connected.\n", uri.c_str());
      waiting = true;
    }
    if (found == -2 || !Print_Wait(delay)) {
      fputs("INFO: Job cancelled before it reached the printer.\n", stderr);
      return CUPS_BACKEND_OK;
    }
  }
  if (waiting) fputs("STATE: -connecting-to-device\n", stderr);
  fprintf(stderr, "INFO: Printer %s found.\n", uri.c_str());
  return Print_Exec(lowerPath, lowerUri, argc, argv);
}
