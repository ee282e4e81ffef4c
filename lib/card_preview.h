// The card preview: one composite picture per card side from the panels of a job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "lib/preview_marks.h"

// The composite of one side.
struct TCardPreview {
  int32_t side = 0;
  uint32_t width = 0, height = 0;    // the whole picture, legend band included
  uint32_t cardHeight = 0;           // rows of the card above the legend band
  std::vector<uint8_t> rgb;          // width x height x 3, rows top-down
  std::vector<TPreviewMark> marks;   // marks drawn on the card, in legend order
  std::vector<std::string> skipped;  // panels left out, e.g. "panel 2 (uv): 10 x 10, not 1036 x 664"
};

// 'Preview_Compose()' - One composite per side that has panels, front
// first.  The canvas has the size of the side's first colour panel (else
// of its first panel) and starts white; then, in this order, whatever the
// order of the panels in the stream (several panels of a kind in stream
// order):
//   1. colour panels: each byte goes through the side's lookup table (the
//      ICMD_LUTTABLE after its ICMD_STARTSIDE, red, green and blue arrays
//      for the three bytes of a dot) and is copied;
//   2. black panels, byte k: every channel c becomes (c x (255 - k) + 127)
//      / 255, so 255 prints black and 0 leaves the colour;
//   3. UV panels, then 4. overlay panels: the dots whose byte is 128 or
//      more form the panel's region; its edge dots (a dot above, below,
//      left or right outside the region, or the panel's edge) and its dots
//      on the mark's hatch lines are drawn as Preview_MarkDot says, the
//      other dots keep the picture.
// Integer arithmetic throughout.  Rows of a panel cut short count as
// bytes 0 (white for colour).  A panel of another size than the canvas is
// left out and listed in skipped.  With portrait the card is then turned
// 90 degrees clockwise, undoing the filter's turn of a portrait page.  A
// side with UV or overlay dots gets the legend band below the card.
std::vector<TCardPreview> Preview_Compose(const TStreamCheck& check, bool portrait = false);

// 'Preview_FileName()' - "side<S>-card.png".
std::string Preview_FileName(int32_t side);
