// Colour lookup table files: writing the ".csv" text format of a side's tables.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>

#include "options/lut_file.h"

// 'Lut_Format()' - The text of a LUT file holding table[red, green,
// blue][level]: the comment lines given (each prefixed with "# "; may be
// null or empty), the header "level,red,green,blue" and the 256 rows
// "i,r,g,b", every line ended by "\n".  Lut_Parse reads the result back
// into the same table.
std::string Lut_Format(const uint8_t table[3][LUT_ENTRIES], const char* comment);

// 'Lut_MakeIdentity()' - Entry i holds i in all three arrays.
void Lut_MakeIdentity(uint8_t table[3][LUT_ENTRIES]);

// 'Lut_MakeGamma()' - Entry i of channel c holds 255 x (i / 255) ^ (1 /
// gamma[c]) rounded half up, in double precision: a gamma above 1 lightens
// the mid-tones, below 1 darkens them; entries 0 and 255 stay 0 and 255.
// Returns false (table untouched) unless every gamma is finite and between
// 0.1 and 10.
bool Lut_MakeGamma(const double gamma[3], uint8_t table[3][LUT_ENTRIES]);
