// Whether DNS-SD (avahi-daemon) can be used; looking for network printers without it.
// Copyright 2026 The rastertobrellian authors.
#include "app/dnssd_check.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/simple-watch.h>
#include <dlfcn.h>

const char* const g_dnssdUnavailableText =
    "DNS-SD is not available (avahi-daemon is not running): printers are not announced on the network "
    "and network printers are not found.  Start avahi-daemon, then restart brellian-printer-app; "
    "meanwhile add printers by their device URI (socket://HOST or usb://...).";

namespace {

// 'DnsSd_Probe()' - Try to reach avahi-daemon once.
bool DnsSd_Probe() {
  AvahiSimplePoll* poll = avahi_simple_poll_new();
  if (!poll) return false;
  int error = 0;
  AvahiClient* client = avahi_client_new(avahi_simple_poll_get(poll), static_cast<AvahiClientFlags>(0), nullptr,
                                         nullptr, &error);
  bool ok = client != nullptr;
  if (client) avahi_client_free(client);
  avahi_simple_poll_free(poll);
  return ok;
}

}  // namespace

// 'DnsSd_Available()' - Probe once, remember the answer.
bool DnsSd_Available() {
  static const bool available = DnsSd_Probe();
  return available;
}

// 'avahi_service_browser_new()' - The DNS-SD library's browser, except that
// a missing connection (client NULL) gives no browser instead of an abort.
// Defined in the program, it comes before the library's for PAPPL; the
// library's own is found with dlsym(RTLD_NEXT).  PAPPL takes no browser as
// "nothing found".
extern "C" AvahiServiceBrowser* avahi_service_browser_new(AvahiClient* client, AvahiIfIndex interface,
                                                          AvahiProtocol protocol, const char* type, const char* domain,
                                                          AvahiLookupFlags flags, AvahiServiceBrowserCallback callback,
                                                          void* userdata) {
  using TBrowserNew = AvahiServiceBrowser* (*)(AvahiClient*, AvahiIfIndex, AvahiProtocol, const char*, const char*,
                                               AvahiLookupFlags, AvahiServiceBrowserCallback, void*);
  static const TBrowserNew real = reinterpret_cast<TBrowserNew>(dlsym(RTLD_NEXT, "avahi_service_browser_new"));
  if (!client || !real) return nullptr;
  return real(client, interface, protocol, type, domain, flags, callback, userdata);
}
