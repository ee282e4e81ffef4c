// Access rule of the application's web pages and small page helpers.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_access.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

// 'Web_IsLocalClient()' - Look at the peer address itself, not a name.
bool Web_IsLocalClient(pappl_client_t* client) {
  http_t* http = papplClientGetHTTP(client);
  http_addr_t* addr = http ? httpGetAddress(http) : nullptr;
  if (!addr) return false;
  int family = httpAddrFamily(addr);
  if (family == AF_LOCAL) return true;
  if (family == AF_INET) return ntohl(addr->ipv4.sin_addr.s_addr) == INADDR_LOOPBACK;
  if (family == AF_INET6) {
    const struct in6_addr& a = addr->ipv6.sin6_addr;
    if (IN6_IS_ADDR_LOOPBACK(&a)) return true;
    if (IN6_IS_ADDR_V4MAPPED(&a)) {
      const uint8_t* b = a.s6_addr;
      return b[12] == 127 && b[13] == 0 && b[14] == 0 && b[15] == 1;
    }
  }
  return false;
}

// 'Web_MayChange()' - PAM when configured, else this machine only.
bool Web_MayChange(pappl_client_t* client) {
  const char* service = papplSystemGetAuthService(papplClientGetSystem(client));
  if (service && *service) return papplClientIsAuthorized(client) == HTTP_STATUS_CONTINUE;
  return Web_IsLocalClient(client);
}

// 'Web_Message()' - One message paragraph.
void Web_Message(pappl_client_t* client, const std::string& text, bool error) {
  if (error)
    papplClientHTMLPrintf(client, "<p class=\"brellian-error\"><b>%s</b></p>\n", text.c_str());
  else
    papplClientHTMLPrintf(client, "<p class=\"brellian-message\">%s</p>\n", text.c_str());
}

// 'Web_FormValue()' - cupsGetOption with "" for absent.
std::string Web_FormValue(int num_form, cups_option_t* form, const char* name) {
  const char* v = cupsGetOption(name, num_form, form);
  return v ? v : "";
}
