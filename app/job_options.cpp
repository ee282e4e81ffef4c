// The filter's options string of a job, built from the card attributes in force.
// Copyright 2026 The rastertobrellian authors.
#include "app/job_options.h"

#include "app/pappl_driver.h"
#include "app/vendor_table.h"
#include "options/sides.h"

namespace {

// 'JobOpt_Quote()' - name="value" with \ and " escaped, as cupsParseOptions reads it.
std::string JobOpt_Quote(const std::string& name, const std::string& value) {
  std::string out = name + "=\"";
  for (char c : value) {
    if (c == '\\' || c == '"' || c == '\'') out += '\\';
    out += c;
  }
  return out + "\"";
}

// 'JobOpt_Default()' - The printer's default of an attribute, "" if none.
std::string JobOpt_Default(ipp_t* attrs, const TVendorAttr& a) {
  ipp_attribute_t* d = attrs ? ippFindAttribute(attrs, (a.name + "-default").c_str(), IPP_TAG_ZERO) : nullptr;
  if (!d) return "";
  if (ippGetValueTag(d) == IPP_TAG_BOOLEAN) return ippGetBoolean(d, 0) ? "true" : "false";
  const char* s = ippGetString(d, 0, nullptr);
  return s ? s : "";
}

// 'JobOpt_Boolean()' - "1"/"yes" and "0"/"no" as IPP booleans, for a
// boolean attribute; anything else unchanged.
std::string JobOpt_Boolean(const TVendorAttr& a, std::string v) {
  if (a.kind == VENDOR_BOOLEAN && (v == "1" || v == "yes")) v = "true";
  if (a.kind == VENDOR_BOOLEAN && (v == "0" || v == "no")) v = "false";
  return v;
}

// 'JobOpt_Valid()' - A value the printer takes for an attribute.
bool JobOpt_Valid(const TAppModel& model, const TAccessories& acc, const TVendorAttr& a, const std::string& v) {
  if (a.kind == VENDOR_BOOLEAN) return v == "true" || v == "false";
  if (a.kind == VENDOR_KEYWORD) return Vendor_FindChoice(a, v) && Driver_Offered(model, acc, a.name.c_str(), v.c_str());
  return v.size() <= 255;
}

// 'JobOpt_UnknownKeys()' - Name in *refused each item of a carrier's text
// that is no option it carries.
void JobOpt_UnknownKeys(const TVendorAttr& carrier, const std::string& text, std::string* refused) {
  for (const std::string& key : Vendor_CarriedKeys(text)) {
    bool known = false;
    for (const TVendorAttr& a : Vendor_Table()) known = known || (a.carrier == carrier.name && a.carrierKey == key);
    if (!known) *refused += (refused->empty() ? "" : ", ") + carrier.name + ":" + key;
  }
}

}  // namespace

// 'JobOpt_Collect()' - Job value, printer default, table default.
TCardValues JobOpt_Collect(const TAppModel& model, const TAccessories& acc, int numVendor, cups_option_t* vendor,
                           ipp_t* driverAttrs, std::string* refused) {
  TCardValues values;
  for (const TVendorAttr& a : Vendor_Table()) {
    if (!Driver_Offered(model, acc, a.name.c_str(), "")) continue;
    const char* jobValue = cupsGetOption(a.name.c_str(), numVendor, vendor);
    std::string v = JobOpt_Default(driverAttrs, a);
    std::string carried;
    if (!a.carrier.empty()) {
      // A carried option: its item in the carrier's default, then in the
      // carrier the job sent.
      const TVendorAttr* carrier = Vendor_Find(a.carrier);
      std::string defaults = carrier ? JobOpt_Default(driverAttrs, *carrier) : std::string();
      if (!Vendor_CarriedValue(defaults, a.carrierKey, &v)) v.clear();
      const char* jobText = cupsGetOption(a.carrier.c_str(), numVendor, vendor);
      jobValue = jobText && Vendor_CarriedValue(jobText, a.carrierKey, &carried) ? carried.c_str() : nullptr;
    }
    v = JobOpt_Boolean(a, v);
    if (!JobOpt_Valid(model, acc, a, v)) v = a.defaultValue;
    if (jobValue) {
      std::string j = JobOpt_Boolean(a, jobValue);
      if (JobOpt_Valid(model, acc, a, j))
        v = j;
      else if (refused)
        *refused += (refused->empty() ? "" : ", ") + a.name + "=" + j;
    }
    values[a.name] = v;
    if (a.kind == VENDOR_CARRIER && jobValue && refused) JobOpt_UnknownKeys(a, jobValue, refused);
  }
  return values;
}

// 'JobOpt_ParseAreas()' - Groups split on "|", areas on ";".
bool JobOpt_ParseAreas(const std::string& text, int side, std::map<std::string, std::string>* out,
                       std::string* error) {
  static const char* const kGroups[4][2] = {
      {"resin", "ResinInclude"}, {"no-resin", "ResinExclude"}, {"overlay-off", "PeelOff"}, {"overlay-keep", "NonPeelOff"}};
  std::string sideWord = side == 0 ? "front" : "back";
  size_t pos = 0;
  while (pos <= text.size() && !text.empty()) {
    size_t bar = text.find('|', pos);
    std::string group = text.substr(pos, bar == std::string::npos ? std::string::npos : bar - pos);
    pos = bar == std::string::npos ? text.size() + 1 : bar + 1;
    if (group.find_first_not_of(' ') == std::string::npos) continue;
    size_t eq = group.find('=');
    std::string name = group.substr(0, eq);
    name.erase(0, name.find_first_not_of(' '));
    name.erase(name.find_last_not_of(' ') + 1);
    const char* word = nullptr;
    for (const auto& g : kGroups)
      if (name == g[0]) word = g[1];
    if (eq == std::string::npos || !word) {
      *error = "\"" + name + "\" is not one of resin, no-resin, overlay-off, overlay-keep";
      return false;
    }
    std::string areas = group.substr(eq + 1);
    int k = 0;
    size_t apos = 0;
    while (apos <= areas.size()) {
      size_t semi = areas.find(';', apos);
      std::string area = areas.substr(apos, semi == std::string::npos ? std::string::npos : semi - apos);
      apos = semi == std::string::npos ? areas.size() + 1 : semi + 1;
      area.erase(0, area.find_first_not_of(' '));
      area.erase(area.find_last_not_of(' ') + 1);
      if (area.empty()) continue;
      if (++k > AREAS_PER_GROUP) {
        *error = "more than " + std::to_string(AREAS_PER_GROUP) + " areas for " + name;
        return false;
      }
      (*out)[sideWord + word + std::to_string(k)] = area;
    }
  }
  return true;
}

// 'JobOpt_CheckAreas()' - Parse each custom-areas text once.
bool JobOpt_CheckAreas(const TCardValues& values, std::string* error) {
  for (int side = 0; side < 2; ++side) {
    std::string name = side == 0 ? "brellian-front-custom-areas" : "brellian-back-custom-areas";
    auto it = values.find(name);
    std::map<std::string, std::string> areas;
    std::string why;
    if (it != values.end() && !JobOpt_ParseAreas(it->second, side, &areas, &why)) {
      *error = name + " cannot be used: " + why + " (at most 5 areas in each group)";
      return false;
    }
  }
  return true;
}

// 'JobOpt_FilterOptions()' - Installed options first, then the card options.
std::string JobOpt_FilterOptions(const TAccessories& acc, const TCardValues& values) {
  auto inst = [](bool on) { return on ? "Installed" : "NotInstalled"; };
  std::string s = "ribbonType=" + acc.ribbonType + " flipTurn=" + inst(acc.flipTurn) + " laminator=" +
                  inst(acc.laminator) + " magEncoder=" + inst(acc.magEncoder) + " icEncoder=" + inst(acc.icEncoder) +
                  " icEncoderContactless=" + inst(acc.icEncoderContactless);
  // The black rendering of the shipped PPDs: pure black kept solid beside
  // grey and colour.  No card attribute chooses it yet.
  s += " frontBlackMode=SolidBlack backBlackMode=SolidBlack";
  for (const TVendorAttr& a : Vendor_Table()) {
    auto it = values.find(a.name);
    if (it == values.end()) continue;
    const std::string& v = it->second;
    if (a.kind == VENDOR_CARRIER) {
      continue;  // its options are in values under their own names
    } else if (a.kind == VENDOR_KEYWORD) {
      s += " " + a.ppdKeyword + "=" + Vendor_FindChoice(a, v)->ppdChoice;
    } else if (a.kind == VENDOR_BOOLEAN) {
      s += " " + a.ppdKeyword + "=" + (v == "true" ? "Yes" : "No");
    } else if (a.ppdKeyword.empty()) {
      std::map<std::string, std::string> areas;
      std::string error;
      if (JobOpt_ParseAreas(v, a.side, &areas, &error))
        for (const auto& kv : areas) s += " " + JobOpt_Quote(kv.first, "Custom." + kv.second);
    } else if (!v.empty()) {
      s += " " + JobOpt_Quote(a.ppdKeyword, "Custom." + v);
    }
  }
  return s;
}

// 'JobOpt_PagesPerSide()' - Count the panel pages of a side.
int JobOpt_PagesPerSide(const TCardValues& values, int side) {
  std::string p = side == 0 ? "brellian-front-" : "brellian-back-";
  auto get = [&](const std::string& n) {
    auto it = values.find(p + n);
    return it == values.end() ? std::string() : it->second;
  };
  int pages = 1;
  if (get("ribbon") == "color-k" && (get("resin") == "page" || get("resin").empty())) pages++;
  if (get("uv") == "page") pages++;
  if (get("overlay") == "page") pages++;
  return pages;
}
