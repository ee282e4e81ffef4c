// A multipart/form-data request body read by the application itself, into memory.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <cstddef>
#include <map>
#include <string>

// What a multipart form carried: its text fields (as PAPPL's own form
// reader gives them, so that papplClientIsValidForm() can check the form
// token) and its file parts, by field name.
struct TMultipartForm {
  int numFields = 0;
  cups_option_t* fields = nullptr;          // freed by Web_MultipartFree()
  std::map<std::string, std::string> files;  // field name -> bytes
  bool tooLarge = false;                     // a file part, or the whole body, was over the limit
};

// Extra room for the text fields and part headers of a form, beyond its
// largest file.
constexpr size_t WEB_MULTIPART_FIELD_ROOM = 64u * 1024u;

// 'Web_MultipartRead()' - Read the body of a multipart/form-data request
// (content type contentType, taken before reading) whose file parts may
// hold at most fileCap bytes each.  PAPPL 1.3.1's own form reader ignores
// a body over 2 MiB, so a file of exactly 2 MiB could never arrive, and it
// hands file parts over as paths of temporary files; here the body is
// read into memory (at most fileCap + WEB_MULTIPART_FIELD_ROOM bytes; a
// larger body is read to its end and dropped, with tooLarge set), and a
// file exists only as the bytes of a part that names a file name.  False
// when the body is not a multipart form.
bool Web_MultipartRead(pappl_client_t* client, const std::string& contentType, size_t fileCap, TMultipartForm* form);

// 'Web_MultipartParse()' - The parts of a whole multipart body already read
// (Web_MultipartRead() calls it): text fields into form->fields, file parts
// of at most fileCap bytes into form->files, larger ones only counted in
// form->tooLarge.  False when contentType is not multipart/form-data with
// a boundary.
bool Web_MultipartParse(const std::string& body, const std::string& contentType, size_t fileCap, TMultipartForm* form);

// 'Web_MultipartFree()' - Free the text fields.
void Web_MultipartFree(TMultipartForm* form);
