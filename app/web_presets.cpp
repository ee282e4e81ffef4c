// The "Card presets" page of a printer: the request, its checks and the changes it makes.
// Copyright 2026 The rastertobrellian authors.
#include <map>
#include <string>

#include "app/accessories.h"
#include "options/lut_file.h"
#include "app/presets_store.h"
#include "app/web_access.h"
#include "app/web_pages.h"
#include "app/web_presets_forms.h"
#include "app/vendor_table.h"
#include "app/web_upload.h"

namespace {

// 'Web_PresetUpload()' - Carry out the "uv" or "lut" form; *installed gets
// the UV name installed, for its preview.
bool Web_PresetUpload(const TMultipartForm& mp, int num_form, cups_option_t* form, const std::string& action,
                    const TAppModel& model, const std::string& serial, std::string* message, std::string* installed) {
  bool uv = action == "uv";
  std::string name = Web_FormValue(num_form, form, uv ? "uv-name" : "lut-name");
  int number = 0;
  int most = uv ? SETTINGS_NAMES : APP_COLOR_TABLES;
  if (!Web_ParseNumber(Web_FormValue(num_form, form, uv ? "uv-preset" : "lut-table"), 1, most, &number)) {
    *message = std::string(uv ? "The UV preset" : "The colour table") + " must be a number from 1 to " +
               std::to_string(most) + ".";
    return false;
  }
  // The name is checked before the upload is read, so that a bad name is
  // told at once and never reaches a file name.
  if (!Presets_CheckName(name, message)) return false;
  std::string bytes;
  // The file comes only from a file part of this request's body (never
  // from a path a client typed).
  if (!Web_UploadFile(mp, uv ? "uv-file" : "lut-file", uv ? PRESETS_MAX_PNG_BYTES : LUT_FILE_MAX, &bytes, message))
    return false;
  if (uv) {
    if (!Presets_InstallUv(serial, model.id, number, name, Web_FormValue(num_form, form, "uv-fit"), bytes, message))
      return false;
    *message = "UV image \"" + name + "\" installed as UV preset " + std::to_string(number) + ".";
    *installed = name;
    return true;
  }
  if (!Presets_InstallLut(serial, number, name, bytes, message)) return false;
  *message = "Colour table \"" + name + "\" installed as table " + std::to_string(number) + ".";
  return true;
}

// 'Web_PresetPost()' - Carry out one form; the message for the page.
bool Web_PresetPost(pappl_client_t* client, bool mayChange, const std::string& token, const TAppModel& model,
                  const std::string& serial, std::string* message, std::string* installed) {
  TMultipartForm mp;
  Web_UploadReadForm(client, PRESETS_MAX_PNG_BYTES, &mp);
  int num_form = mp.numFields;
  cups_option_t* form = mp.fields;
  bool ok = false;
  std::string action = Web_FormValue(num_form, form, "action");
  if (!mayChange) {
    *message = "Presets can be changed only from this machine, or by a signed-in administrator: nothing was changed.";
  } else if (mp.tooLarge && num_form == 0) {
    // The whole body was over the limit and dropped, token included.
    *message = "The upload is larger than the limit of " + Web_UploadLimit(PRESETS_MAX_PNG_BYTES) +
               ": nothing was changed.";
  } else if (!Web_FormTokenOk(client, num_form, form, token)) {
    *message = WEB_INVALID_FORM;
  } else if (serial.empty()) {
    *message = "This printer has no serial number yet: set it on the Device settings page.";
  } else if (action == "settings") {
    std::map<std::string, std::string> values;
    for (int i = 0; i < num_form; ++i) values[form[i].name] = form[i].value;
    ok = Presets_ApplyValues(serial, values, message);
    if (ok) *message = "Presets saved.";
  } else if (action == "uv" || action == "lut") {
    ok = Web_PresetUpload(mp, num_form, form, action, model, serial, message, installed);
  } else {
    *message = "Unknown form.";
  }
  if (!ok && message->find("nothing was changed") == std::string::npos) *message += " Nothing was changed.";
  Web_MultipartFree(&mp);
  return ok;
}

}  // namespace

// 'Web_PresetsPage()' - GET shows the presets, POST changes them.
bool Web_PresetsPage(pappl_client_t* client, void* data) {
  TPrinterPage page;
  if (!Web_OpenPrinterPage(client, data, &page)) return false;
  pappl_printer_t* printer = page.printer;
  const TAccessories& acc = page.acc;
  std::string message, installed;
  bool ok = true;
  if (papplClientGetMethod(client) == HTTP_STATE_POST)
    ok = Web_PresetPost(client, page.mayChange, page.token, *page.model, acc.serial, &message, &installed);
  char path[256], preview[256];
  papplPrinterGetPath(printer, "presets", path, sizeof(path));
  papplPrinterGetPath(printer, "uv-preview", preview, sizeof(preview));
  papplClientHTMLPrinterHeader(client, printer, "Card presets", 0, nullptr, nullptr);
  if (!message.empty()) Web_Message(client, message, !ok);
  if (!installed.empty()) {
    papplClientHTMLPuts(client, "<p id=\"uv-installed\">");
    Web_PresetPreviewImage(client, preview, installed);
    papplClientHTMLPuts(client, "</p>\n");
  }
  TBrellianSettings settings;
  std::string error;
  if (acc.serial.empty()) {
    char device[256];
    papplPrinterGetPath(printer, "device", device, sizeof(device));
    papplClientHTMLPrintf(client,
                          "<p class=\"brellian-message\">Set the printer's serial number on the <a href=\"%s\">"
                          "Device settings</a> page: it selects its presets.</p>\n",
                          device);
  } else if (!Presets_Load(acc.serial, &settings, &error)) {
    Web_Message(client, "The presets of this printer cannot be read; see the log for the reason.", true);
    papplLogPrinter(printer, PAPPL_LOGLEVEL_ERROR, "Presets of %s: %s", acc.serial.c_str(), error.c_str());
  } else {
    papplClientHTMLPuts(client, "<p>Presets of serial number ");
    papplClientHTMLEscape(client, acc.serial.c_str(), 0);
    papplClientHTMLPuts(client, ". The filter and the command-line preset tools use the same presets.</p>\n");
    Web_PresetForms(client, path, preview, settings, page.token);
  }
  papplClientHTMLPrinterFooter(client);
  return true;
}

// 'Web_UvPreview()' - A PNG picture of one installed UV file of this
// printer's model: GET .../uv-preview?name=NAME.
bool Web_UvPreview(pappl_client_t* client, void* data) {
  pappl_printer_t* printer = static_cast<pappl_printer_t*>(data);
  const TAppModel* model = App_FindModel(papplPrinterGetDriverName(printer));
  if (!model) return false;
  http_status_t access = papplClientIsAuthorized(client);
  if (access != HTTP_STATUS_CONTINUE) return papplClientRespond(client, access, nullptr, nullptr, 0, 0);
  cups_option_t* query = nullptr;
  int num_query = papplClientGetForm(client, &query);
  std::string png, error;
  bool ok = Presets_UvPreviewPng(Web_FormValue(num_query, query, "name"), model->id, &png, &error);
  cupsFreeOptions(num_query, query);
  if (!ok) return papplClientRespond(client, HTTP_STATUS_NOT_FOUND, nullptr, nullptr, 0, 0);
  if (!papplClientRespond(client, HTTP_STATUS_OK, nullptr, "image/png", 0, png.size())) return false;
  return httpWrite2(papplClientGetHTTP(client), png.data(), png.size()) == static_cast<ssize_t>(png.size());
}
