// Warn_Write: the one writer of WARNING lines for the spooler.
// Copyright 2026 The rastertobrellian authors.
#include "driver/warning.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

// 'Warn_Write()' - One sanitised "WARNING: " line on standard error.
void Warn_Write(const char* format, ...) {
  static const char kPrefix[] = "WARNING: ";
  char line[sizeof kPrefix + WARN_TEXT_BYTES + 1];
  memcpy(line, kPrefix, sizeof kPrefix - 1);
  char* text = line + sizeof kPrefix - 1;
  va_list args;
  va_start(args, format);
  int n = vsnprintf(text, WARN_TEXT_BYTES + 1, format, args);
  va_end(args);
  if (n < 0) return;
  size_t length = strlen(text);
  for (size_t i = 0; i < length; ++i)
    if (static_cast<unsigned char>(text[i]) < 0x20 || text[i] == 0x7F) text[i] = '?';
  text[length] = '\n';
  size_t total = sizeof kPrefix - 1 + length + 1;
  // Standard error is unbuffered in the filter: one call keeps the line whole.
  fwrite(line, 1, total, stderr);
}
