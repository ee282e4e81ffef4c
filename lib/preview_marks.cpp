// Marks of the card preview: hatching of UV and overlay dots and the legend band.
// Copyright 2026 The rastertobrellian authors.
#include "lib/preview_marks.h"

#include <cstring>

const uint8_t PREVIEW_MARK_COLOR[2][3] = {{128, 0, 255}, {0, 160, 0}};

namespace {

// Capitals of the legend, 5 x 7 dots, one string per row ('#' is ink).
struct TGlyph {
  char letter;
  const char* rows[7];
};
const TGlyph GLYPHS[] = {
    {'A', {".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'E', {"#####", "#....", "#....", "####.", "#....", "#....", "#####"}},
    {'L', {"#....", "#....", "#....", "#....", "#....", "#....", "#####"}},
    {'O', {".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'R', {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"}},
    {'U', {"#...#", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'V', {"#...#", "#...#", "#...#", "#...#", "#...#", ".#.#.", "..#.."}},
    {'Y', {"#...#", "#...#", ".#.#.", "..#..", "..#..", "..#..", "..#.."}},
};
const char* const MARK_NAMES[2] = {"UV", "OVERLAY"};

// The legend being drawn: the band's pixels and its size.
struct TBand {
  std::vector<uint8_t>* rgb;
  uint32_t width, top, height;
  // 'Put()' - Set a dot of the band, ignoring dots beyond its width.
  void Put(uint32_t x, uint32_t y, const uint8_t c[3]) const {
    if (x >= width || y >= height) return;
    memcpy(&(*rgb)[(static_cast<size_t>(top + y) * width + x) * 3], c, 3);
  }
};

// 'Legend_Text()' - Draw text in black capitals at (x, y), each glyph dot
// scale x scale dots; returns the x after the text.
uint32_t Legend_Text(const TBand& band, const char* text, uint32_t x, uint32_t y, uint32_t scale) {
  static const uint8_t ink[3] = {0, 0, 0};
  for (; *text; ++text, x += 6 * scale) {
    for (const TGlyph& g : GLYPHS) {
      if (g.letter != *text) continue;
      for (uint32_t r = 0; r < 7; ++r)
        for (uint32_t c = 0; c < 5; ++c)
          if (g.rows[r][c] == '#')
            for (uint32_t dy = 0; dy < scale; ++dy)
              for (uint32_t dx = 0; dx < scale; ++dx) band.Put(x + c * scale + dx, y + r * scale + dy, ink);
    }
  }
  return x;
}

}  // namespace

// 'Preview_Unit()' - 1, or 2 for the wide cards of 600 dpi.
uint32_t Preview_Unit(uint32_t width) { return width >= 1400 ? 2 : 1; }

// 'Preview_MarkDot()' - Edge or hatch line, coloured in alternate blocks.
bool Preview_MarkDot(TPreviewMark mark, uint32_t unit, uint32_t x, uint32_t y, bool edge, uint8_t rgb[3]) {
  const uint32_t period = 6 * unit;
  uint32_t along = mark == MARK_OVERLAY ? (x + y) % period : (x + period - y % period) % period;
  if (!edge && along >= 2 * unit) return false;
  bool colour = ((x / (3 * unit)) + (y / (3 * unit))) % 2 == 0;
  static const uint8_t white[3] = {255, 255, 255};
  memcpy(rgb, colour ? PREVIEW_MARK_COLOR[mark] : white, 3);
  return true;
}

// 'Preview_AppendLegend()' - Swatch and name of each mark, left to right.
void Preview_AppendLegend(const std::vector<TPreviewMark>& marks, uint32_t width, uint32_t* height,
                          std::vector<uint8_t>* rgb) {
  const uint32_t scale = 3 * Preview_Unit(width);
  TBand band{rgb, width, *height, 11 * scale};
  rgb->resize(static_cast<size_t>(width) * (*height + band.height) * 3, 255);
  *height += band.height;
  static const uint8_t grey[3] = {128, 128, 128};
  for (uint32_t x = 0; x < width; ++x) band.Put(x, 0, grey);
  uint32_t x = 2 * scale;
  const uint32_t side = 7 * scale, y = 2 * scale;
  for (TPreviewMark mark : marks) {
    for (uint32_t sy = 0; sy < side; ++sy)
      for (uint32_t sx = 0; sx < side; ++sx) {
        uint8_t c[3];
        bool edge = sx == 0 || sy == 0 || sx == side - 1 || sy == side - 1;
        if (Preview_MarkDot(mark, Preview_Unit(width), x + sx, y + sy, edge, c)) band.Put(x + sx, y + sy, c);
      }
    x = Legend_Text(band, MARK_NAMES[mark], x + side + 2 * scale, y, scale) + 4 * scale;
  }
}
