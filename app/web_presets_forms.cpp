// The forms and lists of the "Card presets" page: areas, card settings as choices, installed files, uploads.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_presets_forms.h"

#include <cctype>
#include <vector>

#include "options/lut_file.h"
#include "app/presets_store.h"
#include "lib/settings_keys.h"
#include "app/web_access.h"
#include "app/vendor_table.h"
#include "app/web_upload.h"

namespace {

// 'Web_PresetText()' - Text or an attribute value, escaped.
void Web_PresetText(pappl_client_t* client, const std::string& text) { papplClientHTMLEscape(client, text.c_str(), 0); }

// 'Web_PresetInput()' - One text input of a settings key.
void Web_PresetInput(pappl_client_t* client, const TBrellianSettings& s, const TSettingsKey& key, int size) {
  std::string name = Settings_KeyName(key);
  papplClientHTMLPrintf(client, "<input type=\"text\" name=\"%s\" id=\"%s\" size=\"%d\" value=\"", name.c_str(),
                        name.c_str(), size);
  Web_PresetText(client, Settings_GetValue(s, key));
  papplClientHTMLPuts(client, "\">");
}

// One choice of a <select>: the value the form sends and the text shown.
// A bare choice is written "<option>text</option>": its value is its text.
struct TWebChoice {
  std::string value;
  std::string text;
  bool bare = false;
};

// 'Web_SelectRow()' - A form row "label:" with a <select> of the choices,
// the one whose value is current selected (none when current is null or
// matches none), and the hint after the list unless it is null.  label and
// hint are written as they are; values and texts are escaped.
void Web_SelectRow(pappl_client_t* client, const std::string& name, const char* label,
                   const std::vector<TWebChoice>& choices, const std::string* current, const char* hint) {
  papplClientHTMLPrintf(client, "<tr><th><label for=\"%s\">%s:</label></th><td><select name=\"%s\" id=\"%s\">",
                        name.c_str(), label, name.c_str(), name.c_str());
  for (const TWebChoice& c : choices) {
    if (c.bare) {
      papplClientHTMLPuts(client, "<option>");
    } else {
      papplClientHTMLPuts(client, "<option value=\"");
      Web_PresetText(client, c.value);
      papplClientHTMLPuts(client, current && c.value == *current ? "\" selected>" : "\">");
    }
    Web_PresetText(client, c.text);
    papplClientHTMLPuts(client, "</option>");
  }
  if (hint)
    papplClientHTMLPrintf(client, "</select> <small>%s</small></td></tr>\n", hint);
  else
    papplClientHTMLPuts(client, "</select></td></tr>\n");
}

// 'Web_PresetSelect()' - One settings key as a choice among choices; a
// current value that is not among them is kept as a choice of its own.
void Web_PresetSelect(pappl_client_t* client, const TBrellianSettings& s, const TSettingsKey& key, const char* label,
                      std::vector<TWebChoice> choices, const char* hint) {
  std::string current = Settings_GetValue(s, key);
  bool found = false;
  for (const TWebChoice& c : choices) found = found || c.value == current;
  if (!found) choices.push_back({current, current + " (not installed)"});
  Web_SelectRow(client, Settings_KeyName(key), label, choices, &current, hint);
}

// 'Web_NumberChoices()' - The bare choices 1 to n.
std::vector<TWebChoice> Web_NumberChoices(int n) {
  std::vector<TWebChoice> c;
  for (int i = 1; i <= n; ++i) c.push_back({std::to_string(i), std::to_string(i), true});
  return c;
}

// 'Web_PresetNameChoices()' - "" (none) and every installed name.
std::vector<TWebChoice> Web_PresetNameChoices(const std::vector<std::string>& names) {
  std::vector<TWebChoice> c{{"", "(none)"}};
  for (const std::string& n : names) c.push_back({n, n});
  return c;
}

// 'Web_PresetAreaTable()' - Ten presets of one kind, three areas per group.
void Web_PresetAreaTable(pappl_client_t* client, const TBrellianSettings& s, TSettingsKind kind, const char* title,
                       const char* group0, const char* group1) {
  papplClientHTMLPrintf(client,
                        "<h3>%s</h3>\n<table class=\"list\"><tr><th>Preset</th><th colspan=\"3\">%s</th>"
                        "<th colspan=\"3\">%s</th></tr>\n",
                        title, group0, group1);
  for (int p = 0; p < SETTINGS_PRESETS; ++p) {
    papplClientHTMLPrintf(client, "<tr><td>%d</td>", p + 1);
    for (int g = 0; g < SETTINGS_GROUPS; ++g)
      for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) {
        papplClientHTMLPuts(client, "<td>");
        Web_PresetInput(client, s, TSettingsKey{kind, p, g, k}, 16);
        papplClientHTMLPuts(client, "</td>");
      }
    papplClientHTMLPuts(client, "</tr>\n");
  }
  papplClientHTMLPuts(client, "</table>\n");
}

// 'Web_PresetSettingsForm()' - Areas and card settings.
void Web_PresetSettingsForm(pappl_client_t* client, const char* path, const TBrellianSettings& s,
                          const std::vector<std::string>& uv, const std::vector<std::string>& lut,
                          const std::string& token) {
  Web_StartForm(client, path, false, token);
  papplClientHTMLPuts(client, "<input type=\"hidden\" name=\"action\" value=\"settings\">\n");
  papplClientHTMLPuts(client, "<p><small>Areas are \"LEFT TOP WIDTH HEIGHT\" with a unit each (px, mm, cm, in), "
                              "e.g. \"5mm 5mm 40mm 20mm\".</small></p>\n");
  Web_PresetAreaTable(client, s, SETKEY_RESIN_AREA, "Resin black areas", "Resin", "No resin");
  Web_PresetAreaTable(client, s, SETKEY_PO_AREA, "Overlay areas", "Overlay off (peel-off)", "Overlay kept");
  papplClientHTMLPuts(client, "<h3>Card settings</h3>\n<table class=\"form\">\n");
  TSettingsKey plugin{SETKEY_PLUGIN, 0, 0, 0};
  papplClientHTMLPrintf(client, "<tr><th><label for=\"%s\">Plug-in:</label></th><td>", Settings_KeyName(plugin).c_str());
  Web_PresetInput(client, s, plugin, 24);
  papplClientHTMLPuts(client, " <small>used when a job says \"printer setting\"</small></td></tr>\n");
  Web_PresetSelect(client, s, TSettingsKey{SETKEY_CARD_THICKNESS, 0, 0, 0}, "Card thickness",
                 {{"unset", "printer setting"}, {"standard", "standard"}, {"thin", "thin"}},
                 "used when a job says \"printer setting\"");
  Web_PresetSelect(client, s, TSettingsKey{SETKEY_MAG_PO_MODE, 0, 0, 0}, "Overlay over the stripe",
                 {{"unset", "printer setting"}, {"disabled", "disabled"}, {"enabled", "enabled"}},
                 "used when a job says \"printer setting\"");
  for (int i = 0; i < APP_COLOR_TABLES; ++i)
    Web_PresetSelect(client, s, TSettingsKey{SETKEY_LUT_NAME, 0, 0, i}, ("Colour table " + std::to_string(i + 1)).c_str(),
                   Web_PresetNameChoices(lut), "an installed colour table");
  for (int i = 0; i < SETTINGS_NAMES; ++i)
    Web_PresetSelect(client, s, TSettingsKey{SETKEY_UV_NAME, 0, 0, i}, ("UV preset " + std::to_string(i + 1)).c_str(),
                   Web_PresetNameChoices(uv), "an installed UV image");
  papplClientHTMLPuts(client, "<tr><th></th><td><input type=\"submit\" id=\"save-settings\" value=\"Save presets\">"
                              "</td></tr>\n</table></form>\n");
}

// 'Web_PresetInstalled()' - The installed UV images (with previews) and tables.
void Web_PresetInstalled(pappl_client_t* client, const char* previewPath, const std::vector<std::string>& uv,
                       const std::vector<std::string>& lut) {
  papplClientHTMLPrintf(client, "<h3>Installed UV images</h3>\n<p><small>%d of at most %d.</small></p>\n",
                        static_cast<int>(uv.size()), static_cast<int>(PRESETS_MAX_UV_FILES));
  if (!uv.empty()) papplClientHTMLPuts(client, "<table class=\"list\" id=\"uv-list\">\n");
  for (const std::string& n : uv) {
    papplClientHTMLPuts(client, "<tr><td>");
    Web_PresetText(client, n);
    papplClientHTMLPuts(client, "</td><td>");
    Web_PresetPreviewImage(client, previewPath, n);
    papplClientHTMLPuts(client, "</td></tr>\n");
  }
  if (!uv.empty()) papplClientHTMLPuts(client, "</table>\n");
  papplClientHTMLPuts(client, "<h3>Installed colour tables</h3>\n<ul id=\"lut-list\">");
  for (const std::string& n : lut) {
    papplClientHTMLPuts(client, "<li>");
    Web_PresetText(client, n);
    papplClientHTMLPuts(client, "</li>");
  }
  papplClientHTMLPuts(client, lut.empty() ? "<li>none</li></ul>\n" : "</ul>\n");
}

// 'Web_UploadFormStart()' - An upload form up to its first row: its title,
// the form start with the token, the hidden action and the choice of the
// preset it fills (numberName, 1 to count).
void Web_UploadFormStart(pappl_client_t* client, const char* path, const std::string& token, const char* title,
                         const char* action, const char* numberName, const char* numberLabel, int count) {
  papplClientHTMLPrintf(client, "<h3>%s</h3>\n", title);
  Web_StartForm(client, path, true, token);
  papplClientHTMLPrintf(client, "<input type=\"hidden\" name=\"action\" value=\"%s\">\n<table class=\"form\">\n",
                        action);
  Web_SelectRow(client, numberName, numberLabel, Web_NumberChoices(count), nullptr, nullptr);
}

}  // namespace

// 'Web_PresetPreviewImage()' - The picture comes from the preview resource;
// the name is percent-encoded into its query.
void Web_PresetPreviewImage(pappl_client_t* client, const char* previewPath, const std::string& name) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string query = std::string(previewPath) + "?name=";
  for (unsigned char c : name) {
    if (isalnum(c) || c == '.' || c == '_' || c == '-' || c == '~') {
      query += static_cast<char>(c);
    } else {
      query += '%';
      query += kHex[c >> 4];
      query += kHex[c & 15];
    }
  }
  papplClientHTMLPuts(client, "<img class=\"brellian-uv-preview\" height=\"80\" alt=\"UV image ");
  Web_PresetText(client, name);
  papplClientHTMLPrintf(client, "\" src=\"%s\">", query.c_str());
}

// 'Web_PresetForms()' - The whole body of the page.
void Web_PresetForms(pappl_client_t* client, const char* path, const char* previewPath, const TBrellianSettings& s,
                   const std::string& token) {
  std::vector<std::string> uv = Presets_ListUv();
  std::vector<std::string> lut = Presets_ListLut();
  Web_PresetSettingsForm(client, path, s, uv, lut, token);
  Web_PresetInstalled(client, previewPath, uv, lut);
  std::string maxName = std::to_string(PRESETS_MAX_NAME);
  Web_UploadFormStart(client, path, token, "Upload a UV image", "uv", "uv-preset", "Preset", SETTINGS_NAMES);
  papplClientHTMLPrintf(client,
                        "<tr><th><label for=\"uv-name\">File name:</label></th><td><input type=\"text\" name=\"uv-name\" "
                        "id=\"uv-name\" value=\"\" size=\"24\" maxlength=\"%s\"> <small>at most %s bytes; an "
                        "installed name is replaced</small></td></tr>\n",
                        maxName.c_str(), maxName.c_str());
  Web_SelectRow(client, "uv-fit", "Other sizes",
                {{"fit", "fit, keeping the aspect ratio"}, {"stretch", "stretch"}, {"exact", "refuse"}}, nullptr,
                nullptr);
  papplClientHTMLPrintf(client,
                        "<tr><th><label for=\"uv-file\">PNG picture:</label></th><td><input type=\"file\" "
                        "name=\"uv-file\" id=\"uv-file\" accept=\"image/png\"> <small>at most %s; black prints UV, "
                        "white none</small></td></tr>\n"
                        "<tr><th></th><td><input type=\"submit\" id=\"upload-uv\" value=\"Upload UV image\"></td></tr>\n"
                        "</table></form>\n",
                        Web_UploadLimit(PRESETS_MAX_PNG_BYTES).c_str());
  Web_UploadFormStart(client, path, token, "Upload a colour table", "lut", "lut-table", "Table", APP_COLOR_TABLES);
  papplClientHTMLPrintf(client,
                        "<tr><th><label for=\"lut-name\">Name:</label></th><td><input type=\"text\" name=\"lut-name\" "
                        "id=\"lut-name\" value=\"\" size=\"24\" maxlength=\"%s\"> <small>letters and digits, at most "
                        "%s bytes</small></td></tr>\n"
                        "<tr><th><label for=\"lut-file\">CSV file:</label></th><td><input type=\"file\" "
                        "name=\"lut-file\" id=\"lut-file\" accept=\".csv,text/csv\"> <small>at most %s; a header "
                        "\"level,red,green,blue\" and 256 rows \"i,r,g,b\"</small></td></tr>\n"
                        "<tr><th></th><td><input type=\"submit\" id=\"upload-lut\" value=\"Upload colour table\"></td>"
                        "</tr>\n</table></form>\n",
                        maxName.c_str(), maxName.c_str(), Web_UploadLimit(LUT_FILE_MAX).c_str());
}
