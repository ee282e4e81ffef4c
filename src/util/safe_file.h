// Opening files that other programs may have planted: no symbolic links, no
// FIFOs or devices, no descriptor leaked to child processes.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

// Mode of every directory the filter creates (settings and log
// directories): 0777, which under the filter's umask 0 is the mode the
// directory gets.  Such a directory is one any user can plant files in, so
// the trust rule of the configuration tree refuses what lies under it and
// says so with a WARNING naming the directory and the fix; the package and
// the preset tools make the tree with TOOL_DIRECTORY_MODE instead.
constexpr unsigned FILE_DIRECTORY_MODE = 0777;

// Mode of the directories the package and the preset tools create:
// writable by their owner only, so that the filter trusts what is in them.
constexpr unsigned TOOL_DIRECTORY_MODE = 0755;

// 'File_OpenRegular()' - open(2) path with O_NOFOLLOW, O_NONBLOCK and
// O_CLOEXEC added to flags, then check that it is a regular file.  Returns
// the descriptor, or -1 with errno set (ELOOP for a symbolic link, EINVAL
// for anything that is not a regular file).  The non-blocking flag, which
// keeps the open from waiting on a FIFO, is left on; it changes nothing for
// a regular file.
int File_OpenRegular(const char* path, int flags, unsigned mode = 0666);

// 'File_FOpenRegular()' - The same, wrapped in a stdio stream.  mode is one
// of "rb", "r", "wb", "w", "ab", "a", "a+".  Returns null with errno set.
FILE* File_FOpenRegular(const char* path, const char* mode);

// 'File_ReadAll()' - Read fd to its end into out, at most maxBytes bytes,
// and close it.  Returns 0, or -1 with errno set (EFBIG when the file is
// larger than maxBytes; out is then left empty).
int File_ReadAll(int fd, size_t maxBytes, std::string* out);

// 'File_ReadCapped()' - Read a whole regular file of at most maxBytes bytes
// into out.  Returns 0, or -1 with errno set (EFBIG when the file is larger
// than maxBytes; out is then left empty).
int File_ReadCapped(const char* path, size_t maxBytes, std::string* out);

// 'File_IsSafeName()' - True when name can be used as one file name inside a
// directory: not empty, at most maxLen bytes, no "/", no leading ".", no
// control characters.
bool File_IsSafeName(const char* name, size_t maxLen = 255);
