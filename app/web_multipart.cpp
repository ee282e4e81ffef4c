// A multipart/form-data request body read by the application itself, into memory.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_multipart.h"

#include <strings.h>

namespace {

// 'Web_MultipartParam()' - The value of a parameter (boundary=, name=,
// filename=) in a header line, quotes removed; "" when absent.
std::string Web_MultipartParam(const std::string& line, const std::string& key, bool* present = nullptr) {
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

// 'Web_MultipartBody()' - Read the whole body; false (body dropped) when it is
// larger than limit.
bool Web_MultipartBody(http_t* http, size_t limit, std::string* body) {
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

// 'Web_MultipartPart()' - One part: its headers and its bytes.
void Web_MultipartPart(const std::string& part, size_t fileCap, TMultipartForm* form) {
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
  std::string name = Web_MultipartParam(disposition, "name");
  if (name.empty()) return;
  bool isFile = false;
  std::string filename = Web_MultipartParam(disposition, "filename", &isFile);
  if (!isFile) {
    form->numFields = cupsAddOption(name.c_str(), data.c_str(), form->numFields, &form->fields);
  } else if (data.size() > fileCap) {
    form->tooLarge = true;
  } else if (!filename.empty() || !data.empty()) {
    form->files[name] = data;
  }
}

}  // namespace

// 'Web_MultipartRead()' - Body into memory, then parsed.
bool Web_MultipartRead(pappl_client_t* client, const std::string& contentType, size_t fileCap, TMultipartForm* form) {
  if (strncasecmp(contentType.c_str(), "multipart/form-data", 19) != 0 ||
      Web_MultipartParam(contentType, "boundary").empty())
    return false;
  std::string body;
  if (!Web_MultipartBody(papplClientGetHTTP(client), fileCap + WEB_MULTIPART_FIELD_ROOM, &body)) {
    form->tooLarge = true;
    return true;
  }
  return Web_MultipartParse(body, contentType, fileCap, form);
}

// 'Web_MultipartParse()' - Split on the boundary.
bool Web_MultipartParse(const std::string& body, const std::string& contentType, size_t fileCap, TMultipartForm* form) {
  std::string boundary = Web_MultipartParam(contentType, "boundary");
  if (strncasecmp(contentType.c_str(), "multipart/form-data", 19) != 0 || boundary.empty()) return false;
  std::string delimiter = "--" + boundary;
  size_t pos = body.find(delimiter);
  while (pos != std::string::npos) {
    pos += delimiter.size();
    if (body.compare(pos, 2, "--") == 0) break;  // the closing delimiter
    if (body.compare(pos, 2, "\r\n") == 0) pos += 2;
    size_t next = body.find("\r\n" + delimiter, pos);
    if (next == std::string::npos) break;
    Web_MultipartPart(body.substr(pos, next - pos), fileCap, form);
    pos = next + 2;
  }
  return true;
}

// 'Web_MultipartFree()' - The text fields.
void Web_MultipartFree(TMultipartForm* form) {
  cupsFreeOptions(form->numFields, form->fields);
  form->numFields = 0;
  form->fields = nullptr;
  form->files.clear();
}
