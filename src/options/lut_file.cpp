// Colour lookup table files: strict parsing of the ".csv" text format.
// Copyright 2026 The rastertobrellian authors.
#include "options/lut_file.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <strings.h>

#include "options/conf_file.h"
#include "util/safe_file.h"

namespace {

const char* const kLutColumns[4] = {"level", "red", "green", "blue"};

bool Lut_IsBlank(char c) { return c == ' ' || c == '\t'; }

// 'Lut_Trim()' - The field [begin, end) without surrounding blanks.
void Lut_Trim(const char** begin, const char** end) {
  while (*begin < *end && Lut_IsBlank(**begin)) ++*begin;
  while (*end > *begin && Lut_IsBlank((*end)[-1])) --*end;
}

// 'Lut_SplitFields()' - Split a line into exactly four comma-separated,
// trimmed fields; false for any other count.
bool Lut_SplitFields(const char* line, const char* end, const char* fields[4][2]) {
  int n = 0;
  const char* start = line;
  for (const char* p = line;; ++p) {
    if (p == end || *p == ',') {
      if (n == 4) return false;
      fields[n][0] = start;
      fields[n][1] = p;
      Lut_Trim(&fields[n][0], &fields[n][1]);
      ++n;
      if (p == end) break;
      start = p + 1;
    }
  }
  return n == 4;
}

// 'Lut_Number()' - A field of 1-3 decimal digits with a value of 0..255.
bool Lut_Number(const char* begin, const char* end, int32_t* value) {
  if (begin == end || end - begin > 3) return false;
  int32_t v = 0;
  for (const char* p = begin; p < end; ++p) {
    if (*p < '0' || *p > '9') return false;
    v = v * 10 + (*p - '0');
  }
  if (v > 255) return false;
  *value = v;
  return true;
}

bool Lut_Fail(TLutError* error, int32_t line, const char* reason) {
  if (error) *error = {line, reason};
  return false;
}

}  // namespace

bool Lut_Parse(const char* text, size_t length, uint8_t table[3][LUT_ENTRIES], TLutError* error) {
  if (!text) return Lut_Fail(error, 0, "no data");
  if (memchr(text, '\0', length)) return Lut_Fail(error, 0, "binary data");
  uint8_t result[3][LUT_ENTRIES];
  const char* p = text;
  const char* end = text + length;
  if (length >= 3 && memcmp(p, "\xEF\xBB\xBF", 3) == 0) p += 3;  // UTF-8 mark
  bool header = false;
  int32_t rows = 0;
  for (int32_t lineNo = 1; p < end; ++lineNo) {
    const char* eol = static_cast<const char*>(memchr(p, '\n', end - p));
    const char* lineEnd = eol ? eol : end;
    const char* next = eol ? eol + 1 : end;
    if (lineEnd > p && lineEnd[-1] == '\r') --lineEnd;
    const char* b = p;
    const char* e = lineEnd;
    p = next;
    Lut_Trim(&b, &e);
    if (b == e || *b == '#') continue;
    const char* fields[4][2];
    if (!Lut_SplitFields(b, e, fields)) return Lut_Fail(error, lineNo, "expected four fields");
    if (!header) {
      for (int i = 0; i < 4; ++i) {
        size_t n = fields[i][1] - fields[i][0];
        if (n != strlen(kLutColumns[i]) || strncasecmp(fields[i][0], kLutColumns[i], n) != 0)
          return Lut_Fail(error, lineNo, "expected header level,red,green,blue");
      }
      header = true;
      continue;
    }
    if (rows == LUT_ENTRIES) return Lut_Fail(error, lineNo, "more than 256 rows");
    int32_t v[4];
    for (int i = 0; i < 4; ++i)
      if (!Lut_Number(fields[i][0], fields[i][1], &v[i]))
        return Lut_Fail(error, lineNo, "value is not a number from 0 to 255");
    if (v[0] != rows) return Lut_Fail(error, lineNo, "levels must run from 0 to 255 in order");
    for (int c = 0; c < 3; ++c) result[c][rows] = static_cast<uint8_t>(v[c + 1]);
    ++rows;
  }
  if (!header) return Lut_Fail(error, 0, "no header line");
  if (rows != LUT_ENTRIES) return Lut_Fail(error, 0, "fewer than 256 rows");
  memcpy(table, result, sizeof result);
  return true;
}

namespace {

// 'Lut_FromRead()' - The result of a LUT load whose read returned rc with
// the file's text.
int32_t Lut_FromRead(int rc, const std::string& text, uint8_t table[3][LUT_ENTRIES],
                     TLutError* error) {
  if (rc != 0) {
    if (errno != EFBIG) return -1;
    Lut_Fail(error, 0, "file larger than 64 KiB");
    return -2;
  }
  return Lut_Parse(text.data(), text.size(), table, error) ? 0 : -2;
}

}  // namespace

int32_t Lut_Load(const char* path, uint8_t table[3][LUT_ENTRIES], TLutError* error) {
  std::string text;
  int rc = File_ReadCapped(path, LUT_FILE_MAX, &text);
  return Lut_FromRead(rc, text, table, error);
}

int32_t Lut_LoadConfig(const char* path, uint8_t table[3][LUT_ENTRIES], TLutError* error) {
  std::string text;
  int rc = Conf_ReadFile(path, LUT_FILE_MAX, &text);
  return Lut_FromRead(rc, text, table, error);
}
