// Reference "SolidBlack" black rendering: pure black kept, the rest diffused.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "reference/reference_stages.h"

namespace {

// 'Ref_SolidPush()' - Add q to the working level at gray[i], clamped to 0..255.
void Ref_SolidPush(uint8_t* gray, size_t i, int32_t q) {
  int32_t sum = gray[i] + q;
  gray[i] = static_cast<uint8_t>(sum <= 0 ? 0 : (sum > 254 ? 255 : sum));
}

}  // namespace

// 'Ref_HalftoneSolidBlack()' - A pure black-and-white image maps black to
// 255; any other image is lightened into a W x H copy and diffused dot by
// dot with the Floyd-Steinberg taps and threshold 127, except that a pure
// black dot prints and neither reads nor spreads error.
int32_t Ref_HalftoneSolidBlack(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  if (!out || !rgb) return 25;
  TPanelGeometry g = Panel_Geometry(task);
  const int32_t W = static_cast<int32_t>(g.width), H = static_cast<int32_t>(g.height);
  const size_t dots = static_cast<size_t>(W) * H;
  uint8_t* mono = static_cast<uint8_t*>(calloc(dots + 1, 1));
  uint8_t* gray = static_cast<uint8_t*>(malloc(dots + 1));
  *out = mono;
  bool pure = true;
  for (size_t i = 0; i < dots; ++i) {
    int32_t sum = rgb[3 * i] + rgb[3 * i + 1] + rgb[3 * i + 2];
    if (sum != 0 && sum != 765) pure = false;
    mono[i] = sum == 0 ? 255 : 0;
    int32_t v = rgb[3 * i];
    int32_t l = v + ((255 - v) * 40) / 100;
    gray[i] = static_cast<uint8_t>(l > 255 ? 255 : l);
  }
  for (int32_t y = 0; y < H && !pure; ++y) {
    for (int32_t x = 0; x < W; ++x) {
      const size_t i = static_cast<size_t>(y) * W + x;
      const uint8_t* p = rgb + 3 * i;
      if (p[0] == 0 && p[1] == 0 && p[2] == 0) {
        mono[i] = 255;
        continue;
      }
      int32_t v = gray[i];
      mono[i] = v < 127 ? 255 : 0;
      int32_t e = v < 127 ? v : v - 255;
      const int32_t dx[4] = {1, -1, 0, 1}, dy[4] = {0, 1, 1, 1}, w[4] = {7, 3, 5, 1};
      for (int32_t t = 0; t < 4; ++t) {
        int32_t tx = x + dx[t], ty = y + dy[t];
        if (tx < 0 || ty < 0 || tx >= W - 1 || ty >= H - 1) continue;
        Ref_SolidPush(gray, static_cast<size_t>(ty) * W + tx, (e * w[t]) / 16);
      }
    }
  }
  free(gray);
  return 0;
}
