// The sub-commands "delete", "submit" and "options", done by the application itself.
// Copyright 2026 The rastertobrellian authors.
#include "app/cli_commands.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/cli_connect.h"
#include "app/cli_options.h"
#include "app/vendor_table.h"

namespace {

const char* const kProgram = "brellian-printer-app";

// The command line of a sub-command.
struct TCliArgs {
  const char* printer = nullptr;  // -d
  const char* uri = nullptr;      // -u
  int copies = 0;                 // -n, 0 when not given
  int numOptions = 0;             // -o
  cups_option_t* options = nullptr;
  std::vector<const char*> files;
};

// 'Cli_Parse()' - Read the options; false with a message on a bad one.
bool Cli_Parse(int argc, char* argv[], TCliArgs* args) {
  for (int i = 2; i < argc; ++i) {
    const char* a = argv[i];
    if (a[0] != '-' || !a[1]) {
      args->files.push_back(a);
      continue;
    }
    char opt = a[1];
    const char* value = a[2] ? a + 2 : (i + 1 < argc ? argv[++i] : nullptr);
    if (!value || !strchr("dunoc", opt)) {
      fprintf(stderr, "%s: %s '%s'; see '%s --help'.\n", kProgram, value ? "Unknown option" : "Missing value after", a,
              kProgram);
      return false;
    }
    if (opt == 'd') args->printer = value;
    if (opt == 'u') args->uri = value;
    if (opt == 'o') args->numOptions = cupsParseOptions(value, args->numOptions, &args->options);
    if (opt == 'n' || opt == 'c') {
      char* end = nullptr;
      long n = strtol(value, &end, 10);
      if (*end || n < 1 || n > 999) {
        fprintf(stderr, "%s: Bad number of copies '%s': give 1 to 999.\n", kProgram, value);
        return false;
      }
      args->copies = static_cast<int>(n);
    }
  }
  return true;
}

// 'Cli_Delete()' - Delete-Printer with the printer's real id.
int Cli_Delete(TCliServer* server, const TCliArgs& args) {
  if (!args.printer) {
    fprintf(stderr, "%s: Name the printer to delete with -d PRINTER.\n", kProgram);
    return 1;
  }
  ipp_t* request = Cli_Request(IPP_OP_GET_PRINTER_ATTRIBUTES, "printer-uri", server->printerUri);
  static const char* const wanted[] = {"brellian-printer-id", "printer-id"};
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 2, nullptr, wanted);
  ipp_t* response = cupsDoRequest(server->http, request, "/ipp/print");
  ipp_attribute_t* id = ippFindAttribute(response, "brellian-printer-id", IPP_TAG_INTEGER);
  if (!id) id = ippFindAttribute(response, "printer-id", IPP_TAG_INTEGER);
  int printerId = id ? ippGetInteger(id, 0) : 0;
  ippDelete(response);
  if (printerId <= 0) {
    fprintf(stderr, "%s: No printer '%s': %s\n", kProgram, args.printer, cupsLastErrorString());
    return 1;
  }
  request = Cli_Request(IPP_OP_DELETE_PRINTER, "system-uri", server->systemUri);
  ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "printer-id", printerId);
  ippDelete(cupsDoRequest(server->http, request, "/ipp/system"));
  if (cupsLastError() > IPP_STATUS_OK_CONFLICTING) {
    fprintf(stderr, "%s: Unable to delete printer '%s': %s\n", kProgram, args.printer, cupsLastErrorString());
    return 1;
  }
  return 0;
}

// 'Cli_Submit()' - Print-Job for each file, with -n copies and -o options.
int Cli_Submit(TCliServer* server, const TCliArgs& args) {
  std::string uri = Cli_PrinterUri(kProgram, server);
  if (uri.empty()) return 1;
  if (args.files.empty()) {
    fprintf(stderr, "%s: Name the files to print.\n", kProgram);
    return 1;
  }
  std::string name = uri.substr(uri.rfind('/') + 1);
  for (const char* file : args.files) {
    ipp_t* request = Cli_Request(IPP_OP_PRINT_JOB, "printer-uri", uri);
    const char* base = strrchr(file, '/') ? strrchr(file, '/') + 1 : file;
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr, base);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format", nullptr, Cli_DocumentFormat(file));
    if (args.copies) ippAddInteger(request, IPP_TAG_JOB, IPP_TAG_INTEGER, "copies", args.copies);
    Cli_AddJobOptions(request, args.numOptions, args.options);
    ipp_t* response = cupsDoFileRequest(server->http, request, "/ipp/print", file);
    ipp_attribute_t* job = ippFindAttribute(response, "job-id", IPP_TAG_INTEGER);
    if (cupsLastError() > IPP_STATUS_OK_CONFLICTING || !job) {
      fprintf(stderr, "%s: Unable to print '%s': %s\n", kProgram, file, cupsLastErrorString());
      ippDelete(response);
      return 1;
    }
    printf("%s-%d\n", name.c_str(), ippGetInteger(job, 0));
    ippDelete(response);
  }
  return 0;
}

// 'Cli_Options()' - The printer's options, card options included.
int Cli_Options(TCliServer* server) {
  std::string uri = Cli_PrinterUri(kProgram, server);
  if (uri.empty()) return 1;
  ipp_t* request = Cli_Request(IPP_OP_GET_PRINTER_ATTRIBUTES, "printer-uri", uri);
  ipp_t* response = cupsDoRequest(server->http, request, "/ipp/print");
  if (cupsLastError() > IPP_STATUS_OK_CONFLICTING) {
    fprintf(stderr, "%s: Unable to get the printer's options: %s\n", kProgram, cupsLastErrorString());
    ippDelete(response);
    return 1;
  }
  Cli_PrintOptions(response, stdout);
  ippDelete(response);
  return 0;
}

}  // namespace

// 'Cli_Handles()' - The three sub-commands.
bool Cli_Handles(const char* subcommand) {
  return subcommand && (!strcmp(subcommand, "delete") || !strcmp(subcommand, "submit") || !strcmp(subcommand, "options"));
}

// 'Cli_Run()' - Parse, connect, run.
int Cli_Run(int argc, char* argv[]) {
  TCliArgs args;
  if (!Cli_Parse(argc, argv, &args)) return 1;
  TCliServer server;
  if (!Cli_Connect(kProgram, args.uri, args.printer, &server)) return 1;
  int status = 1;
  if (!strcmp(argv[1], "delete")) status = Cli_Delete(&server, args);
  else if (!strcmp(argv[1], "submit")) status = Cli_Submit(&server, args);
  else status = Cli_Options(&server);
  httpClose(server.http);
  cupsFreeOptions(args.numOptions, args.options);
  return status;
}
