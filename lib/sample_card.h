// The built-in sample card design of the demo, drawn as raster pages.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <vector>

#include "lib/raster_writer.h"

// 'Raster_MakeSampleCardJob()' - The pages of a duplex "ColorK" job for a
// panel of width x height dots at dpi: per side a colour page (photo area,
// coloured band, and on the front the holder's name, number and a bar code)
// and a black page (the text and bar code in pure black, for the resin
// black panel), then an overlay page for the front whose dark area is the
// window left free of overlay.  Page order: front colour, front black, front
// overlay, back colour, back black.
std::vector<TRasterPage> Raster_MakeSampleCardJob(uint32_t width, uint32_t height, uint32_t dpi);

// 'Raster_MakeSampleCardAllPanelsJob()' - The same card with every panel
// kind on both sides, eight pages: front colour, front black, front UV,
// front overlay, back colour, back black, back UV, back overlay.  The UV
// pages are dark where an emblem and the card's name glow; the back
// overlay page is dark all over.
std::vector<TRasterPage> Raster_MakeSampleCardAllPanelsJob(uint32_t width, uint32_t height, uint32_t dpi);

// 'Raster_DrawText()' - Draw upper-case text (A-Z, 0-9, blank, '-', '.') in
// a 5 x 7 dot font scaled by scale, top-left corner at (x, y).
void Raster_DrawText(TRasterPage* page, uint32_t x, uint32_t y, uint32_t scale, const char* text,
                     uint8_t r, uint8_t g, uint8_t b);

// 'Raster_DrawBarcode()' - Draw a bar code of the digits of text: each digit
// becomes four bars whose widths follow its bits, between guard bars.
void Raster_DrawBarcode(TRasterPage* page, uint32_t x, uint32_t y, uint32_t moduleWidth,
                        uint32_t height, const char* text);
