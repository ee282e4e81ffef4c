// The form of a request that may carry an uploaded file: read into memory, never from a path.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_upload.h"

#include <strings.h>

// 'Web_UploadLimit()' - MiB or KiB.
std::string Web_UploadLimit(size_t cap) {
  if (cap % (1024u * 1024u) == 0) return std::to_string(cap / (1024u * 1024u)) + " MiB";
  return std::to_string(cap / 1024u) + " KiB";
}

// 'Web_UploadReadForm()' - Multipart by ourselves, the rest by PAPPL.
void Web_UploadReadForm(pappl_client_t* client, size_t fileCap, TMultipartForm* form) {
  http_t* http = papplClientGetHTTP(client);
  const char* type = http ? httpGetField(http, HTTP_FIELD_CONTENT_TYPE) : nullptr;
  if (type && strncasecmp(type, "multipart/form-data", 19) == 0 && Web_MultipartRead(client, type, fileCap, form)) return;
  form->numFields = papplClientGetForm(client, &form->fields);
}

// 'Web_UploadFile()' - One file part, within its own limit.
bool Web_UploadFile(const TMultipartForm& form, const char* field, size_t cap, std::string* bytes, std::string* error) {
  bytes->clear();
  std::string tooLarge = "The file is larger than the limit of " + Web_UploadLimit(cap) + ".";
  auto it = form.files.find(field);
  if (it == form.files.end()) {
    *error = form.tooLarge ? tooLarge : "No file was uploaded.";
    return false;
  }
  if (it->second.size() > cap) {
    *error = tooLarge;
    return false;
  }
  *bytes = it->second;
  return true;
}
