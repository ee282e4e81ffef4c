// The form of a request that may carry an uploaded file: read into memory, never from a path.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <cstddef>
#include <string>

#include "app/web_multipart.h"

// 'Web_UploadLimit()' - A size limit as people read it: "2 MiB", "64 KiB".
std::string Web_UploadLimit(size_t cap);

// 'Web_UploadReadForm()' - The form of this request: a multipart/form-data
// body is read by Web_MultipartRead() (file parts of at most fileCap bytes,
// kept in memory); any other body by PAPPL's papplClientGetForm(), which
// carries no files.  A file therefore comes only from a file part of this
// request's own body, never from a path or name a client typed, and no
// file of the server is opened or removed.  Call it once, before anything
// else reads the body; free with Web_MultipartFree().
void Web_UploadReadForm(pappl_client_t* client, size_t fileCap, TMultipartForm* form);

// 'Web_UploadFile()' - The bytes of the file part field of form, at most cap
// of them (cap itself included).  False with *error, nothing in *bytes:
// "No file was uploaded." or "The file is larger than the limit of ...".
bool Web_UploadFile(const TMultipartForm& form, const char* field, size_t cap, std::string* bytes, std::string* error);
