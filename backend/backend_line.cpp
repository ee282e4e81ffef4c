// One device line of a CUPS backend's discovery output, parsed.
// Copyright 2026 The rastertobrellian authors.
#include "backend/backend_line.h"

namespace {

// 'Line_SkipSpaces()' - Index of the first non-blank at or after pos.
size_t Line_SkipSpaces(const std::string& line, size_t pos) {
  while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) ++pos;
  return pos;
}

// 'Line_Word()' - The blank-delimited word at *pos; *pos moves behind it.
std::string Line_Word(const std::string& line, size_t* pos) {
  size_t start = Line_SkipSpaces(line, *pos);
  size_t end = start;
  while (end < line.size() && line[end] != ' ' && line[end] != '\t' && line[end] != '\n' &&
         line[end] != '\r')
    ++end;
  *pos = end;
  return line.substr(start, end - start);
}

// 'Line_Quoted()' - The double-quoted field at *pos (backslash quotes the
// next character), or a bare word; *pos moves behind it.
std::string Line_Quoted(const std::string& line, size_t* pos) {
  size_t p = Line_SkipSpaces(line, *pos);
  if (p >= line.size() || line[p] != '"') return Line_Word(line, pos);
  std::string text;
  for (++p; p < line.size() && line[p] != '"'; ++p) {
    if (line[p] == '\\' && p + 1 < line.size()) ++p;
    text += line[p];
  }
  *pos = p < line.size() ? p + 1 : p;
  return text;
}

}  // namespace

bool Backend_ParseLine(const std::string& line, TBackendDevice* device) {
  size_t pos = 0;
  TBackendDevice d;
  d.deviceClass = Line_Word(line, &pos);
  d.uri = Line_Word(line, &pos);
  if (d.deviceClass.empty() || d.uri.empty()) return false;
  d.makeModel = Line_Quoted(line, &pos);
  d.info = Line_Quoted(line, &pos);
  d.deviceId = Line_Quoted(line, &pos);
  d.location = Line_Quoted(line, &pos);
  *device = d;
  return true;
}

std::string Backend_UriQueryValue(const std::string& uri, const std::string& name) {
  size_t query = uri.find('?');
  if (query == std::string::npos) return std::string();
  size_t pos = query + 1;
  while (pos < uri.size()) {
    size_t end = uri.find('&', pos);
    if (end == std::string::npos) end = uri.size();
    std::string item = uri.substr(pos, end - pos);
    if (item.compare(0, name.size() + 1, name + "=") == 0) return item.substr(name.size() + 1);
    pos = end + 1;
  }
  return std::string();
}
