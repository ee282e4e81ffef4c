// brellian-printer-app: an IPP Everywhere printer application for Brellian card printers.
// Copyright 2026 The rastertobrellian authors.
#include <pappl/pappl.h>
#include <signal.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "app/app_system.h"
#include "app/cli_commands.h"
#include "app/device_state.h"
#include "app/dnssd_check.h"
#include "app/file_device.h"
#include "app/format_check.h"
#include "app/models.h"
#include "app/pappl_driver.h"
#include "app/socket_device.h"
#include "app/stream_queue.h"
#include "app/uri_security.h"
#include "lib/tool_model.h"

#if defined(__SANITIZE_ADDRESS__)
// 'main' of a sanitizer build: PAPPL and libcups keep allocations to the
// end of the process by design (the client sub-commands never free their
// options); only leaks in our own code are reported.
extern "C" const char* __lsan_default_suppressions() { return "leak:libpappl.so\nleak:libcups.so\n"; }
#endif

// 'App_Usage()' - The text of --help beyond PAPPL's own.
static void App_Usage(void*) { fputs(App_UsageText(), stdout); }

// 'main()' - PAPPL's main loop with the three drivers.
int main(int argc, char* argv[]) {
  signal(SIGPIPE, SIG_IGN);  // a filter that ends early must not end the server
  Tool_Init();               // model tables for the presets; the library's trace log silent
  if (argc > 1 && Cli_Handles(argv[1])) return Cli_Run(argc, argv);
  if (argc > 1 && strcmp(argv[1], "devices") == 0 && !DnsSd_Available())
    fprintf(stderr, "brellian-printer-app: %s\n", g_dnssdUnavailableText);
  SockDev_Register();        // before PAPPL registers its own "socket" scheme
  FileDev_Register();        // before PAPPL registers its own "file" scheme
  (void)StreamQueue_Active();  // raster jobs wait for a busy printer
  (void)DevState_Active();     // the state message names why the device cannot be opened
  (void)Format_Active();       // unprintable documents are refused at submission
  (void)UriSec_Active();       // the printer URIs and their security values agree
  int32_t count = 0;
  const TAppModel* models = App_Models(&count);
  static std::vector<pappl_pr_driver_t> drivers;
  for (int32_t i = 0; i < count; ++i)
    drivers.push_back({models[i].driverName, App_Description(models[i]), nullptr, nullptr});
  return papplMainloop(argc, argv, BRELLIAN_APP_VERSION, nullptr, static_cast<int>(drivers.size()), drivers.data(),
                       Driver_AutoAdd, Driver_Callback, nullptr, nullptr, App_SystemCallback, App_Usage, nullptr);
}
