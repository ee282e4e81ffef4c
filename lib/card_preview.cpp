// The card preview: one composite picture per card side from the panels of a job.
// Copyright 2026 The rastertobrellian authors.
#include "lib/card_preview.h"

#include <algorithm>

#include "imaging/panel.h"
#include "lib/job_text.h"
#include "jobstream/records.h"

namespace {

// 'Preview_Byte()' - Byte i of a one-byte panel; 0 for rows not read.
uint8_t Preview_Byte(const TStreamPanel& p, size_t i) { return i < p.pixels.size() ? p.pixels[i] : 0; }

// 'Preview_SideLut()' - The lookup table sent for a side, table[c][v] for
// channel c and byte v; the identity when the stream holds none.
void Preview_SideLut(const TStreamCheck& check, int32_t side, uint8_t table[3][256]) {
  for (int c = 0; c < 3; ++c)
    for (int v = 0; v < 256; ++v) table[c][v] = static_cast<uint8_t>(v);
  int32_t current = -1;
  for (const TStreamRecord& rec : check.records) {
    TStartSideFields fields;
    if (Stream_DecodeStartSide(rec, &fields)) current = fields.side;
    if (current == side && Stream_DecodeLUTTable(rec, table[0], table[1], table[2])) return;
  }
}

// 'Preview_Color()' - Copy the colour bytes that were read through the table.
void Preview_Color(const TStreamPanel& p, const uint8_t table[3][256], TCardPreview* out) {
  size_t n = std::min(p.pixels.size(), out->rgb.size());
  for (size_t i = 0; i < n; ++i) out->rgb[i] = table[i % 3][p.pixels[i]];
}

// 'Preview_Black()' - Darken by the black byte.
void Preview_Black(const TStreamPanel& p, TCardPreview* out) {
  for (size_t i = 0; i < out->rgb.size(); ++i) {
    uint32_t k = Preview_Byte(p, i / 3);
    out->rgb[i] = static_cast<uint8_t>((out->rgb[i] * (255 - k) + 127) / 255);
  }
}

// 'Preview_Region()' - Hatch the region of a UV or overlay panel and draw
// its edge; the mark is listed once when the panel has any dot in it.
void Preview_Region(const TStreamPanel& p, TPreviewMark mark, TCardPreview* out) {
  const uint32_t w = out->width, h = out->height, unit = Preview_Unit(w);
  auto on = [&](uint32_t x, uint32_t y) { return Preview_Byte(p, static_cast<size_t>(y) * w + x) >= 128; };
  bool any = false;
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      if (!on(x, y)) continue;
      any = true;
      bool edge = x == 0 || y == 0 || x == w - 1 || y == h - 1 || !on(x - 1, y) || !on(x + 1, y) ||
                  !on(x, y - 1) || !on(x, y + 1);
      Preview_MarkDot(mark, unit, x, y, edge, &out->rgb[(static_cast<size_t>(y) * w + x) * 3]);
    }
  }
  if (any && std::find(out->marks.begin(), out->marks.end(), mark) == out->marks.end()) out->marks.push_back(mark);
}

// 'Preview_TurnClockwise()' - Turn the picture 90 degrees clockwise: the
// dot (x, y) of the result is the dot (y, height - 1 - x) of the picture.
void Preview_TurnClockwise(TCardPreview* out) {
  const uint32_t w = out->width, h = out->height;
  std::vector<uint8_t> turned(out->rgb.size());
  for (uint32_t y = 0; y < w; ++y)
    for (uint32_t x = 0; x < h; ++x)
      std::copy_n(&out->rgb[(static_cast<size_t>(h - 1 - x) * w + y) * 3], 3, &turned[(static_cast<size_t>(y) * h + x) * 3]);
  out->rgb.swap(turned);
  out->width = h;
  out->height = w;
}

// 'Preview_Side()' - The composite of the panels of one side.
TCardPreview Preview_Side(const TStreamCheck& check, int32_t side, const std::vector<const TStreamPanel*>& panels,
                          bool portrait) {
  TCardPreview out;
  out.side = side;
  const TStreamPanel* base = panels[0];
  for (const TStreamPanel* p : panels)
    if (p->panelType == PANEL_COLOR) {
      base = p;
      break;
    }
  out.width = base->width;
  out.height = base->height;
  out.rgb.assign(static_cast<size_t>(out.width) * out.height * 3, 255);
  uint8_t table[3][256];
  Preview_SideLut(check, side, table);
  for (uint32_t type : {PANEL_COLOR, PANEL_K, PANEL_UV, PANEL_PO}) {
    for (const TStreamPanel* p : panels) {
      if (p->panelType != type) continue;
      if (p->width != out.width || p->height != out.height) {
        out.skipped.push_back("panel " + std::to_string(p->index) + " (" + Inspect_PanelTypeName(type) + "): " +
                              std::to_string(p->width) + " x " + std::to_string(p->height) + ", not " +
                              std::to_string(out.width) + " x " + std::to_string(out.height));
        continue;
      }
      if (type == PANEL_COLOR) Preview_Color(*p, table, &out);
      else if (type == PANEL_K) Preview_Black(*p, &out);
      else Preview_Region(*p, type == PANEL_UV ? MARK_UV : MARK_OVERLAY, &out);
    }
  }
  if (portrait) Preview_TurnClockwise(&out);
  out.cardHeight = out.height;
  if (!out.marks.empty()) Preview_AppendLegend(out.marks, out.width, &out.height, &out.rgb);
  return out;
}

}  // namespace

// 'Preview_Compose()' - Front, then back, for each side with panels.
std::vector<TCardPreview> Preview_Compose(const TStreamCheck& check, bool portrait) {
  std::vector<TCardPreview> sides;
  for (int32_t side : {0, 1}) {
    std::vector<const TStreamPanel*> panels;
    for (const TStreamPanel& p : check.panels)
      if (p.side == side && p.width > 0 && p.height > 0 && p.panelType <= PANEL_PO) panels.push_back(&p);
    if (!panels.empty()) sides.push_back(Preview_Side(check, side, panels, portrait));
  }
  return sides;
}

// 'Preview_FileName()' - "side<S>-card.png".
std::string Preview_FileName(int32_t side) { return "side" + std::to_string(side) + "-card.png"; }
