// Page and panel buffers: a panel turned half round, and a size fitted into another.
// Copyright 2026 The rastertobrellian authors.
#include <cmath>
#include <cstring>

#include "imaging/panel.h"

namespace {

// Largest element Image_Rotate180 swaps.
constexpr uint32_t ROTATE_MAX_ELEMENT = 64;

}  // namespace

// 'Image_Rotate180()' - A 180-degree turn is the reversal of the sequence of
// elements: element i and element N - 1 - i change places.
int32_t Image_Rotate180(TPrintingTask*, uint8_t* buffer, uint32_t width, uint32_t height,
                        uint32_t elementSize) {
  if (!buffer || elementSize == 0 || elementSize > ROTATE_MAX_ELEMENT) return 0;
  size_t count = static_cast<size_t>(width) * height;
  if (count < 2) return 0;
  uint8_t* front = buffer;
  uint8_t* back = buffer + (count - 1) * elementSize;
  if (elementSize == 1) {
    for (; front < back; ++front, --back) {
      uint8_t t = *front;
      *front = *back;
      *back = t;
    }
  } else if (elementSize == 3) {
    for (; front < back; front += 3, back -= 3) {
      uint8_t a = front[0], b = front[1], c = front[2];
      front[0] = back[0], front[1] = back[1], front[2] = back[2];
      back[0] = a, back[1] = b, back[2] = c;
    }
  } else {
    uint8_t swap[ROTATE_MAX_ELEMENT];
    for (; front < back; front += elementSize, back -= elementSize) {
      memcpy(swap, front, elementSize);
      memcpy(front, back, elementSize);
      memcpy(back, swap, elementSize);
    }
  }
  return 0;
}

// 'Image_FitSize()' - Scale (width, height) by the smaller of the two axis
// ratios (sy on equality), truncating.  A zero width or height has no
// aspect ratio and is left as it is.
void Image_FitSize(TPrintingTask*, uint32_t targetWidth, uint32_t targetHeight, uint32_t* width,
                   uint32_t* height) {
  if (*width == 0 || *height == 0) return;
  double sx = static_cast<double>(targetWidth) / static_cast<double>(*width);
  double sy = static_cast<double>(targetHeight) / static_cast<double>(*height);
  double scale = sy > sx ? sx : sy;
  *width = static_cast<uint32_t>(std::trunc(static_cast<double>(*width) * scale));
  *height = static_cast<uint32_t>(std::trunc(scale * static_cast<double>(*height)));
}
