// The form of a request that may carry an uploaded file: read into memory, never from a path.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <cstddef>
#include <string>

#include "web_multipart.h"

// 'Upload_Limit()' - A size limit as people read it: "2 MiB", "64 KiB".
std::string Upload_Limit(size_t cap);

// 'Upload_ReadForm()' - The form of this request: a multipart/form-data
// body is read by Multipart_Read() (file parts of at most fileCap bytes,
// kept in memory); any other body by PAPPL's papplClientGetForm(), which
// carries no files.  A file therefore comes only from a file part of this
// request's own body, never from a path or name a client typed, and no
// file of the server is opened or removed.  Call it once, before anything
// else reads the body; free with Multipart_Free().
void Upload_ReadForm(pappl_client_t* client, size_t fileCap, TMultipartForm* form);

// 'Upload_File()' - The bytes of the file part field of form, at most cap
// of them (cap itself included).  False with *error, nothing in *bytes:
// "No file was uploaded." or "The file is larger than the limit of ...".
bool Upload_File(const TMultipartForm& form, const char* field, size_t cap, std::string* bytes, std::string* error);
