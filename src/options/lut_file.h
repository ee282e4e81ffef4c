// Colour lookup table files: the ".csv" text format of a side's tables.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// Largest LUT file read; a larger one is not usable.
constexpr size_t LUT_FILE_MAX = 64 * 1024;
constexpr int32_t LUT_ENTRIES = 256;

// Why a LUT file could not be used.
struct TLutError {
  int32_t line;          // 1-based line of the fault, 0 for the whole file
  const char* reason;    // static text
};

// 'Lut_Parse()' - Parse the text of a LUT file into table[red, green,
// blue][level].  The text is: optional comment lines ("#" first) and blank
// lines anywhere, a header "level,red,green,blue", then exactly 256 rows
// "i,r,g,b" with i = 0..255 in order and values 0..255.  Returns true and
// fills table only for a complete, well-formed text; otherwise table is
// untouched and *error says why.
bool Lut_Parse(const char* text, size_t length, uint8_t table[3][LUT_ENTRIES], TLutError* error);

// 'Lut_Load()' - Read and parse the LUT file at path (regular files only, at
// most LUT_FILE_MAX bytes).  Returns 0 and fills table; -1 when the file
// can't be opened (errno set); -2 when it is not usable (*error says why,
// table untouched).
int32_t Lut_Load(const char* path, uint8_t table[3][LUT_ENTRIES], TLutError* error);

// 'Lut_LoadConfig()' - Lut_Load for a table of the configuration tree,
// opened with the trust checks of Conf_OpenFile: a file another user could
// have planted counts as one that can't be opened (-1).
int32_t Lut_LoadConfig(const char* path, uint8_t table[3][LUT_ENTRIES], TLutError* error);
