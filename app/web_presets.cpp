// The "Card presets" page of a printer: areas, card settings, UV images and colour tables.
// Copyright 2026 The rastertobrellian authors.
#include <map>
#include <string>

#include "app/accessories.h"
#include "options/lut_file.h"
#include "app/presets_store.h"
#include "lib/settings_keys.h"
#include "app/web_access.h"
#include "app/web_pages.h"
#include "app/web_upload.h"

namespace {

// 'Web_PresetInput()' - One text input of a settings key.
void Web_PresetInput(pappl_client_t* client, const TBrellianSettings& s, const TSettingsKey& key, int size) {
  std::string name = Settings_KeyName(key);
  papplClientHTMLPrintf(client, "<input type=\"text\" name=\"%s\" id=\"%s\" value=\"%s\" size=\"%d\">", name.c_str(),
                        name.c_str(), Settings_GetValue(s, key).c_str(), size);
}

// 'Web_PresetAreaTable()' - Ten presets of one kind, three areas per group.
void Web_PresetAreaTable(pappl_client_t* client, const TBrellianSettings& s, TSettingsKind kind, const char* title,
                       const char* group0, const char* group1) {
  papplClientHTMLPrintf(client,
                        "<h3>%s</h3>\n<table class=\"list\"><tr><th>Preset</th><th colspan=\"3\">%s</th>"
                        "<th colspan=\"3\">%s</th></tr>\n",
                        title, group0, group1);
  for (int p = 0; p < 10; ++p) {
    papplClientHTMLPrintf(client, "<tr><td>%d</td>", p + 1);
    for (int g = 0; g < 2; ++g)
      for (int k = 0; k < 3; ++k) {
        papplClientHTMLPuts(client, "<td>");
        Web_PresetInput(client, s, TSettingsKey{kind, p, g, k}, 16);
        papplClientHTMLPuts(client, "</td>");
      }
    papplClientHTMLPuts(client, "</tr>\n");
  }
  papplClientHTMLPuts(client, "</table>\n");
}

// 'Web_PresetRow()' - One labelled key in the form table.
void Web_PresetRow(pappl_client_t* client, const TBrellianSettings& s, const TSettingsKey& key, const char* label,
                 const char* hint) {
  papplClientHTMLPrintf(client, "<tr><th><label for=\"%s\">%s:</label></th><td>", Settings_KeyName(key).c_str(), label);
  Web_PresetInput(client, s, key, 24);
  papplClientHTMLPrintf(client, " <small>%s</small></td></tr>\n", hint);
}

// 'Web_PresetForms()' - The three forms of the page.
void Web_PresetForms(pappl_client_t* client, const char* path, const TBrellianSettings& s) {
  papplClientHTMLStartForm(client, path, false);
  papplClientHTMLPuts(client, "<input type=\"hidden\" name=\"action\" value=\"settings\">\n");
  papplClientHTMLPuts(client, "<p><small>Areas are \"LEFT TOP WIDTH HEIGHT\" with a unit each (px, mm, cm, in), "
                              "e.g. \"5mm 5mm 40mm 20mm\".</small></p>\n");
  Web_PresetAreaTable(client, s, SETKEY_RESIN_AREA, "Resin black areas", "Resin", "No resin");
  Web_PresetAreaTable(client, s, SETKEY_PO_AREA, "Overlay areas", "Overlay off (peel-off)", "Overlay kept");
  papplClientHTMLPuts(client, "<h3>Card settings</h3>\n<table class=\"form\">\n");
  Web_PresetRow(client, s, TSettingsKey{SETKEY_PLUGIN, 0, 0, 0}, "Plug-in", "used when a job says \"printer setting\"");
  Web_PresetRow(client, s, TSettingsKey{SETKEY_CARD_THICKNESS, 0, 0, 0}, "Card thickness", "unset, standard or thin");
  Web_PresetRow(client, s, TSettingsKey{SETKEY_MAG_PO_MODE, 0, 0, 0}, "Overlay over the stripe",
              "unset, disabled or enabled");
  for (int i = 0; i < 3; ++i)
    Web_PresetRow(client, s, TSettingsKey{SETKEY_LUT_NAME, 0, 0, i}, ("Colour table " + std::to_string(i + 1)).c_str(),
                "name of a table in the lut folder");
  for (int i = 0; i < 5; ++i)
    Web_PresetRow(client, s, TSettingsKey{SETKEY_UV_NAME, 0, 0, i}, ("UV preset " + std::to_string(i + 1)).c_str(),
                "name of a file in the uv folder");
  papplClientHTMLPuts(client, "<tr><th></th><td><input type=\"submit\" id=\"save-settings\" value=\"Save presets\">"
                              "</td></tr>\n</table></form>\n");

  papplClientHTMLPuts(client, "<h3>Upload a UV image</h3>\n");
  papplClientHTMLStartForm(client, path, true);
  papplClientHTMLPuts(client,
                      "<input type=\"hidden\" name=\"action\" value=\"uv\">\n<table class=\"form\">\n"
                      "<tr><th><label for=\"uv-preset\">Preset:</label></th><td><select name=\"uv-preset\" "
                      "id=\"uv-preset\"><option>1</option><option>2</option><option>3</option><option>4</option>"
                      "<option>5</option></select></td></tr>\n"
                      "<tr><th><label for=\"uv-name\">File name:</label></th><td><input type=\"text\" name=\"uv-name\" "
                      "id=\"uv-name\" value=\"\" size=\"24\"></td></tr>\n"
                      "<tr><th><label for=\"uv-fit\">Other sizes:</label></th><td><select name=\"uv-fit\" "
                      "id=\"uv-fit\"><option value=\"fit\">fit, keeping the aspect ratio</option><option "
                      "value=\"stretch\">stretch</option><option value=\"exact\">refuse</option></select></td></tr>\n"
                      "<tr><th><label for=\"uv-file\">PNG picture:</label></th><td><input type=\"file\" "
                      "name=\"uv-file\" id=\"uv-file\" accept=\"image/png\"> <small>black prints UV, white "
                      "none</small></td></tr>\n"
                      "<tr><th></th><td><input type=\"submit\" id=\"upload-uv\" value=\"Upload UV image\"></td></tr>\n"
                      "</table></form>\n");

  papplClientHTMLPuts(client, "<h3>Upload a colour table</h3>\n");
  papplClientHTMLStartForm(client, path, true);
  papplClientHTMLPuts(client,
                      "<input type=\"hidden\" name=\"action\" value=\"lut\">\n<table class=\"form\">\n"
                      "<tr><th><label for=\"lut-table\">Table:</label></th><td><select name=\"lut-table\" "
                      "id=\"lut-table\"><option>1</option><option>2</option><option>3</option></select></td></tr>\n"
                      "<tr><th><label for=\"lut-name\">Name:</label></th><td><input type=\"text\" name=\"lut-name\" "
                      "id=\"lut-name\" value=\"\" size=\"24\"></td></tr>\n"
                      "<tr><th><label for=\"lut-file\">CSV file:</label></th><td><input type=\"file\" "
                      "name=\"lut-file\" id=\"lut-file\" accept=\".csv,text/csv\"> <small>a header "
                      "\"level,red,green,blue\" and 256 rows \"i,r,g,b\"</small></td></tr>\n"
                      "<tr><th></th><td><input type=\"submit\" id=\"upload-lut\" value=\"Upload colour table\"></td>"
                      "</tr>\n</table></form>\n");
}

// 'Web_PresetPost()' - Carry out one form; the message for the page.
bool Web_PresetPost(pappl_client_t* client, const TAppModel& model, const std::string& serial, std::string* message) {
  cups_option_t* form = nullptr;
  int num_form = papplClientGetForm(client, &form);
  bool ok = false;
  std::string action = Web_FormValue(num_form, form, "action");
  if (!Web_MayChange(client)) {
    *message = "Presets can be changed only from this machine, or by a signed-in administrator: nothing was changed.";
  } else if (!papplClientIsValidForm(client, num_form, form)) {
    *message = "Invalid form data (the form token is missing or out of date): nothing was changed.";
  } else if (action == "settings") {
    std::map<std::string, std::string> values;
    for (int i = 0; i < num_form; ++i) values[form[i].name] = form[i].value;
    ok = Presets_ApplyValues(serial, values, message);
    if (ok) *message = "Presets saved.";
  } else if (action == "uv" || action == "lut") {
    // The file comes only from a real upload of this request (never from
    // a path a client typed); PAPPL removes it when the request ends.
    std::string value = Web_FormValue(num_form, form, action == "uv" ? "uv-file" : "lut-file");
    std::string name = Web_FormValue(num_form, form, action == "uv" ? "uv-name" : "lut-name");
    std::string bytes;
    if (!Upload_Read(client, value, action == "uv" ? PRESETS_MAX_PNG_BYTES : LUT_FILE_MAX, &bytes, message)) {
      if (message->find("No file was uploaded") != std::string::npos)
        *message = "No file was uploaded: nothing was changed.";
    } else if (action == "uv") {
      int preset = atoi(Web_FormValue(num_form, form, "uv-preset").c_str());
      ok = Presets_InstallUv(serial, model.id, preset, name, Web_FormValue(num_form, form, "uv-fit"), bytes, message);
      if (ok) *message = "UV image \"" + name + "\" installed as UV preset " + std::to_string(preset) + ".";
    } else {
      int table = atoi(Web_FormValue(num_form, form, "lut-table").c_str());
      ok = Presets_InstallLut(serial, table, name, bytes, message);
      if (ok) *message = "Colour table \"" + name + "\" installed as table " + std::to_string(table) + ".";
    }
  } else {
    *message = "Unknown form.";
  }
  if (!ok && message->find("nothing was changed") == std::string::npos) *message += " Nothing was changed.";
  cupsFreeOptions(num_form, form);
  return ok;
}

}  // namespace

// 'Web_PresetsPage()' - GET shows the presets, POST changes them.
bool Web_PresetsPage(pappl_client_t* client, void* data) {
  pappl_printer_t* printer = static_cast<pappl_printer_t*>(data);
  const TAppModel* model = App_FindModel(papplPrinterGetDriverName(printer));
  if (!model || !papplClientHTMLAuthorize(client)) return false;
  TAccessories acc = Acc_Load(printer, *model);
  std::string message;
  bool ok = true;
  if (papplClientGetMethod(client) == HTTP_STATE_POST) {
    if (acc.serial.empty()) {
      cups_option_t* form = nullptr;
      cupsFreeOptions(papplClientGetForm(client, &form), form);
      message = "This printer has no serial number yet: set it on the Device settings page.";
      ok = false;
    } else {
      ok = Web_PresetPost(client, *model, acc.serial, &message);
    }
  }
  papplClientHTMLPrinterHeader(client, printer, "Card presets", 0, nullptr, nullptr);
  if (!message.empty()) Web_Message(client, message, !ok);
  if (!Web_MayChange(client)) Web_Message(client, "Read only: presets can be changed only from this machine.", false);
  TBrellianSettings settings;
  std::string error;
  if (acc.serial.empty()) {
    Web_Message(client, "Set the printer's serial number on the Device settings page: it selects its presets.", false);
  } else if (!Presets_Load(acc.serial, &settings, &error)) {
    Web_Message(client, error, true);
  } else {
    papplClientHTMLPrintf(client, "<p>Presets of serial number %s, kept in %s.</p>\n", acc.serial.c_str(),
                          settings.FilePath().c_str());
    char path[256];
    papplPrinterGetPath(printer, "presets", path, sizeof(path));
    Web_PresetForms(client, path, settings);
  }
  papplClientHTMLPrinterFooter(client);
  return true;
}
