// A multipart/form-data request body read by the application itself, into memory.
// Copyright 2026 The rastertobrellian authors.
#include "web_multipart.h"

#include <strings.h>

namespace {

// 'Multipart_Param()' - The value of a parameter (boundary=, name=,
// filename=) in a header line, quotes removed; "" when absent.
std::string Multipart_Param(const std::string& line, const std::string& key, bool* present = nullptr) {
  size_t pos = 0;
  while ((pos = line.find(key + "=", pos)) != std::string::npos) {
    if (pos == 0 || line[pos - 1] == ' ' || line[pos - 1] == ';') break;
    pos += key.size();
  }
  if (present) *present = pos != std::string::npos;
  if (pos == std::string::npos) return "";
  pos += key.size() + 1;
  if (pos < line.size() && line[pos] == '"') {
    size_t end = line.find('"', pos + 1);
    return line.substr(pos + 1, end == std::string::npos ? std::string::npos : end - pos - 1);
  }
  size_t end = line.find_first_of("; \r\n", pos);
  return line.substr(pos, end == std::string::npos ? std::string::npos : end - pos);
}

// 'Multipart_Body()' - Read the whole body; false (body dropped) when it is
// larger than limit.
bool Multipart_Body(http_t* http, size_t limit, std::string* body) {
  char buffer[65536];
  bool fits = true;
  ssize_t n;
  while ((n = httpRead2(http, buffer, sizeof(buffer))) > 0) {
    if (fits && body->size() + static_cast<size_t>(n) <= limit) {
      body->append(buffer, static_cast<size_t>(n));
    } else {
      fits = false;
      body->clear();
    }
  }
  return fits;
}

// 'Multipart_Part()' - One part: its headers and its bytes.
void Multipart_Part(const std::string& part, size_t fileCap, TMultipartForm* form) {
  size_t split = part.find("\r\n\r\n");
  if (split == std::string::npos) return;
  std::string headers = part.substr(0, split + 2);
  std::string data = part.substr(split + 4);
  std::string disposition;
  for (size_t pos = 0; pos < headers.size();) {
    size_t end = headers.find("\r\n", pos);
    std::string line = headers.substr(pos, end - pos);
    if (strncasecmp(line.c_str(), "Content-Disposition:", 20) == 0) disposition = line;
    pos = end + 2;
  }
  std::string name = Multipart_Param(disposition, "name");
  if (name.empty()) return;
  bool isFile = false;
  std::string filename = Multipart_Param(disposition, "filename", &isFile);
  if (!isFile) {
    form->numFields = cupsAddOption(name.c_str(), data.c_str(), form->numFields, &form->fields);
  } else if (data.size() > fileCap) {
    form->tooLarge = true;
  } else if (!filename.empty() || !data.empty()) {
    form->files[name] = data;
  }
}

}  // namespace

// 'Multipart_Read()' - Body into memory, then parsed.
bool Multipart_Read(pappl_client_t* client, const std::string& contentType, size_t fileCap, TMultipartForm* form) {
  if (strncasecmp(contentType.c_str(), "multipart/form-data", 19) != 0 ||
      Multipart_Param(contentType, "boundary").empty())
    return false;
  std::string body;
  if (!Multipart_Body(papplClientGetHTTP(client), fileCap + MULTIPART_FIELD_ROOM, &body)) {
    form->tooLarge = true;
    return true;
  }
  return Multipart_Parse(body, contentType, fileCap, form);
}

// 'Multipart_Parse()' - Split on the boundary.
bool Multipart_Parse(const std::string& body, const std::string& contentType, size_t fileCap, TMultipartForm* form) {
  std::string boundary = Multipart_Param(contentType, "boundary");
  if (strncasecmp(contentType.c_str(), "multipart/form-data", 19) != 0 || boundary.empty()) return false;
  std::string delimiter = "--" + boundary;
  size_t pos = body.find(delimiter);
  while (pos != std::string::npos) {
    pos += delimiter.size();
    if (body.compare(pos, 2, "--") == 0) break;  // the closing delimiter
    if (body.compare(pos, 2, "\r\n") == 0) pos += 2;
    size_t next = body.find("\r\n" + delimiter, pos);
    if (next == std::string::npos) break;
    Multipart_Part(body.substr(pos, next - pos), fileCap, form);
    pos = next + 2;
  }
  return true;
}

// 'Multipart_Free()' - The text fields.
void Multipart_Free(TMultipartForm* form) {
  cupsFreeOptions(form->numFields, form->fields);
  form->numFields = 0;
  form->fields = nullptr;
  form->files.clear();
}
