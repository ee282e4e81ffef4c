// The connection of a client sub-command to a running server.
// Copyright 2026 The rastertobrellian authors.
#include "app/cli_connect.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// 'Cli_SocketPath()' - Where a local server's socket can be, as
// PAPPL places it: /run for root, else the runtime or temporary directory.
std::string Cli_SocketPath() {
  if (getuid() == 0) return "/run/brellian-printer-app.sock";
  const char* runtime = getenv("XDG_RUNTIME_DIR");
  if (runtime && *runtime) {
    std::string path = std::string(runtime) + "/brellian-printer-app.sock";
    if (access(path.c_str(), F_OK) == 0) return path;
  }
  const char* tmp = getenv("TMPDIR");
  return std::string(tmp && *tmp ? tmp : "/tmp") + "/brellian-printer-app" + std::to_string(getuid()) + ".sock";
}

// 'Cli_StartLocalServer()' - Let PAPPL's own "printers" sub-command start
// the local server when none runs (its output is not wanted).
void Cli_StartLocalServer(const char* program) {
  pid_t pid = fork();
  if (pid == 0) {
    if (!freopen("/dev/null", "w", stdout)) _exit(1);
    execl("/proc/self/exe", program, "printers", static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  if (pid > 0) waitpid(pid, &status, 0);
}

}  // namespace

// 'Cli_Connect()' - -u URI, else the local socket.
bool Cli_Connect(const char* program, const char* uri, const char* printer, TCliServer* server) {
  char scheme[32], userpass[256], host[256], resource[1024];
  int port = 0;
  std::string hostPort;
  if (uri) {
    if (httpSeparateURI(HTTP_URI_CODING_ALL, uri, scheme, sizeof(scheme), userpass, sizeof(userpass), host,
                        sizeof(host), &port, resource, sizeof(resource)) < HTTP_URI_STATUS_OK ||
        (strcmp(scheme, "ipp") && strcmp(scheme, "ipps"))) {
      fprintf(stderr, "%s: Bad server URI '%s': give ipp://HOST:PORT or ipps://HOST:PORT.\n", program, uri);
      return false;
    }
    http_encryption_t enc = strcmp(scheme, "ipps") ? HTTP_ENCRYPTION_IF_REQUESTED : HTTP_ENCRYPTION_ALWAYS;
    server->http = httpConnect2(host, port, nullptr, AF_UNSPEC, enc, 1, 30000, nullptr);
    hostPort = std::string(host) + ":" + std::to_string(port);
    if (!printer && strncmp(resource, "/ipp/print/", 11) == 0) server->printerUri = "ipp://" + hostPort + resource;
  } else {
    std::string path = Cli_SocketPath();
    server->http = httpConnect2(path.c_str(), 0, nullptr, AF_LOCAL, HTTP_ENCRYPTION_NEVER, 1, 30000, nullptr);
    if (!server->http) {
      Cli_StartLocalServer(program);
      server->http = httpConnect2(path.c_str(), 0, nullptr, AF_LOCAL, HTTP_ENCRYPTION_NEVER, 1, 30000, nullptr);
    }
    hostPort = "localhost";
    uri = path.c_str();
    if (!server->http) {
      fprintf(stderr, "%s: Unable to connect to the server at '%s': %s\n", program, uri, cupsLastErrorString());
      return false;
    }
  }
  if (!server->http) {
    fprintf(stderr, "%s: Unable to connect to the server at '%s': %s\n", program, uri, cupsLastErrorString());
    return false;
  }
  server->hostPort = hostPort;
  server->systemUri = "ipp://" + hostPort + "/ipp/system";
  if (printer) server->printerUri = "ipp://" + hostPort + "/ipp/print/" + printer;
  return true;
}

// 'Cli_Request()' - The operation attributes every request has.
ipp_t* Cli_Request(ipp_op_t op, const char* uriName, const std::string& uri) {
  ipp_t* request = ippNewRequest(op);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, uriName, nullptr, uri.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
  return request;
}

// 'Cli_PrinterUri()' - The named printer, else the server's default
// (which the server answers for at /ipp/print).
std::string Cli_PrinterUri(const char* program, TCliServer* server) {
  if (!server->printerUri.empty()) return server->printerUri;
  std::string def = "ipp://" + server->hostPort + "/ipp/print";
  ipp_t* request = Cli_Request(IPP_OP_GET_PRINTER_ATTRIBUTES, "printer-uri", def);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr, "printer-uri-supported");
  ipp_t* response = cupsDoRequest(server->http, request, "/ipp/print");
  ipp_attribute_t* attr = ippFindAttribute(response, "printer-uri-supported", IPP_TAG_URI);
  std::string uri = attr ? ippGetString(attr, 0, nullptr) : "";
  ippDelete(response);
  if (uri.empty()) fprintf(stderr, "%s: No printer given (-d PRINTER) and the server has no default printer.\n", program);
  server->printerUri = uri;
  return uri;
}
