// The table of card attributes: one entry per filter option group; the slot plan of vendor_table.h.
// Copyright 2026 The rastertobrellian authors.
#include "app/vendor_table.h"

#include "options/settings.h"

namespace {

const char* const kSideWord[2] = {"front", "back"};
const char* const kSideLabel[2] = {"Front", "Back"};

// 'Vendor_Presets()' - Choices preset-1..preset-n for "Preset1".."Presetn",
// each needing ribbon.
void Vendor_Presets(std::vector<TVendorChoice>* choices, int n, TRibbonNeed ribbon) {
  for (int i = 1; i <= n; ++i)
    choices->push_back(
        {"preset-" + std::to_string(i), "Preset" + std::to_string(i), "Preset " + std::to_string(i), ribbon});
}

// 'Vendor_AddSide()' - The nine attributes of one side.
void Vendor_AddSide(std::vector<TVendorAttr>* t, int side) {
  std::string p = std::string("brellian-") + kSideWord[side] + "-";
  std::string k = kSideWord[side];
  std::string l = kSideLabel[side];
  TVendorNeeds needs = side == 0 ? NEEDS_NOTHING : NEEDS_BACK_SIDE;

  t->push_back({p + "ribbon", VENDOR_KEYWORD, l + " colour mode", k + "Ribbon", side, needs,
                {{"color", "Color", "Colour", RIBBON_COLOR},
                 {"color-k", "ColorK", "Colour + resin black", RIBBON_COLOR},
                 {"grayscale", "Grayscale", "Grayscale", RIBBON_COLOR},
                 {"monochrome", "Monochrome", "Monochrome (resin black only)", RIBBON_ANY}},
                "color"});
  TVendorAttr resin{p + "resin", VENDOR_KEYWORD, l + " resin black", k + "Resin", side, needs,
                    {{"card", "Card", "Pure black of the card", RIBBON_ANY},
                     {"page", "Page", "Black from the next page", RIBBON_ANY}},
                    "card"};
  Vendor_Presets(&resin.choices, SETTINGS_PRESETS, RIBBON_ANY);
  resin.choices.push_back({"custom-areas", "CustomAreas", "Custom areas"});
  t->push_back(resin);
  TVendorAttr uv{p + "uv", VENDOR_KEYWORD, l + " UV panel", k + "UV", side, needs,
                 {{"none", "None", "None"}, {"page", "Page", "From the page", RIBBON_UV}}, "none"};
  Vendor_Presets(&uv.choices, SETTINGS_NAMES, RIBBON_UV);
  t->push_back(uv);
  // The side's less-used options: items of its carrier, no slot of their own.
  std::string carrier = p + "options";
  t->push_back({carrier, VENDOR_CARRIER, l + " options (uv-mark-corner=upper-right|lower-left, secure-erase=true|false)",
                "", side, needs, {}, ""});
  t->push_back({p + "uv-mark-corner", VENDOR_KEYWORD, l + " UV mark corner", k + "UVMAC", side, needs,
                {{"upper-right", "UpperRight", "Upper right"}, {"lower-left", "LowerLeft", "Lower left"}},
                "upper-right", carrier, "uv-mark-corner"});
  TVendorAttr po{p + "overlay", VENDOR_KEYWORD, l + " overlay", k + "PO", side, needs,
                 {{"none", "None", "None"}, {"page", "Page", "From the page", RIBBON_PO}}, "none"};
  Vendor_Presets(&po.choices, SETTINGS_PRESETS, RIBBON_PO);
  po.choices.push_back({"custom-areas", "CustomAreas", "Custom areas", RIBBON_PO});
  t->push_back(po);
  TVendorAttr lut{p + "color-table", VENDOR_KEYWORD, l + " colour table", k + "LUTTable", side, needs,
                  {{"firmware", "Firmware", "Printer table"}}, "firmware"};
  for (int i = 1; i <= APP_COLOR_TABLES; ++i)
    lut.choices.push_back({"table-" + std::to_string(i), "LUT" + std::to_string(i), "Table " + std::to_string(i)});
  t->push_back(lut);
  t->push_back({p + "secure-erase", VENDOR_BOOLEAN, l + " secure erase", k + "SecureErase", side, needs, {}, "false",
                carrier, "secure-erase"});
  t->push_back({p + "rotate", VENDOR_BOOLEAN, "Rotate " + std::string(kSideWord[side]) + " image", k + "Rotation",
                side, needs, {}, "false"});
  t->push_back({p + "custom-areas", VENDOR_TEXT, l + " custom areas", "", side, needs, {}, ""});
}

// 'Vendor_Build()' - The whole table, in the order the web page lists it.
std::vector<TVendorAttr> Vendor_Build() {
  std::vector<TVendorAttr> t;
  Vendor_AddSide(&t, 0);
  Vendor_AddSide(&t, 1);
  t.push_back({"brellian-card-thickness", VENDOR_KEYWORD, "Card thickness", "cardThickness", -1, NEEDS_NOTHING,
               {{"printer-setting", "Default", "Printer setting"},
                {"thin", "Thin", "Thin"},
                {"standard", "Standard", "Standard"}},
               "printer-setting"});
  t.push_back({"brellian-overlay-over-stripe", VENDOR_KEYWORD, "Overlay over the magnetic stripe", "magPOMode", -1,
               NEEDS_NOTHING,
               {{"printer-setting", "Default", "Printer setting"},
                {"auto", "Auto", "Automatic"},
                {"disabled", "Disabled", "Disabled"},
                {"enabled", "Enabled", "Enabled"}},
               "printer-setting"});
  t.push_back({"brellian-laminate", VENDOR_BOOLEAN, "Laminate card", "cardLaminate", -1, NEEDS_LAMINATOR, {}, "false"});
  t.push_back({"brellian-entry-flip", VENDOR_BOOLEAN, "Flip card on entry", "entryCardFlip", -1, NEEDS_NOTHING, {},
               "false"});
  t.push_back({"brellian-eject-existing", VENDOR_BOOLEAN, "Eject a card already in the printer", "cardEjectExisting",
               -1, NEEDS_NOTHING, {}, "true"});
  t.push_back({"brellian-encode-flip", VENDOR_BOOLEAN, "Flip card for encoding", "magEncodeCardFlip", -1,
               NEEDS_MAG_ENCODER, {}, "false"});
  t.push_back({"brellian-plugin", VENDOR_TEXT, "Printer plug-in (empty: printer setting)", "printerPlugin", -1,
               NEEDS_NOTHING, {}, ""});
  const std::vector<std::vector<std::string>> formats = {
      {"ISO6-76", "ISO7-69", "ISO6-79"}, {"ISO4-37"}, {"ISO7-69", "ISO6-79", "ISO4-104"}};
  for (int n = 1; n <= 3; ++n) {
    std::string base = "brellian-mag-track-" + std::to_string(n);
    TVendorAttr fmt{base + "-format", VENDOR_KEYWORD, "Track " + std::to_string(n) + " format",
                    "magEncodeFormat" + std::to_string(n), -1, NEEDS_MAG_ENCODER, {{"none", "None", "None"}}, "none"};
    for (const std::string& f : formats[n - 1]) {
      std::string kw = f;
      for (char& c : kw) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
      fmt.choices.push_back({kw, f, f});
    }
    t.push_back(fmt);
    t.push_back({base + "-data", VENDOR_TEXT, "Track " + std::to_string(n) + " data",
                 "magEncodeData" + std::to_string(n), -1, NEEDS_MAG_ENCODER, {}, ""});
  }
  return t;
}

// 'Vendor_Quote()' - A strings-file quoted text.
std::string Vendor_Quote(const std::string& s) {
  std::string out = "\"";
  for (char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

}  // namespace

// 'Vendor_Table()' - Built once.
const std::vector<TVendorAttr>& Vendor_Table() {
  static const std::vector<TVendorAttr> table = Vendor_Build();
  return table;
}

// 'Vendor_Find()' - Linear search; the table is short.
const TVendorAttr* Vendor_Find(const std::string& name) {
  for (const TVendorAttr& a : Vendor_Table())
    if (a.name == name) return &a;
  return nullptr;
}

// 'Vendor_FindChoice()' - Linear search of a keyword.
const TVendorChoice* Vendor_FindChoice(const TVendorAttr& attr, const std::string& keyword) {
  for (const TVendorChoice& c : attr.choices)
    if (c.keyword == keyword) return &c;
  return nullptr;
}

// 'Vendor_SlotsUsed()' - Count the attributes without a carrier.
int Vendor_SlotsUsed() {
  int n = 0;
  for (const TVendorAttr& a : Vendor_Table()) n += a.carrier.empty() ? 1 : 0;
  return n;
}

// 'Vendor_CarriedItems()' - The KEY=VALUE items of a carrier's text.
static std::vector<std::pair<std::string, std::string>> Vendor_CarriedItems(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> items;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find_first_of(",; \t", at);
    if (end == std::string::npos) end = text.size();
    std::string item = text.substr(at, end - at);
    at = end + 1;
    if (item.empty()) continue;
    size_t eq = item.find('=');
    items.push_back({item.substr(0, eq), eq == std::string::npos ? std::string() : item.substr(eq + 1)});
  }
  return items;
}

bool Vendor_CarriedValue(const std::string& text, const std::string& key, std::string* value) {
  bool found = false;
  for (const auto& item : Vendor_CarriedItems(text))
    if (item.first == key) *value = item.second, found = true;
  return found;
}

std::vector<std::string> Vendor_CarriedKeys(const std::string& text) {
  std::vector<std::string> keys;
  for (const auto& item : Vendor_CarriedItems(text)) keys.push_back(item.first);
  return keys;
}

// 'Vendor_RibbonAllows()' - The ribbon rules of the PPD's constraints.
bool Vendor_RibbonAllows(TRibbonNeed need, const std::string& ribbonType) {
  switch (need) {
    case RIBBON_COLOR: return ribbonType != "Black";
    case RIBBON_UV: return ribbonType == "YMCK-UV";
    case RIBBON_PO: return ribbonType == "YMCK-PO";
    case RIBBON_ANY: break;
  }
  return true;
}

// 'Vendor_StringsText()' - "name" = "label"; and "name.value" = "label";
std::string Vendor_StringsText() {
  std::string out;
  for (const TVendorAttr& a : Vendor_Table()) {
    out += Vendor_Quote(a.name) + " = " + Vendor_Quote(a.label) + ";\n";
    for (const TVendorChoice& c : a.choices)
      out += Vendor_Quote(a.name + "." + c.keyword) + " = " + Vendor_Quote(c.label) + ";\n";
  }
  return out;
}
