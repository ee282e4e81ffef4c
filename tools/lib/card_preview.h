// The card preview: one composite picture per card side from the panels of a job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

// Colours of the preview.
extern const uint8_t PREVIEW_UV_TINT[3];      // UV dots are tinted towards this colour
extern const uint8_t PREVIEW_PO_OUTLINE[3];   // edge dots of the overlay panel

// The composite of one side.
struct TCardPreview {
  int32_t side = 0;
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> rgb;          // width x height x 3, rows top-down
  std::vector<std::string> skipped;  // panels left out, e.g. "panel 2 (uv): 10 x 10, not 1036 x 664"
};

// 'Preview_Compose()' - One composite per side that has panels, front
// first.  The canvas has the size of the side's first colour panel (else
// of its first panel) and starts white; then, in this order, whatever the
// order of the panels in the stream (several panels of a kind in stream
// order):
//   1. colour panels: their RGB bytes are copied;
//   2. black panels, byte k: every channel c becomes (c x (255 - k) + 127)
//      / 255, so 255 prints black and 0 leaves the colour;
//   3. UV panels, byte u: c becomes (c x (510 - u) + T x u + 255) / 510
//      with T the channel of PREVIEW_UV_TINT: half-way to the tint at 255;
//   4. overlay panels: a dot whose byte is 128 or more and that has a dot
//      above, below, left or right of it with a byte below 128, or lies on
//      the panel's edge, becomes PREVIEW_PO_OUTLINE.
// Integer arithmetic throughout.  Rows of a panel cut short count as
// bytes 0 (white for colour).  A panel of another size than the canvas is
// left out and listed in skipped.
std::vector<TCardPreview> Preview_Compose(const TStreamCheck& check);

// 'Preview_FileName()' - "side<S>-card.png".
std::string Preview_FileName(int32_t side);
