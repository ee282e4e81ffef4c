// The "file:" device of an "add" or "modify" command, checked before the request is sent.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL accepts a "file:" device only when the server can write to its
// path, and refuses any other with the bare "Unsupported
// smi55357-device-uri uri value.".  The client sub-commands reach a server
// on this machine, so the command checks the path first and says what is
// wrong with it.
#include "app/cli_device_check.h"

#include <cups/cups.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

// 'Cli_CheckFileDevice()' - See the header.
bool Cli_CheckFileDevice(int argc, char* argv[]) {
  if (argc < 2 || (strcmp(argv[1], "add") != 0 && strcmp(argv[1], "modify") != 0)) return true;
  const char* uri = nullptr;
  for (int i = 2; i < argc; ++i) {
    if (!strcmp(argv[i], "-v") && i + 1 < argc) uri = argv[++i];
    else if (!strncmp(argv[i], "-v", 2) && argv[i][2]) uri = argv[i] + 2;
  }
  if (!uri || strncmp(uri, "file:", 5) != 0) return true;
  char scheme[32], user[256], host[256], resource[1024];
  int port = 0;
  if (httpSeparateURI(HTTP_URI_CODING_ALL, uri, scheme, sizeof(scheme), user, sizeof(user), host, sizeof(host), &port,
                      resource, sizeof(resource)) < HTTP_URI_STATUS_OK) {
    fprintf(stderr, "brellian-printer-app: Bad device URI \"%s\": write it as file:///DIRECTORY or file:///FILE.\n",
            uri);
    return false;
  }
  if (char* options = strchr(resource, '?')) *options = '\0';  // "?ext=..." is the device's option
  if (access(resource, W_OK) == 0) return true;
  int error = errno;
  fprintf(stderr,
          "brellian-printer-app: Cannot use the device \"%s\": %s: %s. Make the directory first (for example "
          "\"install -d -m 0750 %s\"), or name a file or directory the server can write.\n",
          uri, resource, strerror(error), resource);
  return false;
}
