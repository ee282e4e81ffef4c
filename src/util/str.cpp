// In-place string helpers.
// Copyright 2026 The rastertobrellian authors.
#include "util/str.h"

#include <cstring>

static char Str_LowerChar(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

void Str_ToLower(char* s) {
  if (!s) return;
  for (; *s; ++s) *s = Str_LowerChar(*s);
}

void Str_ToLower(std::string& s) {
  for (char& c : s) c = Str_LowerChar(c);
}

void Str_TrimSpaces(char* s) {
  if (!s) return;
  size_t len = strlen(s);
  while (len > 0 && s[len - 1] == ' ') s[--len] = '\0';
  size_t start = 0;
  while (s[start] == ' ') ++start;
  if (start > 0) memmove(s, s + start, len - start + 1);
}

void Str_StripEOL(char* s) {
  if (!s) return;
  size_t len = strlen(s);
  while (len > 0 && (s[len - 1] == '\r' || s[len - 1] == '\n')) s[--len] = '\0';
}

bool Str_EqualNoCase(const char* a, const char* b) {
  if (!a || !b) return false;
  for (; *a && *b; ++a, ++b)
    if (Str_LowerChar(*a) != Str_LowerChar(*b)) return false;
  return *a == *b;
}

void Str_CopyBounded(char* dst, const char* src, size_t size) {
  if (size == 0) return;
  size_t n = src ? strnlen(src, size - 1) : 0;
  if (n) memcpy(dst, src, n);
  dst[n] = '\0';
}
