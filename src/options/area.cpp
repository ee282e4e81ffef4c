// Area and size strings: four values with units into a rectangle in dots.
// Copyright 2026 The rastertobrellian authors.
#include "options/area.h"

#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "log/log.h"

namespace {

// Units of two letters, compared without regard to case.
const char* const kTwoLetterUnits[] = {"in", "cm", "mm", "px"};

bool Area_IsBlank(char c) { return c == ' ' || c == '\t'; }
bool Area_IsDigit(char c) { return c >= '0' && c <= '9'; }

const char* Area_SkipBlanks(const char* p) {
  while (Area_IsBlank(*p)) ++p;
  return p;
}

// 'Area_Append()' - Append n bytes to a token of length *len; false when
// the token would grow past AREA_TOKEN_MAX.
bool Area_Append(char* token, size_t* len, const char* src, size_t n) {
  if (*len + n > static_cast<size_t>(AREA_TOKEN_MAX)) return false;
  memcpy(token + *len, src, n);
  *len += n;
  token[*len] = '\0';
  return true;
}

// 'Area_TwoLetterUnit()' - True when p starts with a two-letter unit.
bool Area_TwoLetterUnit(const char* p) {
  for (const char* unit : kTwoLetterUnits)
    if (strncasecmp(p, unit, 2) == 0) return true;
  return false;
}

}  // namespace

// 'Area_SplitValues()' - Split "[custom.]v1 v2 v3 v4" into four tokens.  A
// value followed by another value gets the unit "px"; the last value keeps
// no unit at all.  Signs are skipped, not applied.
int32_t Area_SplitValues(const char* text, char tokens[4][AREA_TOKEN_MAX + 1]) {
  for (int i = 0; i < 4; ++i) tokens[i][0] = '\0';
  if (!text) return 0;
  const char* p = text;
  if (strncasecmp(p, "custom.", 7) == 0) p += 7;

  int32_t count = 0;
  bool ok = false;
  while (count < 4) {
    char* token = tokens[count];
    size_t len = 0;
    while (*p == '+' || *p == '-' || Area_IsBlank(*p)) ++p;
    if (!Area_IsDigit(*p) && *p != '.') break;
    bool dot = false;
    bool fits = true;
    while (fits && (Area_IsDigit(*p) || (*p == '.' && !dot))) {
      if (*p == '.') dot = true;
      fits = Area_Append(token, &len, p++, 1);
    }
    if (!fits) break;
    p = Area_SkipBlanks(p);
    if (*p == '\0') {  // last value, no unit
      ++count;
      ok = count == 4;
      break;
    }
    if (Area_IsDigit(*p) || *p == '.' || *p == '+' || *p == '-') {
      if (!Area_Append(token, &len, "px", 2)) break;
    } else if (*p == '"') {
      if (!Area_Append(token, &len, p, 1)) break;
      ++p;
    } else if (p[1] != '\0' && Area_TwoLetterUnit(p)) {
      if (!Area_Append(token, &len, p, 2)) break;
      p += 2;
    } else {
      break;
    }
    p = Area_SkipBlanks(p);
    ++count;
    if (*p == '\0') {
      ok = count == 4;
      break;
    }
  }
  if (!ok) {
    for (int i = 0; i < 4; ++i) tokens[i][0] = '\0';
    return 0;
  }
  return count;
}

// 'Area_ValueToDots()' - The token's leading decimal number in dots at dpi:
// "px" as is, "mm" and "cm" converted, anything else read as inches.  The
// result is rounded half up and clamped to the uint32 range, so that a huge
// value gives 4294967295 instead of an undefined conversion.
uint32_t Area_ValueToDots(const char* token, uint32_t dpi) {
  if (!token) return 0;
  const char* p = Area_SkipBlanks(token);
  char number[AREA_TOKEN_MAX + 1];
  size_t len = 0;
  bool dot = false;
  while (Area_IsDigit(*p) || *p == '.') {
    // Only the first '.' belongs to the number; the rest are skipped.
    if (*p == '.') {
      if (!dot && len < AREA_TOKEN_MAX) number[len++] = '.';
      dot = true;
    } else if (len < AREA_TOKEN_MAX) {
      number[len++] = *p;
    }
    ++p;
  }
  number[len] = '\0';
  double value = len ? strtod(number, nullptr) : 0.0;
  double dots;
  if (strncasecmp(p, "px", 2) == 0)
    dots = value;
  else if (strncasecmp(p, "mm", 2) == 0)
    dots = dpi * value / 25.4;
  else if (strncasecmp(p, "cm", 2) == 0)
    dots = dpi * value / 2.54;
  else
    dots = dpi * value;
  dots += 0.5;
  if (!(dots >= 0.0)) return 0;
  if (dots >= 4294967295.0) return 4294967295u;
  return static_cast<uint32_t>(dots);
}

// 'Area_Parse()' - Fill area from text at dpi; all zero on any error, and
// only a complete area is logged.
void Area_Parse(TArea* area, const char* text, uint32_t dpi) {
  if (!area) return;
  memset(area, 0, sizeof *area);
  char tokens[4][AREA_TOKEN_MAX + 1];
  Area_SplitValues(text, tokens);
  for (int i = 0; i < 4; ++i)
    if (tokens[i][0] == '\0') return;
  area->left = Area_ValueToDots(tokens[0], dpi);
  area->top = Area_ValueToDots(tokens[1], dpi);
  area->right = Area_ValueToDots(tokens[2], dpi);
  area->bottom = Area_ValueToDots(tokens[3], dpi);
  Log_Write(LOG_LOG, "Parse area: (%s)(%d) --> (%d,%d)(%d,%d)", text, static_cast<int>(dpi),
            static_cast<int>(area->left), static_cast<int>(area->top),
            static_cast<int>(area->right), static_cast<int>(area->bottom));
}

// 'Area_IsEmpty()' - True for a null area or one whose values are all zero.
bool Area_IsEmpty(const TArea* area) {
  return !area || (area->left == 0 && area->top == 0 && area->right == 0 && area->bottom == 0);
}

// 'Area_Contains()' - True when (x, y) lies inside the area read as
// exclusive edges; values are compared as signed numbers.
bool Area_Contains(int32_t x, int32_t y, const TArea* area) {
  if (Area_IsEmpty(area)) return false;
  return static_cast<int32_t>(area->left) <= x && x < static_cast<int32_t>(area->right) &&
         static_cast<int32_t>(area->top) <= y && y < static_cast<int32_t>(area->bottom);
}
