// Access rule of the application: this machine, or a signed-in administrator; small page helpers.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_access.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

namespace {

// 'Web_Field()' - A request header field, "" when absent.
std::string Web_Field(http_t* http, http_field_t field) {
  const char* v = httpGetField(http, field);
  return v ? v : "";
}

// 'Web_UrlIsLoopback()' - An Origin or Referer value names the loopback
// address ("" counts as loopback: the header was not sent).
bool Web_UrlIsLoopback(const std::string& url) {
  if (url.empty()) return true;
  size_t start = url.find("://");
  if (start == std::string::npos) return false;
  start += 3;
  size_t end = url.find('/', start);
  return Web_HostIsLoopback(url.substr(start, end == std::string::npos ? std::string::npos : end - start));
}

// 'Web_PeerIsLoopback()' - The peer address itself, not a name.
bool Web_PeerIsLoopback(http_addr_t* addr) {
  int family = httpAddrFamily(addr);
  if (family == AF_INET) return ntohl(addr->ipv4.sin_addr.s_addr) == INADDR_LOOPBACK;
  if (family == AF_INET6) {
    const struct in6_addr& a = addr->ipv6.sin6_addr;
    if (IN6_IS_ADDR_LOOPBACK(&a)) return true;
    const uint8_t* b = a.s6_addr;
    return IN6_IS_ADDR_V4MAPPED(&a) && b[12] == 127 && b[13] == 0 && b[14] == 0 && b[15] == 1;
  }
  return false;
}

}  // namespace

// 'Web_HostIsLoopback()' - Drop the port, compare with the loopback names.
bool Web_HostIsLoopback(const std::string& host) {
  std::string h = host;
  if (!h.empty() && h[0] == '[') {
    size_t close = h.find(']');
    if (close == std::string::npos) return false;
    h = h.substr(0, close + 1);
  } else if (size_t colon = h.find(':'); colon != std::string::npos) {
    h = h.substr(0, colon);
  }
  for (char& c : h) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  if (!h.empty() && h.back() == '.') h.pop_back();
  return h == "localhost" || h == "127.0.0.1" || h == "[::1]";
}

// 'Web_IsLocalClient()' - Peer address, then the names the client used.
bool Web_IsLocalClient(pappl_client_t* client) {
  http_t* http = papplClientGetHTTP(client);
  http_addr_t* addr = http ? httpGetAddress(http) : nullptr;
  if (!addr) return false;
  if (httpAddrFamily(addr) == AF_LOCAL) return true;
  if (!Web_PeerIsLoopback(addr)) return false;
  return Web_HostIsLoopback(Web_Field(http, HTTP_FIELD_HOST)) &&
         Web_UrlIsLoopback(Web_Field(http, HTTP_FIELD_ORIGIN)) &&
         Web_UrlIsLoopback(Web_Field(http, HTTP_FIELD_REFERER));
}

// 'Web_IsSignedIn()' - Basic credentials checked against the password hash.
bool Web_IsSignedIn(pappl_client_t* client) {
  pappl_system_t* system = papplClientGetSystem(client);
  char hash[256];
  if (!papplSystemGetPassword(system, hash, sizeof(hash)) || !hash[0]) return false;
  http_t* http = papplClientGetHTTP(client);
  std::string auth = Web_Field(http, HTTP_FIELD_AUTHORIZATION);
  if (auth.size() < 7 || strncasecmp(auth.c_str(), "Basic ", 6) != 0) return false;
  char decoded[512];
  int len = sizeof(decoded);
  std::string b64 = auth.substr(6);
  b64.erase(0, b64.find_first_not_of(' '));
  if (!httpDecode64_2(decoded, &len, b64.c_str()) || len <= 0 || len >= static_cast<int>(sizeof(decoded)))
    return false;
  decoded[len] = '\0';
  const char* password = strchr(decoded, ':');
  if (!password || !password[1]) return false;
  // The stored hash is "SALT~HEX", HEX the SHA-256 of "SALT:PASSWORD".
  // PAPPL 1.3.1 checks a password by hashing it with the whole stored text
  // as the salt and then compares only the stored text's length, so any
  // password passes its own login form; here the hash is made from the
  // salt alone and the whole result compared.
  std::string stored = hash;
  size_t tilde = stored.find('~');
  if (tilde == std::string::npos) return false;
  std::string text = stored.substr(0, tilde) + ":" + (password + 1);
  unsigned char sum[32];
  char check[65];
  ssize_t n = cupsHashData("sha2-256", text.data(), text.size(), sum, sizeof(sum));
  explicit_bzero(&text[0], text.size());
  if (n != 32 || !cupsHashString(sum, sizeof(sum), check, sizeof(check))) return false;
  bool same = stored.compare(tilde + 1, std::string::npos, check) == 0;
  if (same) {
    std::string user(decoded, static_cast<size_t>(password - decoded));
    papplClientSetUsername(client, user.empty() ? "admin" : user.c_str());
  }
  explicit_bzero(decoded, sizeof(decoded));
  return same;
}

// 'Web_SameOrigin()' - No Origin header, or one whose host and port are
// the Host the request was sent to.  A browser sends Origin with every
// form it posts, so a form of another web site, posted with an
// administrator's remembered credentials, is refused.
bool Web_SameOrigin(pappl_client_t* client) {
  http_t* http = papplClientGetHTTP(client);
  std::string origin = Web_Field(http, HTTP_FIELD_ORIGIN);
  if (origin.empty()) return true;
  size_t start = origin.find("://");
  if (start == std::string::npos) return false;
  std::string host = origin.substr(start + 3);
  std::string sent = Web_Field(http, HTTP_FIELD_HOST);
  if (host.find(':') == std::string::npos || host.back() == ']') {
    // No port in the origin: the scheme's default port.
    bool tls = origin.compare(0, 5, "https") == 0;
    if (sent == host + (tls ? ":443" : ":80")) return true;
  }
  return strcasecmp(host.c_str(), sent.c_str()) == 0;
}

// 'Web_AuthCallback()' - This machine, else the web password.
http_status_t Web_AuthCallback(pappl_client_t* client, const char*, gid_t, void*) {
  if (Web_IsLocalClient(client)) return HTTP_STATUS_CONTINUE;
  if (!Web_SameOrigin(client)) return HTTP_STATUS_FORBIDDEN;
  if (Web_IsSignedIn(client)) return HTTP_STATUS_CONTINUE;
  char hash[256];
  if (!papplSystemGetPassword(papplClientGetSystem(client), hash, sizeof(hash)) || !hash[0])
    return HTTP_STATUS_FORBIDDEN;
  return HTTP_STATUS_UNAUTHORIZED;
}

// 'Web_MayChange()' - PAPPL's own decision (our callback or PAM).
bool Web_MayChange(pappl_client_t* client) { return papplClientIsAuthorized(client) == HTTP_STATUS_CONTINUE; }

// 'Web_SessionToken()' - SHA-256 of key, credentials or "local".
std::string Web_SessionToken(pappl_client_t* client) {
  char key[256];
  papplSystemGetSessionKey(papplClientGetSystem(client), key, sizeof(key));
  std::string who = Web_IsLocalClient(client) ? std::string("local")
                                              : Web_Field(papplClientGetHTTP(client), HTTP_FIELD_AUTHORIZATION);
  std::string text = std::string(key) + ":" + who;
  unsigned char sum[32];
  char hex[65];
  if (cupsHashData("sha2-256", text.data(), text.size(), sum, sizeof(sum)) != 32 ||
      !cupsHashString(sum, sizeof(sum), hex, sizeof(hex)))
    return "";
  return hex;
}

// 'Web_StartForm()' - PAPPL's form start and our token.
void Web_StartForm(pappl_client_t* client, const char* path, bool multipart, const std::string& token) {
  papplClientHTMLStartForm(client, path, multipart);
  papplClientHTMLPrintf(client, "<input type=\"hidden\" name=\"brellian-token\" value=\"%s\">\n", token.c_str());
}

const char* const WEB_INVALID_FORM =
    "Invalid form data (the form token is missing or out of date): nothing was changed.";

// 'Web_FormTokenOk()' - PAPPL's check, then ours.
bool Web_FormTokenOk(pappl_client_t* client, int num_form, cups_option_t* form, const std::string& token) {
  return papplClientIsValidForm(client, num_form, form) && !token.empty() &&
         Web_FormValue(num_form, form, "brellian-token") == token;
}

// 'Web_Message()' - One message paragraph.
void Web_Message(pappl_client_t* client, const std::string& text, bool error) {
  papplClientHTMLPuts(client, error ? "<p class=\"brellian-error\"><b>" : "<p class=\"brellian-message\">");
  papplClientHTMLEscape(client, text.c_str(), 0);
  papplClientHTMLPuts(client, error ? "</b></p>\n" : "</p>\n");
}

// 'Web_FormValue()' - cupsGetOption with "" for absent.
std::string Web_FormValue(int num_form, cups_option_t* form, const char* name) {
  const char* v = cupsGetOption(name, num_form, form);
  return v ? v : "";
}

// 'Web_ParseNumber()' - Digits only, in range.
bool Web_ParseNumber(const std::string& text, int lo, int hi, int* value) {
  if (text.empty() || text.size() > 9) return false;
  int v = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + (c - '0');
  }
  if (v < lo || v > hi) return false;
  *value = v;
  return true;
}
