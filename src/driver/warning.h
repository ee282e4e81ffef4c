// WARNING lines for the spooler: what a job asked for and did not get.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>

// Longest warning text written (the spooler keeps about 1 KB of a status
// message); a longer text is cut.
constexpr size_t WARN_TEXT_BYTES = 512;

// 'Warn_Write()' - Write "WARNING: <text>\n" to standard error as one write,
// text formatted with printf rules.  Control characters in the text (which
// job options and file names may carry) become '?', so that a warning is
// always exactly one line and can't pose as another message.  Never goes
// through the log.
void Warn_Write(const char* format, ...) __attribute__((format(printf, 1, 2)));
