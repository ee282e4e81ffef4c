// The table of card attributes: one entry per filter option group, 31 of PAPPL's 32 slots.
// Copyright 2026 The rastertobrellian authors.
#include "app/vendor_table.h"

namespace {

const char* const kSideWord[2] = {"front", "back"};
const char* const kSideLabel[2] = {"Front", "Back"};

// 'Vendor_Presets()' - Choices preset-1..preset-n for "Preset1".."Presetn".
void Vendor_Presets(std::vector<TVendorChoice>* choices, int n) {
  for (int i = 1; i <= n; ++i)
    choices->push_back({"preset-" + std::to_string(i), "Preset" + std::to_string(i), "Preset " + std::to_string(i)});
}

// 'Vendor_AddSide()' - The nine attributes of one side.
void Vendor_AddSide(std::vector<TVendorAttr>* t, int side) {
  std::string p = std::string("brellian-") + kSideWord[side] + "-";
  std::string k = kSideWord[side];
  std::string l = kSideLabel[side];
  TVendorNeeds needs = side == 0 ? NEEDS_NOTHING : NEEDS_BACK_SIDE;

  t->push_back({p + "ribbon", VENDOR_KEYWORD, l + " colour mode", k + "Ribbon", side, needs,
                {{"color", "Color", "Colour"},
                 {"color-k", "ColorK", "Colour + resin black"},
                 {"grayscale", "Grayscale", "Grayscale"},
                 {"monochrome", "Monochrome", "Monochrome (resin black only)"}},
                "color"});
  TVendorAttr resin{p + "resin", VENDOR_KEYWORD, l + " resin black", k + "Resin", side, needs,
                    {{"page", "Page", "Whole page"}}, "page"};
  Vendor_Presets(&resin.choices, 10);
  resin.choices.push_back({"custom-areas", "CustomAreas", "Custom areas"});
  t->push_back(resin);
  TVendorAttr uv{p + "uv", VENDOR_KEYWORD, l + " UV panel", k + "UV", side, needs,
                 {{"none", "None", "None"}, {"page", "Page", "From the page"}}, "none"};
  Vendor_Presets(&uv.choices, 5);
  t->push_back(uv);
  t->push_back({p + "uv-mark-corner", VENDOR_KEYWORD, l + " UV mark corner", k + "UVMAC", side, needs,
                {{"upper-right", "UpperRight", "Upper right"}, {"lower-left", "LowerLeft", "Lower left"}},
                "upper-right"});
  TVendorAttr po{p + "overlay", VENDOR_KEYWORD, l + " overlay", k + "PO", side, needs,
                 {{"none", "None", "None"}, {"page", "Page", "From the page"}}, "none"};
  Vendor_Presets(&po.choices, 10);
  po.choices.push_back({"custom-areas", "CustomAreas", "Custom areas"});
  t->push_back(po);
  t->push_back({p + "color-table", VENDOR_KEYWORD, l + " colour table", k + "LUTTable", side, needs,
                {{"firmware", "Firmware", "Printer table"},
                 {"table-1", "LUT1", "Table 1"},
                 {"table-2", "LUT2", "Table 2"},
                 {"table-3", "LUT3", "Table 3"}},
                "firmware"});
  t->push_back({p + "secure-erase", VENDOR_BOOLEAN, l + " secure erase", k + "SecureErase", side, needs, {}, "false"});
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
