// Area and size strings: rectangles of a card side in printer dots.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// A rectangle in printer dots.  Page imaging reads right and bottom as
// extents from left and top (Area_ToSpan); Area_Contains reads them as
// exclusive edges.  All zero means no area.
struct TArea {
  uint32_t left;
  uint32_t top;
  uint32_t right;
  uint32_t bottom;
};
static_assert(sizeof(TArea) == 16, "TArea is four 32-bit values");

// Longest value token accepted ("12.5mm" and the like); longer ones fail.
constexpr int AREA_TOKEN_MAX = 20;

// 'Area_SplitValues()' - Split text into four value tokens of at most
// AREA_TOKEN_MAX characters each (buffers of AREA_TOKEN_MAX + 1 bytes).
// Returns the number of values found; on any syntax error all four tokens
// are cleared and 0 is returned.
int32_t Area_SplitValues(const char* text, char tokens[4][AREA_TOKEN_MAX + 1]);

// 'Area_ValueToDots()' - A value token in dots at dpi, rounded half up.
uint32_t Area_ValueToDots(const char* token, uint32_t dpi);

// 'Area_Parse()' - Fill area from text at dpi (all zero on any error) and
// log the result.
void Area_Parse(TArea* area, const char* text, uint32_t dpi);

// 'Area_IsEmpty()' - True for a null or an all-zero area.
bool Area_IsEmpty(const TArea* area);

// 'Area_Contains()' - True when the area exists and left <= x < right and
// top <= y < bottom (signed comparison).
bool Area_Contains(int32_t x, int32_t y, const TArea* area);
