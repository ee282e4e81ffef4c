// Files no other user can plant: one link, a trusted owner, and for the
// configuration tree no link and no directory other users can write.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <string>
#include <sys/stat.h>

// 'File_IsTrustedOwner()' - True when uid is root or the process's
// effective user.
bool File_IsTrustedOwner(uid_t uid);

// 'File_CheckOwned()' - 0 when st shows exactly one link and a trusted
// owner; else EMLINK (more links) or EPERM (another owner), with the reason
// appended to *reason when reason is given.
int File_CheckOwned(const struct stat& st, const char* path, std::string* reason = nullptr);

// 'File_OpenOwned()' - File_OpenRegular, then File_CheckOwned on the open
// file.  Returns the descriptor, or -1 with errno set (ELOOP, EINVAL,
// EMLINK, EPERM, or the system's).  Used for the log file and the log
// configuration.
int File_OpenOwned(const char* path, int flags, unsigned mode = 0666);

// Why a directory on the way to a configuration file was not trusted.
enum TDirectoryProblem {
  DIR_PROBLEM_NONE = 0,   // the refusal (if any) concerns the file itself
  DIR_PROBLEM_WRITABLE,   // group or others may write in it
  DIR_PROBLEM_OWNER,      // owned by a user other than root or the filter's
  DIR_PROBLEM_LINK        // a symbolic link stands where the directory should
};

// The directory that made File_OpenConfig refuse a file, when one did.
struct TDirectoryRefusal {
  TDirectoryProblem problem = DIR_PROBLEM_NONE;
  std::string path;   // the directory (or the link standing for it)
};

// 'File_OpenConfig()' - Open a file of the configuration tree for reading,
// one path component at a time from BRELLIAN_SYSROOT (or "/") down: every
// directory is opened with O_NOFOLLOW | O_DIRECTORY and must be owned by
// root or the process's user and not be writable by group or others; the
// file must be a regular file with one link and a trusted owner.  Returns
// the descriptor, or -1 with errno set.  A refused file sets *refusal to
// the reason (it is cleared otherwise) and errno to ENOENT, so that it takes
// the not-found path, except a symbolic link or non-regular file as the
// last component, which keep ELOOP and EINVAL as File_OpenRegular gives.
// With directory given, a refusal caused by a directory on the way names
// that directory and its problem there (reset to DIR_PROBLEM_NONE first).
int File_OpenConfig(const char* path, std::string* refusal, TDirectoryRefusal* directory = nullptr);

// 'File_ReadConfig()' - File_OpenConfig, then read the whole file of at
// most maxBytes bytes into out (as File_ReadCapped).  Returns 0 or -1.
int File_ReadConfig(const char* path, size_t maxBytes, std::string* out, std::string* refusal);
