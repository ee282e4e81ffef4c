// Help texts that name the models, written from the model table.
// Copyright 2026 The rastertobrellian authors.
#include "status/model_text.h"

#include <cctype>
#include <vector>

#include "status/models.h"

namespace {

// 'Model_Join()' - items joined by ", ", the last two by " last " (plain
// ", " when last is null).
std::string Model_Join(const std::vector<std::string>& items, const char* last) {
  std::string out;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) out += (last && i + 1 == items.size()) ? std::string(" ") + last + " " : std::string(", ");
    out += items[i];
  }
  return out;
}

// 'Model_Column()' - One field of every model, in table order.
std::vector<std::string> Model_Column(std::string (*field)(const TModelInfo&)) {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  std::vector<std::string> out;
  for (int32_t i = 0; i < count; ++i) out.push_back(field(models[i]));
  return out;
}

std::string Model_Id(const TModelInfo& m) { return std::to_string(m.id); }
std::string Model_Name(const TModelInfo& m) { return m.name; }
std::string Model_Driver(const TModelInfo& m) { return m.driverName; }
std::string Model_Ppd(const TModelInfo& m) { return m.ppdName; }

// 'Model_PanelSizes()' - Each panel size and resolution with the models
// that have it, in table order.
std::string Model_PanelSizes() {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  std::vector<std::string> groups;
  std::vector<bool> done(static_cast<size_t>(count), false);
  for (int32_t i = 0; i < count; ++i) {
    if (done[i]) continue;
    std::vector<std::string> ids;
    for (int32_t j = i; j < count; ++j) {
      const TModelInfo& a = models[i];
      const TModelInfo& b = models[j];
      if (a.panelWidth != b.panelWidth || a.panelHeight != b.panelHeight || a.dpi != b.dpi) continue;
      done[j] = true;
      ids.push_back(std::to_string(b.id));
    }
    groups.push_back(std::to_string(models[i].panelWidth) + " x " + std::to_string(models[i].panelHeight) +
                     " dots at " + std::to_string(models[i].dpi) + " dpi for model" + (ids.size() > 1 ? "s " : " ") +
                     Model_Join(ids, "and"));
  }
  return Model_Join(groups, nullptr);
}

// 'Model_Token()' - What a token (without its braces) stands for; false
// for a word that is no token.
bool Model_Token(const std::string& token, std::string* value) {
  const TModelInfo& def = Model_Default();
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  if (token == "ids") *value = Model_Join(Model_Column(Model_Id), nullptr);
  else if (token == "ids-and") *value = Model_Join(Model_Column(Model_Id), "and");
  else if (token == "ids-or") *value = Model_Join(Model_Column(Model_Id), "or");
  else if (token == "names-and") *value = Model_Join(Model_Column(Model_Name), "and");
  else if (token == "names-or") *value = Model_Join(Model_Column(Model_Name), "or");
  else if (token == "drivers") *value = Model_Join(Model_Column(Model_Driver), nullptr);
  else if (token == "drivers-or") *value = Model_Join(Model_Column(Model_Driver), "or");
  else if (token == "ppds") *value = Model_Join(Model_Column(Model_Ppd), nullptr);
  else if (token == "default-id") *value = std::to_string(def.id);
  else if (token == "default-name") *value = def.name;
  else if (token == "default-name-lower") {
    *value = def.name;
    for (char& c : *value) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  }
  else if (token == "default-ppd") *value = def.ppdName;
  else if (token == "first-id") *value = std::to_string(models[0].id);
  else if (token == "panel-sizes") *value = Model_PanelSizes();
  else return false;
  return true;
}

}  // namespace

std::string Model_Expand(const std::string& text) {
  std::string out;
  size_t at = 0;
  while (at < text.size()) {
    size_t open = text.find('{', at);
    size_t close = open == std::string::npos ? std::string::npos : text.find('}', open);
    std::string value;
    if (close == std::string::npos) {
      out += text.substr(at);
      break;
    }
    out += text.substr(at, open - at);
    if (Model_Token(text.substr(open + 1, close - open - 1), &value)) {
      out += value;
      at = close + 1;
    } else {
      out += '{';
      at = open + 1;
    }
  }
  return out;
}
