// Replacing a file so that readers see either the old or the new content.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// 'Tool_ReplaceFile()' - Write bytes to a new temporary file in the
// directory of path (named ".<file name>.XXXXXX"), flush it to disk, give
// it mode, and rename it over path; then flush the directory.  A symbolic
// link or anything but a regular file at path is refused.  On any failure
// the temporary file is removed, path is left as it was, and *error (when
// given) says what failed.  While the temporary file exists, SIGTERM,
// SIGINT and SIGHUP remove it before the process ends.
//
// In a test build (BRELLIAN_TOOL_FAULTS defined) the environment variable
// BRELLIAN_TOOL_FAULT makes the step before the rename fail on purpose:
// "rename" makes the rename fail with EIO, "term" sends the process SIGTERM
// just before the rename.  Other builds, the installed tools among them,
// have no such hook.
bool Tool_ReplaceFile(const std::string& path, const std::string& bytes, unsigned mode,
                      std::string* error);
