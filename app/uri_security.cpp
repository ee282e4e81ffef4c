// printer-uri-supported, uri-security-supported and uri-authentication-supported that agree for every client.
// Copyright 2026 The rastertobrellian authors.
//
// IPP pairs the values of these three attributes one by one: the Nth
// security and authentication values belong to the Nth printer URI.
// PAPPL 1.3.1 builds the URIs and the authentication values per client,
// but uri-security-supported once per printer: with TLS on, a client on
// the loopback address gets one URI (ipp:) and one authentication value
// beside two security values ("none", "tls"), and CUPS' stock ipptool
// tests fail on it.  The application replaces
// _papplPrinterCopyAttributesNoLock() (exported by libpappl 1.3.1 and
// called through its procedure linkage table, as app/stream_queue.cpp
// does for another function): PAPPL's own runs first, then the two
// attributes it added are made to agree with the URIs, which follow
// PAPPL's own rule (below).
#include "app/uri_security.h"

#include <dlfcn.h>

#include <cstring>
#include <vector>

// 'UriSec_Agree()' - Rewrite the two attributes in place.
void UriSec_Agree(ipp_t* ipp, ipp_attribute_t* after, const bool* tls, int count) {
  std::vector<ipp_attribute_t*> security, authentication;
  bool mine = after == nullptr;
  for (ipp_attribute_t* a = ippFirstAttribute(ipp); a; a = ippNextAttribute(ipp)) {
    if (!mine) {
      mine = a == after;
      continue;
    }
    const char* name = ippGetName(a);
    if (name && !strcmp(name, "uri-security-supported")) security.push_back(a);
    if (name && !strcmp(name, "uri-authentication-supported")) authentication.push_back(a);
  }
  if (count < 1 || count > 2) return;
  // Each attribute is replaced by a new one at the end of the message,
  // which is the end of the same printer's group: libcups 2.4.2 cannot
  // delete the last values of an attribute (ippDeleteValues() refuses).
  // The values are string constants, as in PAPPL's constant attributes.
  for (ipp_attribute_t* a : security) {
    const char* values[2];
    for (int i = 0; i < count; ++i) values[i] = tls[i] ? "tls" : "none";
    ippDeleteAttribute(ipp, a);
    ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-security-supported", count, nullptr,
                  values);
  }
  for (ipp_attribute_t* a : authentication) {
    const char* values[2];
    for (int i = 0; i < count; ++i) {
      const char* old = i < ippGetCount(a) ? ippGetString(a, i, nullptr) : nullptr;
      values[i] = old && !strcmp(old, "basic") ? "basic" : "none";
    }
    ippDeleteAttribute(ipp, a);
    ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-authentication-supported", count,
                  nullptr, values);
  }
}

#ifdef BRELLIAN_PAPPL_1_3

using TCopyAttributes = void (*)(pappl_printer_t*, pappl_client_t*, cups_array_t*, const char*);

// '_papplPrinterCopyAttributesNoLock()' - PAPPL's printer attributes for
// a client, then the three URI attributes in agreement (see the head of
// this file).  Runs with the printer's lock held: it takes no PAPPL lock.
extern "C" void _papplPrinterCopyAttributesNoLock(pappl_printer_t* printer, pappl_client_t* client, cups_array_t* ra,
                                                  const char* format) {
  static TCopyAttributes pappl =
      reinterpret_cast<TCopyAttributes>(dlsym(RTLD_NEXT, "_papplPrinterCopyAttributesNoLock"));
  ipp_t* response = papplClientGetResponse(client);
  ipp_attribute_t* last = nullptr;
  for (ipp_attribute_t* a = ippFirstAttribute(response); a; a = ippNextAttribute(response)) last = a;
  pappl(printer, client, ra, format);
  // PAPPL's rule for printer-uri-supported: "ipp" for a client on the
  // loopback address or when TLS is not required, then "ipps" for a
  // client elsewhere unless TLS is off.
  pappl_system_t* system = papplClientGetSystem(client);
  bool local = httpAddrLocalhost(httpGetAddress(papplClientGetHTTP(client)));
  bool tls[2];
  int count = 0;
  if (local || !papplSystemGetTLSOnly(system)) tls[count++] = false;
  if (!local && !(papplSystemGetOptions(system) & PAPPL_SOPTIONS_NO_TLS)) tls[count++] = true;
  UriSec_Agree(response, last, tls, count);
}

// 'UriSec_Active()' - Built against PAPPL 1.3.
bool UriSec_Active() { return true; }

#else

// 'UriSec_Active()' - Another PAPPL: its own attributes stay.
bool UriSec_Active() { return false; }

#endif
