// Colour lookup table files: writing the ".csv" text format and starting tables.
// Copyright 2026 The rastertobrellian authors.
#include "options/lut_format.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr double kGammaMin = 0.1;
constexpr double kGammaMax = 10.0;

}  // namespace

// 'Lut_Format()' - Comment lines, header, then one row per level.
std::string Lut_Format(const uint8_t table[3][LUT_ENTRIES], const char* comment) {
  std::string out;
  for (const char* p = comment; p && *p;) {
    const char* eol = p;
    while (*eol && *eol != '\n') ++eol;
    out += "# ";
    out.append(p, eol);
    out += '\n';
    p = *eol ? eol + 1 : eol;
  }
  out += "level,red,green,blue\n";
  for (int i = 0; i < LUT_ENTRIES; ++i) {
    char row[32];
    snprintf(row, sizeof row, "%d,%u,%u,%u\n", i, table[0][i], table[1][i], table[2][i]);
    out += row;
  }
  return out;
}

// 'Lut_MakeIdentity()' - Entry i holds i.
void Lut_MakeIdentity(uint8_t table[3][LUT_ENTRIES]) {
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < LUT_ENTRIES; ++i) table[c][i] = static_cast<uint8_t>(i);
}

// 'Lut_MakeGamma()' - 255 x (i / 255) ^ (1 / gamma), rounded half up.
bool Lut_MakeGamma(const double gamma[3], uint8_t table[3][LUT_ENTRIES]) {
  for (int c = 0; c < 3; ++c)
    if (!std::isfinite(gamma[c]) || gamma[c] < kGammaMin || gamma[c] > kGammaMax) return false;
  for (int c = 0; c < 3; ++c) {
    for (int i = 0; i < LUT_ENTRIES; ++i) {
      double v = 255.0 * std::pow(i / 255.0, 1.0 / gamma[c]) + 0.5;
      table[c][i] = static_cast<uint8_t>(v >= 255.0 ? 255 : static_cast<int>(v));
    }
  }
  return true;
}
