// Whole-file output and input for the tools.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdio>
#include <string>

// 'Tool_WriteFile()' - Write bytes to the file at path, created with mode
// 0644 or replaced; a symbolic link or special file there is refused.
// False on any failure.
bool Tool_WriteFile(const std::string& path, const std::string& bytes);

// 'Tool_WriteAll()' - Write bytes to an open stream and flush it.
bool Tool_WriteAll(FILE* stream, const std::string& bytes);

// 'Tool_MakeDir()' - Make the directory dir (mode 0755) unless it exists;
// a path that is not a directory (a symbolic link included) is refused.
// False with *error ("cannot create DIR: reason" or "DIR is not a
// directory").
bool Tool_MakeDir(const std::string& dir, std::string* error);

// 'Tool_ReadAll()' - Read a stream to its end into *out, at most maxBytes
// bytes.  False on a read error or when the stream holds more (errno
// EFBIG).
bool Tool_ReadAll(FILE* stream, size_t maxBytes, std::string* out);
