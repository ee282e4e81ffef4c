// Files uploaded through a web form: taken only from the server's own temporary files.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <cstddef>
#include <string>

// 'Upload_Read()' - Read the file that a multipart form part of this
// request carried: value is what papplClientGetForm() gave for the part.
// PAPPL writes each uploaded file part to a new file in its temporary
// directory and gives its path as the value, but a client can send any
// text under the same name (a url-encoded form, or a plain text part), so
// the value is used only when all of these hold:
//   - the request is multipart/form-data;
//   - the path is a direct child of PAPPL's temporary directory and its
//     name has the form of PAPPL's temporary files (hexadecimal digits);
//   - it opens without following a link and is a regular file with one
//     link, owned by the server's own user.
// The file is never removed here: PAPPL removes its temporary files when
// the request ends.  True with the bytes (at most cap); false with *error
// ("No file was uploaded." or the size or read problem) and nothing read.
bool Upload_Read(pappl_client_t* client, const std::string& value, size_t cap, std::string* bytes,
                 std::string* error);

// 'Upload_IsTempName()' - The path is dir + "/" + a name of hexadecimal
// digits only (what PAPPL's temporary files are called); dir has no
// trailing slash.
bool Upload_IsTempName(const std::string& path, const std::string& dir);
