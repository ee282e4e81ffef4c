// Marks of the card preview: hatching of UV and overlay dots and the legend band.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <vector>

// The two kinds of marked panels.
enum TPreviewMark : uint32_t {
  MARK_UV = 0,       // UV panel: lines running down to the right, violet and white
  MARK_OVERLAY = 1,  // overlay panel: lines running up to the right, green and white
};

// Colours of the marks: each mark alternates its colour with white in
// blocks of 3 x 3 units, so that it shows on dark and light pictures alike.
extern const uint8_t PREVIEW_MARK_COLOR[2][3];

// 'Preview_Unit()' - The size unit of the marks in dots: 1 below 1400 dots
// of width, 2 from 1400 (the 600 dpi cards).
uint32_t Preview_Unit(uint32_t width);

// 'Preview_MarkDot()' - Whether the dot (x, y) of a region is drawn, and
// in which colour: on the region's edge (edge true) or on a hatch line
// (lines 2 units wide, 6 units apart).  False leaves the dot as it is.
bool Preview_MarkDot(TPreviewMark mark, uint32_t unit, uint32_t x, uint32_t y, bool edge, uint8_t rgb[3]);

// 'Preview_AppendLegend()' - Append below the rgb picture (width x *height
// dots, 3 bytes each) a white band holding, for each mark in marks, a
// hatched swatch and its name ("UV", "OVERLAY") in black capitals; the
// band is 11 steps of 3 x unit dots high (33 or 66 dots).  *height grows by the band.
void Preview_AppendLegend(const std::vector<TPreviewMark>& marks, uint32_t width, uint32_t* height,
                          std::vector<uint8_t>* rgb);
