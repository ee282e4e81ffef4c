// The card options as IPP attributes: names, values, labels and the filter keywords they stand for.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

// Syntax of a card attribute.
enum TVendorKind {
  VENDOR_KEYWORD,   // one of a list of keywords
  VENDOR_BOOLEAN,   // true / false, sent to the filter as Yes / No
  VENDOR_TEXT,      // free text, checked before use
};

// What an attribute needs installed to be offered.
enum TVendorNeeds {
  NEEDS_NOTHING,
  NEEDS_BACK_SIDE,      // two-sided printing: a model with a flip-turn unit
  NEEDS_LAMINATOR,
  NEEDS_MAG_ENCODER,
};

// One keyword value: the IPP keyword, the filter's choice, the label.
struct TVendorChoice {
  std::string keyword;
  std::string ppdChoice;
  std::string label;
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
};

// 'Vendor_Table()' - Every card attribute, 31 in all (PAPPL offers 32 slots).
const std::vector<TVendorAttr>& Vendor_Table();

// 'Vendor_Find()' - The attribute of a name, or nullptr.
const TVendorAttr* Vendor_Find(const std::string& name);

// 'Vendor_FindChoice()' - The choice of a keyword, or nullptr.
const TVendorChoice* Vendor_FindChoice(const TVendorAttr& attr, const std::string& keyword);

// 'Vendor_StringsText()' - The labels of every attribute and value in the
// strings-file form ("name" = "label";) that the web interface reads.
std::string Vendor_StringsText();
