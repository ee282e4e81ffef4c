// The card preview: one composite picture per card side from the panels of a job.
// Copyright 2026 The rastertobrellian authors.
#include "card_preview.h"

#include <algorithm>

#include "imaging/panel.h"
#include "job_text.h"

const uint8_t PREVIEW_UV_TINT[3] = {128, 0, 255};
const uint8_t PREVIEW_PO_OUTLINE[3] = {0, 160, 0};

namespace {

// 'Preview_Byte()' - Byte i of a one-byte panel; 0 for rows not read.
uint8_t Preview_Byte(const TStreamPanel& p, size_t i) { return i < p.pixels.size() ? p.pixels[i] : 0; }

// 'Preview_Color()' - Copy the colour bytes that were read.
void Preview_Color(const TStreamPanel& p, TCardPreview* out) {
  size_t n = std::min(p.pixels.size(), out->rgb.size());
  std::copy(p.pixels.begin(), p.pixels.begin() + n, out->rgb.begin());
}

// 'Preview_Black()' - Darken by the black byte.
void Preview_Black(const TStreamPanel& p, TCardPreview* out) {
  for (size_t i = 0; i < out->rgb.size(); ++i) {
    uint32_t k = Preview_Byte(p, i / 3);
    out->rgb[i] = static_cast<uint8_t>((out->rgb[i] * (255 - k) + 127) / 255);
  }
}

// 'Preview_UV()' - Tint towards PREVIEW_UV_TINT by the UV byte.
void Preview_UV(const TStreamPanel& p, TCardPreview* out) {
  for (size_t i = 0; i < out->rgb.size(); ++i) {
    uint32_t u = Preview_Byte(p, i / 3);
    out->rgb[i] = static_cast<uint8_t>((out->rgb[i] * (510 - u) + PREVIEW_UV_TINT[i % 3] * u + 255) / 510);
  }
}

// 'Preview_Overlay()' - Outline the overlay regions.
void Preview_Overlay(const TStreamPanel& p, TCardPreview* out) {
  const uint32_t w = out->width, h = out->height;
  auto on = [&](uint32_t x, uint32_t y) { return Preview_Byte(p, static_cast<size_t>(y) * w + x) >= 128; };
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      if (!on(x, y)) continue;
      bool edge = x == 0 || y == 0 || x == w - 1 || y == h - 1 || !on(x - 1, y) || !on(x + 1, y) ||
                  !on(x, y - 1) || !on(x, y + 1);
      if (!edge) continue;
      uint8_t* d = &out->rgb[(static_cast<size_t>(y) * w + x) * 3];
      for (int c = 0; c < 3; ++c) d[c] = PREVIEW_PO_OUTLINE[c];
    }
  }
}

// 'Preview_Side()' - The composite of the panels of one side.
TCardPreview Preview_Side(int32_t side, const std::vector<const TStreamPanel*>& panels) {
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
  for (uint32_t type : {PANEL_COLOR, PANEL_K, PANEL_UV, PANEL_PO}) {
    for (const TStreamPanel* p : panels) {
      if (p->panelType != type) continue;
      if (p->width != out.width || p->height != out.height) {
        out.skipped.push_back("panel " + std::to_string(p->index) + " (" + Dump_PanelTypeName(type) + "): " +
                              std::to_string(p->width) + " x " + std::to_string(p->height) + ", not " +
                              std::to_string(out.width) + " x " + std::to_string(out.height));
        continue;
      }
      if (type == PANEL_COLOR) Preview_Color(*p, &out);
      else if (type == PANEL_K) Preview_Black(*p, &out);
      else if (type == PANEL_UV) Preview_UV(*p, &out);
      else Preview_Overlay(*p, &out);
    }
  }
  return out;
}

}  // namespace

// 'Preview_Compose()' - Front, then back, for each side with panels.
std::vector<TCardPreview> Preview_Compose(const TStreamCheck& check) {
  std::vector<TCardPreview> sides;
  for (int32_t side : {0, 1}) {
    std::vector<const TStreamPanel*> panels;
    for (const TStreamPanel& p : check.panels)
      if (p.side == side && p.width > 0 && p.height > 0 && p.panelType <= PANEL_PO) panels.push_back(&p);
    if (!panels.empty()) sides.push_back(Preview_Side(side, panels));
  }
  return sides;
}

// 'Preview_FileName()' - "side<S>-card.png".
std::string Preview_FileName(int32_t side) { return "side" + std::to_string(side) + "-card.png"; }
