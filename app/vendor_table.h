// The card options as IPP attributes: names, values, labels and the filter keywords they stand for.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

// The colour tables a side can name: table-1 .. table-3, the filter's LUT1
// .. LUT3 (lut.1 .. lut.3 of the settings file).
constexpr int APP_COLOR_TABLES = 3;

// Syntax of a card attribute.
enum TVendorKind {
  VENDOR_KEYWORD,   // one of a list of keywords
  VENDOR_BOOLEAN,   // true / false, sent to the filter as Yes / No
  VENDOR_TEXT,      // free text, checked before use
  VENDOR_CARRIER,   // text "KEY=VALUE,KEY=VALUE" carrying options without a slot
};

// The vendor-attribute slots.  PAPPL 1.3.1 passes a job at most 32 vendor
// attributes (PAPPL_MAX_VENDOR).  The card attributes that clients use
// most each take a slot of their own; the less-used options of a side take
// none: they travel as KEY=VALUE items of that side's carrier attribute,
// brellian-front-options or brellian-back-options (KEY is the option's
// name without "brellian-front-", e.g. "secure-erase=true").  A new option
// of a side joins its carrier, so the slots in use stay below the limit
// whatever the sides gain.
constexpr int APP_VENDOR_SLOTS = 32;

// What an attribute needs installed to be offered.
enum TVendorNeeds {
  NEEDS_NOTHING,
  NEEDS_BACK_SIDE,      // two-sided printing: a model with a flip-turn unit
  NEEDS_LAMINATOR,
  NEEDS_MAG_ENCODER,
};

// Which ribbons a keyword value can be printed with.
enum TRibbonNeed {
  RIBBON_ANY,      // every ribbon
  RIBBON_COLOR,    // a ribbon with colour panels: every ribbon but "Black"
  RIBBON_UV,       // the ribbon with a UV panel, "YMCK-UV"
  RIBBON_PO,       // the ribbon with an overlay panel, "YMCK-PO"
};

// One keyword value: the IPP keyword, the filter's choice, the label and
// the ribbon it needs.
struct TVendorChoice {
  std::string keyword;
  std::string ppdChoice;
  std::string label;
  TRibbonNeed ribbon = RIBBON_ANY;
};

// One card attribute.
struct TVendorAttr {
  std::string name;        // e.g. "brellian-front-ribbon"
  TVendorKind kind;
  std::string label;       // e.g. "Front colour mode"
  std::string ppdKeyword;  // the filter's keyword ("" for the custom-areas text)
  int side;                // 0 front, 1 back, -1 the card
  TVendorNeeds needs;
  std::vector<TVendorChoice> choices;  // keywords only
  std::string defaultValue;            // keyword, "true"/"false" or text
  std::string carrier = "";            // "": a slot of its own; else the carrier attribute
  std::string carrierKey = "";         // its KEY in the carrier's text
};

// 'Vendor_Table()' - Every card attribute, carried ones included.
const std::vector<TVendorAttr>& Vendor_Table();

// 'Vendor_Find()' - The attribute of a name, or nullptr.
const TVendorAttr* Vendor_Find(const std::string& name);

// 'Vendor_FindChoice()' - The choice of a keyword, or nullptr.
const TVendorChoice* Vendor_FindChoice(const TVendorAttr& attr, const std::string& keyword);

// 'Vendor_SlotsUsed()' - The attributes with a slot of their own.
int Vendor_SlotsUsed();

// 'Vendor_CarriedValue()' - The value of key in a carrier's text
// ("KEY=VALUE" items separated by commas, semicolons or blanks); false when
// the text has no such item.
bool Vendor_CarriedValue(const std::string& text, const std::string& key, std::string* value);

// 'Vendor_CarriedKeys()' - The keys of a carrier's text, in order.
std::vector<std::string> Vendor_CarriedKeys(const std::string& text);

// 'Vendor_RibbonAllows()' - True when a printer whose ribbon is ribbonType
// (a choice of the PPD's ribbonType) can print a value that needs need.
bool Vendor_RibbonAllows(TRibbonNeed need, const std::string& ribbonType);

// 'Vendor_StringsText()' - The labels of every attribute and value in the
// strings-file form ("name" = "label";) that the web interface reads.
std::string Vendor_StringsText();
