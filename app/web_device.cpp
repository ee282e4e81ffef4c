// The "Device settings" page of a printer: installed accessories and the serial number.
// Copyright 2026 The rastertobrellian authors.
#include <string>

#include "app/accessories.h"
#include "app/pappl_driver.h"
#include "app/web_access.h"
#include "app/web_pages.h"

namespace {

// 'Device_Checkbox()' - One accessory as a checkbox row.
void Device_Checkbox(pappl_client_t* client, const char* name, const char* label, bool on, bool enabled) {
  papplClientHTMLPrintf(client,
                        "<tr><th><label for=\"%s\">%s:</label></th><td><input type=\"checkbox\" id=\"%s\" "
                        "name=\"%s\"%s%s></td></tr>\n",
                        name, label, name, name, on ? " checked" : "", enabled ? "" : " disabled");
}

// 'Device_Save()' - Read the form into *acc; false with *error for a bad serial.
bool Device_Save(int num_form, cups_option_t* form, const TAppModel& model, TAccessories* acc, std::string* error) {
  std::string ribbon = Web_FormValue(num_form, form, "ribbon-type");
  bool known = false;
  for (const char* r : g_ribbonTypes)
    if (ribbon == r) known = true;
  if (!known) {
    *error = "Unknown ribbon type \"" + ribbon + "\".";
    return false;
  }
  std::string serial = Web_FormValue(num_form, form, "serial");
  if (!serial.empty() && !Acc_IsSafeSerial(serial)) {
    *error = "The serial number may hold only letters, digits, \"-\" and \"_\" (at most 64).";
    return false;
  }
  acc->ribbonType = ribbon;
  acc->serial = serial;
  acc->flipTurn = model.twoSided && cupsGetOption("flip-turn", num_form, form) != nullptr;
  acc->laminator = cupsGetOption("laminator", num_form, form) != nullptr;
  acc->magEncoder = cupsGetOption("mag-encoder", num_form, form) != nullptr;
  acc->icEncoder = cupsGetOption("ic-encoder", num_form, form) != nullptr;
  acc->icEncoderContactless = cupsGetOption("ic-encoder-contactless", num_form, form) != nullptr;
  return true;
}

}  // namespace

// 'Web_DevicePage()' - GET shows the accessories, POST changes them.
bool Web_DevicePage(pappl_client_t* client, void* data) {
  TPrinterPage page;
  if (!Web_OpenPrinterPage(client, data, &page)) return false;
  pappl_printer_t* printer = page.printer;
  const TAppModel* model = page.model;
  TAccessories& acc = page.acc;
  std::string message;
  bool error = false;
  if (papplClientGetMethod(client) == HTTP_STATE_POST) {
    cups_option_t* form = nullptr;
    int num_form = papplClientGetForm(client, &form);
    if (!page.mayChange) {
      message = "Settings can be changed only from this machine, or by a signed-in administrator.";
      error = true;
    } else if (!Web_FormTokenOk(client, num_form, form, page.token)) {
      message = WEB_INVALID_FORM;
      error = true;
    } else if (!Device_Save(num_form, form, *model, &acc, &message)) {
      error = true;
      acc = Acc_Load(printer, *model);
    } else if (!Acc_Save(printer, acc) || !Driver_Apply(printer, *model, acc)) {
      message = "The settings could not be saved.";
      error = true;
    } else {
      message = "Device settings saved.";
    }
    cupsFreeOptions(num_form, form);
  }
  papplClientHTMLPrinterHeader(client, printer, "Device settings", 0, nullptr, nullptr);
  if (!message.empty()) Web_Message(client, message, error);
  char path[256];
  papplPrinterGetPath(printer, "device", path, sizeof(path));
  Web_StartForm(client, path, false, page.token);
  papplClientHTMLPuts(client, "<table class=\"form\">\n<tr><th><label for=\"ribbon-type\">Ribbon:</label></th><td>"
                              "<select id=\"ribbon-type\" name=\"ribbon-type\">");
  for (size_t i = 0; i < sizeof(g_ribbonTypes) / sizeof(g_ribbonTypes[0]); ++i)
    papplClientHTMLPrintf(client, "<option value=\"%s\"%s>%s</option>", g_ribbonTypes[i],
                          acc.ribbonType == g_ribbonTypes[i] ? " selected" : "", g_ribbonLabels[i]);
  papplClientHTMLPuts(client, "</select></td></tr>\n");
  Device_Checkbox(client, "flip-turn", "Flip-turn unit (two-sided cards)", acc.flipTurn, model->twoSided);
  Device_Checkbox(client, "laminator", "Laminator", acc.laminator, true);
  Device_Checkbox(client, "mag-encoder", "Magnetic stripe encoder", acc.magEncoder, true);
  Device_Checkbox(client, "ic-encoder", "Contact chip encoder", acc.icEncoder, true);
  Device_Checkbox(client, "ic-encoder-contactless", "Contactless chip encoder", acc.icEncoderContactless, true);
  papplClientHTMLPrintf(client,
                        "<tr><th><label for=\"serial\">Serial number:</label></th><td><input type=\"text\" "
                        "id=\"serial\" name=\"serial\" value=\"%s\" maxlength=\"64\"> <small>selects the card "
                        "presets of this printer</small></td></tr>\n",
                        acc.serial.c_str());
  papplClientHTMLPuts(client, "<tr><th></th><td><input type=\"submit\" value=\"Save\"></td></tr>\n</table></form>\n");
  papplClientHTMLPrinterFooter(client);
  return true;
}
