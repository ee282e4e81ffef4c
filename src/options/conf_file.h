// Reading the files of the configuration tree: settings, lookup tables and
// UV presets, refused with a warning when another user could have planted
// them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <string>

// 'Conf_OpenFile()' - File_OpenConfig on path; a refused file is logged at
// LOG_WARNING ("Conf_OpenFile --> file not trusted (<path>): <reason>") and
// reads as not found (errno ENOENT; ELOOP or EINVAL for a symbolic link or
// a non-regular file as the last component).  When a directory on its way
// was the cause, a WARNING line for the spooler (Warn_Write) also names the
// file, the directory and the command that fixes it.  Returns the
// descriptor or -1.
int Conf_OpenFile(const char* path);

// 'Conf_ReadFile()' - Conf_OpenFile, then the whole file of at most
// maxBytes bytes into out (EFBIG beyond).  Returns 0, or -1 with errno set.
int Conf_ReadFile(const char* path, size_t maxBytes, std::string* out);
