// The PAPPL system of the application: server options, drivers, labels, per-printer pages and the state file.
// Copyright 2026 The rastertobrellian authors.
#include "app/app_system.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/accessories.h"
#include "app/dnssd_check.h"
#include "app/models.h"
#include "app/pappl_driver.h"
#include "app/pdf_job.h"
#include "app/vendor_table.h"
#include "app/web_pages.h"
#include "app/web_security.h"

namespace {

std::string g_stateFile;

// 'App_ConfigDir()' - The directory of a server not run as root:
// $XDG_CONFIG_HOME, else ~/.config (made when missing).  "" for root
// without $XDG_CONFIG_HOME, whose state lives under /var.
std::string App_ConfigDir() {
  const char* xdg = getenv("XDG_CONFIG_HOME");
  if (getuid() == 0 && !xdg) return "";
  std::string dir;
  if (xdg && *xdg) {
    dir = xdg;
  } else {
    const char* home = getenv("HOME");
    dir = std::string(home && *home ? home : "/tmp") + "/.config";
  }
  mkdir(dir.c_str(), 0700);
  return dir;
}

// 'App_StateFile()' - Where the printers and their defaults are kept:
// /var/lib for root, else in the configuration directory.
std::string App_StateFile() {
  std::string dir = App_ConfigDir();
  return dir.empty() ? "/var/lib/brellian-printer-app.state" : dir + "/brellian-printer-app.state";
}

// 'App_SpoolDir()' - The spool directory when the "spool-directory"
// option is not given: /var/spool/brellian-printer-app for root, else
// brellian-printer-app.d in the configuration directory.  PAPPL keeps each
// printer's own files there (its device settings), so it must outlive the
// process: PAPPL's own default is a new temporary directory per process,
// which a restart of the service (PrivateTmp) wipes.  Made when missing;
// nullptr when it cannot be made, and PAPPL then uses its default.
const char* App_SpoolDir() {
  static std::string spool;
  std::string dir = App_ConfigDir();
  spool = dir.empty() ? "/var/spool/brellian-printer-app" : dir + "/brellian-printer-app.d";
  if (mkdir(spool.c_str(), 0700) != 0 && errno != EEXIST) return nullptr;
  return spool.c_str();
}

// 'App_AddStrings()' - The labels of the card attributes, for the web
// interface and for clients (printer-strings-uri).  PAPPL 1.3.1 appends one
// more "printer-strings-languages-supported" attribute to the printer for
// every Get-Printer-Attributes once a strings resource carries a language,
// which makes its answers invalid (a duplicate attribute) and grows without
// end.  So the labels are registered for the web interface, then the file
// is served again as a plain resource; Driver_Apply() names it in
// printer-strings-uri and printer-strings-languages-supported.
void App_AddStrings(pappl_system_t* system) {
  static const std::string strings = Vendor_StringsText();
  papplSystemAddStringsData(system, APP_STRINGS_PATH, "en", strings.c_str());
  papplSystemRemoveResource(system, APP_STRINGS_PATH);
  papplSystemAddResourceString(system, APP_STRINGS_PATH, "text/strings", strings.c_str());
}

// 'App_LogLevel()' - A log-level option value.
pappl_loglevel_t App_LogLevel(const char* v) {
  if (!v) return PAPPL_LOGLEVEL_WARN;
  if (!strcmp(v, "fatal")) return PAPPL_LOGLEVEL_FATAL;
  if (!strcmp(v, "error")) return PAPPL_LOGLEVEL_ERROR;
  if (!strcmp(v, "info")) return PAPPL_LOGLEVEL_INFO;
  if (!strcmp(v, "debug")) return PAPPL_LOGLEVEL_DEBUG;
  return PAPPL_LOGLEVEL_WARN;
}

// 'App_ServerOptions()' - The server-options list.
pappl_soptions_t App_ServerOptions(const char* v) {
  // The Security page (web password) and the log page are on by default:
  // both need a local or signed-in administrator (app/web_security.h).
  pappl_soptions_t o = PAPPL_SOPTIONS_MULTI_QUEUE | PAPPL_SOPTIONS_WEB_INTERFACE | PAPPL_SOPTIONS_WEB_SECURITY |
                       PAPPL_SOPTIONS_WEB_LOG;
  if (!v) return o;
  std::string list = v;
  size_t pos = 0;
  while (pos <= list.size()) {
    size_t comma = list.find(',', pos);
    std::string w = list.substr(pos, comma == std::string::npos ? std::string::npos : comma - pos);
    pos = comma == std::string::npos ? list.size() + 1 : comma + 1;
    if (w == "dnssd-host") o |= PAPPL_SOPTIONS_DNSSD_HOST;
    else if (w == "no-multi-queue") o &= ~static_cast<pappl_soptions_t>(PAPPL_SOPTIONS_MULTI_QUEUE);
    else if (w == "raw-socket") o |= PAPPL_SOPTIONS_RAW_SOCKET;
    else if (w == "usb-printer") o |= PAPPL_SOPTIONS_USB_PRINTER;
    else if (w == "no-web-interface") o &= ~static_cast<pappl_soptions_t>(PAPPL_SOPTIONS_WEB_INTERFACE);
    else if (w == "web-log") o |= PAPPL_SOPTIONS_WEB_LOG;
    else if (w == "web-network") o |= PAPPL_SOPTIONS_WEB_NETWORK;
    else if (w == "web-remote") o |= PAPPL_SOPTIONS_WEB_REMOTE;
    else if (w == "web-security") o |= PAPPL_SOPTIONS_WEB_SECURITY;
    else if (w == "web-tls") o |= PAPPL_SOPTIONS_WEB_TLS;
    else if (w == "no-tls") o |= PAPPL_SOPTIONS_NO_TLS;
  }
  return o;
}

// 'App_Drivers()' - The driver list, with a device ID for each model.
std::vector<pappl_pr_driver_t>& App_Drivers() {
  static std::vector<pappl_pr_driver_t> drivers;
  static std::vector<std::string> ids;
  if (drivers.empty()) {
    int32_t count = 0;
    const TAppModel* models = App_Models(&count);
    ids.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
      ids.push_back(Model_DeviceId(models[i]) + "CMD:BRELLIAN;");
      drivers.push_back({models[i].driverName, App_Description(models[i]), ids.back().c_str(), nullptr});
    }
  }
  return drivers;
}

}  // namespace

// 'App_PrinterCreated()' - Accessories and pages of one printer.
void App_PrinterCreated(pappl_printer_t* printer, void*) {
  const TAppModel* model = App_FindModel(papplPrinterGetDriverName(printer));
  if (!model) return;
  Driver_Apply(printer, *model, Acc_Load(printer, *model));
  Web_AddPrinterPages(printer);
}

// 'App_SystemCallback()' - The system, as the "server" sub-command asks.
pappl_system_t* App_SystemCallback(int num_options, cups_option_t* options, void*) {
  const char* portText = cupsGetOption("server-port", num_options, options);
  int port = portText ? atoi(portText) : 0;
  const char* authService = cupsGetOption("auth-service", num_options, options);
  pappl_soptions_t soptions = App_ServerOptions(cupsGetOption("server-options", num_options, options));
  const char* spool = cupsGetOption("spool-directory", num_options, options);
  if (!spool) spool = App_SpoolDir();
  pappl_system_t* system = papplSystemCreate(
      soptions, cupsGetOption("server-name", num_options, options) ? cupsGetOption("server-name", num_options, options)
                                                                  : "Brellian Card Printers",
      port, "_print,_universal", spool,
      cupsGetOption("log-file", num_options, options), App_LogLevel(cupsGetOption("log-level", num_options, options)),
      authService, false);
  if (!system) return nullptr;
  Web_InstallSecurity(system, authService);
  const char* listen = cupsGetOption("listen-hostname", num_options, options);
  papplSystemAddListeners(system, listen);
  if (const char* host = cupsGetOption("server-hostname", num_options, options)) papplSystemSetHostName(system, host);
  if (const char* group = cupsGetOption("admin-group", num_options, options)) papplSystemSetAdminGroup(system, group);
  std::vector<pappl_pr_driver_t>& drivers = App_Drivers();
  papplSystemSetPrinterDrivers(system, static_cast<int>(drivers.size()), drivers.data(), Driver_AutoAdd,
                               App_PrinterCreated, Driver_Callback, nullptr);
  papplSystemAddMIMEFilter(system, "application/pdf", "application/vnd.brellian-job", Pdf_PrintFile, nullptr);
  App_AddStrings(system);
  static std::string footer = "Brellian card printer application " BRELLIAN_APP_VERSION;
  if (!DnsSd_Available()) {
    papplLog(system, PAPPL_LOGLEVEL_WARN, "%s", g_dnssdUnavailableText);
    footer += std::string("<br>") + g_dnssdUnavailableText;
  }
  papplSystemSetFooterHTML(system, footer.c_str());
  pappl_version_t version = {};
  snprintf(version.name, sizeof(version.name), "brellian-printer-app");
  snprintf(version.sversion, sizeof(version.sversion), BRELLIAN_APP_VERSION);
  sscanf(BRELLIAN_APP_VERSION, "%hu.%hu.%hu", &version.version[0], &version.version[1], &version.version[2]);
  papplSystemSetVersions(system, 1, &version);
  g_stateFile = App_StateFile();
  papplSystemLoadState(system, g_stateFile.c_str());
  papplSystemSetSaveCallback(system, reinterpret_cast<pappl_save_cb_t>(papplSystemSaveState),
                             const_cast<char*>(g_stateFile.c_str()));
  return system;
}
