// The built-in sample card design of the demo, drawn as raster pages.
// Copyright 2026 The rastertobrellian authors.
#include "lib/sample_card.h"

#include <cstring>

namespace {

// 5 x 7 glyphs, one byte per row, bit 4 the leftmost dot.
struct TGlyph {
  char c;
  uint8_t rows[7];
};

const TGlyph kFont[] = {
    {'A', {0x0E, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}}, {'B', {0x1E, 0x11, 0x11, 0x1E, 0x11, 0x11, 0x1E}},
    {'C', {0x0E, 0x11, 0x10, 0x10, 0x10, 0x11, 0x0E}}, {'D', {0x1E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x1E}},
    {'E', {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F}}, {'F', {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x10}},
    {'G', {0x0E, 0x11, 0x10, 0x17, 0x11, 0x11, 0x0F}}, {'H', {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}},
    {'I', {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E}}, {'J', {0x07, 0x02, 0x02, 0x02, 0x02, 0x12, 0x0C}},
    {'K', {0x11, 0x12, 0x14, 0x18, 0x14, 0x12, 0x11}}, {'L', {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x1F}},
    {'M', {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}}, {'N', {0x11, 0x11, 0x19, 0x15, 0x13, 0x11, 0x11}},
    {'O', {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}}, {'P', {0x1E, 0x11, 0x11, 0x1E, 0x10, 0x10, 0x10}},
    {'Q', {0x0E, 0x11, 0x11, 0x11, 0x15, 0x12, 0x0D}}, {'R', {0x1E, 0x11, 0x11, 0x1E, 0x14, 0x12, 0x11}},
    {'S', {0x0F, 0x10, 0x10, 0x0E, 0x01, 0x01, 0x1E}}, {'T', {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04}},
    {'U', {0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}}, {'V', {0x11, 0x11, 0x11, 0x11, 0x11, 0x0A, 0x04}},
    {'W', {0x11, 0x11, 0x11, 0x15, 0x15, 0x15, 0x0A}}, {'X', {0x11, 0x11, 0x0A, 0x04, 0x0A, 0x11, 0x11}},
    {'Y', {0x11, 0x11, 0x0A, 0x04, 0x04, 0x04, 0x04}}, {'Z', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1F}},
    {'0', {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}}, {'1', {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E}},
    {'2', {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}}, {'3', {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E}},
    {'4', {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}}, {'5', {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E}},
    {'6', {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}}, {'7', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08}},
    {'8', {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}}, {'9', {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}},
    {'-', {0x00, 0x00, 0x00, 0x1F, 0x00, 0x00, 0x00}}, {'.', {0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x0C}},
    {' ', {0, 0, 0, 0, 0, 0, 0}},
};

const TGlyph* FindGlyph(char c) {
  for (const TGlyph& g : kFont)
    if (g.c == c) return &g;
  return nullptr;
}

// Photo area: a smooth colour field with a round "face", so that the
// black panel of a colour page comes out dithered, not solid.
void DrawPhoto(TRasterPage* page, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h) {
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      uint8_t r = static_cast<uint8_t>(90 + 120 * x / w);
      uint8_t g = static_cast<uint8_t>(140 + 80 * y / h);
      uint8_t b = static_cast<uint8_t>(200 - 100 * y / h);
      int64_t dx = static_cast<int64_t>(x) - w / 2, dy = static_cast<int64_t>(y) - h * 2 / 5;
      if (dx * dx * 9 + dy * dy * 6 < static_cast<int64_t>(w) * w * 9 / 16 / 4) {
        r = 225;
        g = 180;
        b = 150;
      }
      Raster_SetPixel(page, x0 + x, y0 + y, r, g, b);
    }
  }
}

struct TLayout {
  uint32_t w, h, unit;  // unit: one font dot
};

void DrawFrontText(TRasterPage* page, const TLayout& l) {
  Raster_DrawText(page, l.w * 40 / 100, l.h * 30 / 100, l.unit, "ALEX SAMPLE", 0, 0, 0);
  Raster_DrawText(page, l.w * 40 / 100, l.h * 45 / 100, l.unit * 2 / 3 + 1, "ID 0042-1987", 0, 0, 0);
  Raster_DrawBarcode(page, l.w * 40 / 100, l.h * 62 / 100, l.unit / 2 + 1, l.h * 18 / 100, "004219870");
}

void DrawBackText(TRasterPage* page, const TLayout& l) {
  Raster_DrawText(page, l.w * 5 / 100, l.h * 20 / 100, l.unit * 2 / 3 + 1, "IF FOUND RETURN TO", 0, 0, 0);
  Raster_DrawText(page, l.w * 5 / 100, l.h * 35 / 100, l.unit * 2 / 3 + 1, "BRELLIAN DEMO", 0, 0, 0);
}

}  // namespace

void Raster_DrawText(TRasterPage* page, uint32_t x, uint32_t y, uint32_t scale, const char* text,
                     uint8_t r, uint8_t g, uint8_t b) {
  for (size_t i = 0; text[i]; ++i) {
    const TGlyph* glyph = FindGlyph(text[i]);
    if (!glyph) continue;
    uint32_t gx = x + static_cast<uint32_t>(i) * 6 * scale;
    for (uint32_t row = 0; row < 7; ++row)
      for (uint32_t col = 0; col < 5; ++col)
        if (glyph->rows[row] & (0x10 >> col))
          Raster_FillRect(page, gx + col * scale, y + row * scale, scale, scale, r, g, b);
  }
}

void Raster_DrawBarcode(TRasterPage* page, uint32_t x, uint32_t y, uint32_t moduleWidth,
                        uint32_t height, const char* text) {
  uint32_t pos = x;
  auto bar = [&](uint32_t modules, bool black) {
    if (black) Raster_FillRect(page, pos, y, modules * moduleWidth, height, 0, 0, 0);
    pos += modules * moduleWidth;
  };
  bar(1, true), bar(1, false), bar(1, true), bar(1, false);
  for (size_t i = 0; text[i]; ++i) {
    if (text[i] < '0' || text[i] > '9') continue;
    int digit = text[i] - '0';
    for (int bit = 3; bit >= 0; --bit) {
      bar((digit >> bit) & 1 ? 2 : 1, true);
      bar(1, false);
    }
  }
  bar(1, true), bar(1, false), bar(1, true);
}

std::vector<TRasterPage> Raster_MakeSampleCardJob(uint32_t width, uint32_t height, uint32_t dpi) {
  TLayout l{width, height, height / 80};
  if (l.unit == 0) l.unit = 1;
  std::vector<TRasterPage> pages;

  // Front colour: blue band, photo, name, number and bar code.
  TRasterPage front = Raster_MakeRGBPage(width, height, dpi, 255, 255, 255);
  Raster_FillRect(&front, 0, 0, width, height * 18 / 100, 20, 70, 160);
  Raster_DrawText(&front, width * 4 / 100, height * 5 / 100, l.unit, "BRELLIAN CARD", 255, 255, 255);
  DrawPhoto(&front, width * 5 / 100, height * 25 / 100, width * 28 / 100, height * 65 / 100);
  DrawFrontText(&front, l);
  front.header.Duplex = CUPS_TRUE;
  pages.push_back(front);

  // Front black: the same text and bar code, pure black on white.
  TRasterPage frontBlack = Raster_MakeRGBPage(width, height, dpi, 255, 255, 255);
  DrawFrontText(&frontBlack, l);
  frontBlack.header.Duplex = CUPS_TRUE;
  pages.push_back(frontBlack);

  // Front overlay: dark where the overlay goes; a window over the bar code
  // is left white so that the bar code stays readable.
  TRasterPage overlay = Raster_MakeRGBPage(width, height, dpi, 0, 0, 0);
  Raster_FillRect(&overlay, width * 38 / 100, height * 60 / 100, width * 58 / 100, height * 24 / 100,
                  255, 255, 255);
  overlay.header.Duplex = CUPS_TRUE;
  pages.push_back(overlay);

  // Back colour: a coloured strip and a line of text.
  TRasterPage back = Raster_MakeRGBPage(width, height, dpi, 250, 245, 230);
  Raster_FillRect(&back, 0, height * 80 / 100, width, height * 20 / 100, 200, 40, 60);
  DrawBackText(&back, l);
  back.header.Duplex = CUPS_TRUE;
  pages.push_back(back);

  // Back black: the text only.
  TRasterPage backBlack = Raster_MakeRGBPage(width, height, dpi, 255, 255, 255);
  DrawBackText(&backBlack, l);
  backBlack.header.Duplex = CUPS_TRUE;
  pages.push_back(backBlack);
  return pages;
}

// 'Sample_UVPage()' - A UV page: dark where the UV ink goes (an emblem of
// two crossed bars and the card's name), white elsewhere.
static TRasterPage Sample_UVPage(uint32_t width, uint32_t height, uint32_t dpi, uint32_t unit) {
  TRasterPage uv = Raster_MakeRGBPage(width, height, dpi, 255, 255, 255);
  Raster_FillRect(&uv, width * 60 / 100, height * 25 / 100, width * 30 / 100, height * 6 / 100, 0, 0, 0);
  Raster_FillRect(&uv, width * 72 / 100, height * 12 / 100, width * 6 / 100, height * 32 / 100, 0, 0, 0);
  Raster_DrawText(&uv, width * 40 / 100, height * 88 / 100, unit, "BRELLIAN", 0, 0, 0);
  uv.header.Duplex = CUPS_TRUE;
  return uv;
}

std::vector<TRasterPage> Raster_MakeSampleCardAllPanelsJob(uint32_t width, uint32_t height, uint32_t dpi) {
  std::vector<TRasterPage> card = Raster_MakeSampleCardJob(width, height, dpi);
  uint32_t unit = height / 80 ? height / 80 : 1;
  TRasterPage uv = Sample_UVPage(width, height, dpi, unit);
  // The back overlay covers the whole side.
  TRasterPage backOverlay = Raster_MakeRGBPage(width, height, dpi, 0, 0, 0);
  backOverlay.header.Duplex = CUPS_TRUE;
  return {card[0], card[1], uv, card[2], card[3], card[4], uv, backOverlay};
}

