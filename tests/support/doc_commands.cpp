// Reading the shell commands out of the guides and checking job streams.
// Copyright 2026 The rastertobrellian authors.
#include "support/doc_commands.h"

#include <cstring>
#include <regex>
#include <sstream>

#include "imaging/stages.h"
#include "jobstream/stream_reader.h"
#include "options/area.h"

namespace {

bool StartsWith(const std::string& s, const std::string& prefix) { return s.compare(0, prefix.size(), prefix) == 0; }

std::string Trim(const std::string& s) {
  size_t a = s.find_first_not_of(" \t"), b = s.find_last_not_of(" \t");
  return a == std::string::npos ? std::string() : s.substr(a, b - a + 1);
}

// 'Unquote()' - A value without one level of surrounding quotes.
std::string Unquote(const std::string& v) {
  if (v.size() >= 2 && (v[0] == '\'' || v[0] == '"') && v.back() == v[0]) return v.substr(1, v.size() - 2);
  return v;
}

// 'Custom()' - The text of a custom choice, or "" when v is not one.
std::string Custom(const std::string& v) {
  return StartsWith(v, "Custom.") ? v.substr(7) : std::string();
}

std::string Get(const std::map<std::string, std::string>& o, const std::string& key) {
  auto it = o.find(key);
  return it == o.end() ? std::string() : it->second;
}

}  // namespace

std::vector<TDocBlock> Doc_ExtractBlocks(const std::string& markdown) {
  std::vector<TDocBlock> blocks;
  std::istringstream in(markdown);
  std::string line, skip, pending;
  int n = 0, pendingLine = 0;
  bool inBlock = false, inOther = false;
  std::regex marker("^<!-- doc-test: skip: (.+) -->$");
  std::smatch m;
  while (std::getline(in, line)) {
    ++n;
    std::string t = Trim(line);
    if (inOther) {
      if (StartsWith(t, "```")) inOther = false;
      continue;
    }
    if (!inBlock) {
      if (t == "```sh") {
        blocks.push_back({n, skip, {}});
        skip.clear();
        inBlock = true;
      } else if (StartsWith(t, "```")) {
        inOther = true;
        skip.clear();
      } else if (std::regex_match(t, m, marker)) {
        skip = m[1];
      } else if (!t.empty()) {
        skip.clear();
      }
      continue;
    }
    if (t == "```") {
      inBlock = false;
      continue;
    }
    if (pending.empty() && (t.empty() || t[0] == '#')) continue;
    if (pending.empty()) pendingLine = n;
    pending += line;
    if (!line.empty() && line.back() == '\\') {
      pending += "\n";
      continue;
    }
    blocks.back().commands.push_back({pendingLine, pending});
    pending.clear();
  }
  return blocks;
}

std::vector<std::string> Doc_SplitWords(const std::string& command) {
  std::vector<std::string> words;
  std::string word;
  bool have = false;
  for (size_t i = 0; i < command.size(); ++i) {
    char c = command[i];
    if (c == '\'') {
      size_t end = command.find('\'', i + 1);
      word += command.substr(i + 1, end - i - 1);
      i = end == std::string::npos ? command.size() : end;
      have = true;
    } else if (c == '"') {
      for (++i; i < command.size() && command[i] != '"'; ++i) {
        if (command[i] == '\\' && i + 1 < command.size() && strchr("\"\\$`", command[i + 1])) ++i;
        word += command[i];
      }
      have = true;
    } else if (c == '\\' && i + 1 < command.size()) {
      if (command[i + 1] != '\n') word += command[i + 1], have = true;
      ++i;
    } else if (c == ' ' || c == '\t' || c == '\n') {
      if (have) words.push_back(word);
      word.clear();
      have = false;
    } else if (c == '#' && !have) {
      break;
    } else {
      word += c;
      have = true;
    }
  }
  if (have) words.push_back(word);
  return words;
}

std::map<std::string, std::string> Doc_JobOptions(const std::vector<std::string>& words) {
  std::map<std::string, std::string> options;
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    if (words[i] != "-o") continue;
    const std::string& o = words[++i];
    size_t eq = o.find('=');
    if (eq != std::string::npos) options[o.substr(0, eq)] = Unquote(o.substr(eq + 1));
  }
  return options;
}

std::vector<std::string> Doc_CheckJob(const std::string& bytes, const std::map<std::string, std::string>& options) {
  std::vector<std::string> faults;
  TStreamCheck s;
  Stream_Read(bytes, &s);
  if (!s.complete) return {"the job stream is not complete: " + s.error};
  TStartJobFields job;
  Stream_DecodeStartJob(s.records.front(), &job);
  uint32_t dpi = job.printer == 1060 ? 600 : 300;
  const TStreamPanel* color = nullptr;
  const TStreamPanel* black = nullptr;
  for (const TStreamPanel& p : s.panels) {
    if (p.side == 0 && p.panelType == 0 && !color) color = &p;
    if (p.side == 0 && p.panelType == 1 && !black) black = &p;
  }
  std::string ribbon = Get(options, "frontRibbon");
  if (ribbon == "ColorK" && !(color && black)) faults.push_back("ColorK: no colour and black panel on the front");
  if (ribbon == "Monochrome" && (color || !black)) faults.push_back("Monochrome: the front is not black only");
  // Custom resin areas: every resin dot lies in one of the include areas.
  if (ribbon == "ColorK" && Get(options, "frontResin") == "CustomAreas" && black) {
    std::vector<TArea> areas;
    for (int k = 1; k <= 5; ++k) {
      std::string text = Custom(Get(options, "frontResinInclude" + std::to_string(k)));
      if (text.empty()) continue;
      TArea a;
      Area_Parse(&a, text.c_str(), dpi);
      if (Area_IsEmpty(&a)) faults.push_back("frontResinInclude" + std::to_string(k) + " is no area: " + text);
      areas.push_back(a);
    }
    size_t inside = 0, outside = 0;
    for (uint32_t y = 0; y < black->rows; ++y)
      for (uint32_t x = 0; x < black->width; ++x) {
        if (black->pixels[size_t(y) * black->width + x] != 255) continue;
        bool in = false;
        for (const TArea& a : areas) {
          int32_t x0, y0, x1, y1;
          Area_ToSpan(&a, black->width, black->height, &x0, &y0, &x1, &y1);
          in = in || (int32_t(x) >= x0 && int32_t(x) < x1 && int32_t(y) >= y0 && int32_t(y) < y1);
        }
        ++(in ? inside : outside);
      }
    if (inside == 0 || outside != 0)
      faults.push_back("custom resin areas: " + std::to_string(inside) + " resin dots inside, " +
                       std::to_string(outside) + " outside");
  }
  // Track data reaches the card's magnetic record whole.
  TMagTrackFields tracks[3];
  bool mag = false;
  for (const TStreamRecord& r : s.records) mag = mag || Stream_DecodeMagEncode(r, tracks);
  for (int t = 1; t <= 3; ++t) {
    std::string data = Custom(Get(options, "magEncodeData" + std::to_string(t)));
    if (data.empty()) continue;
    if (!mag || tracks[t - 1].length != data.size())
      faults.push_back("track " + std::to_string(t) + ": \"" + data + "\" did not reach the card whole");
  }
  std::string plugin = Custom(Get(options, "printerPlugin"));
  if (!plugin.empty() && job.plugin != plugin)
    faults.push_back("plug-in \"" + job.plugin + "\" instead of \"" + plugin + "\"");
  return faults;
}
