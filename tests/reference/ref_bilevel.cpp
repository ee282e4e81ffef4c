// Reference lightened error diffusion and halftoning.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "reference/reference_stages.h"

// 'Ref_Bilevel()' - Lighten the first sample of every dot into a W x H
// buffer, then diffuse dot by dot, tap by tap, dividing each share.
void Ref_Bilevel(TPrintingTask* task, const uint8_t* rgb, uint8_t** out,
                 const TDiffusionKernel& kernel, int32_t threshold) {
  TPanelGeometry g = Panel_Geometry(task);
  int32_t W = static_cast<int32_t>(g.width), H = static_cast<int32_t>(g.height);
  uint8_t* mono = static_cast<uint8_t*>(calloc(static_cast<size_t>(W) * H + 1, 1));
  *out = mono;
  if (!rgb) {
    free(mono);
    *out = nullptr;
    return;
  }
  uint8_t* gray = static_cast<uint8_t*>(malloc(static_cast<size_t>(W) * H + 1));
  for (int32_t i = 0; i < W * H; ++i) {
    int32_t v = rgb[3 * i];
    int32_t l = v + ((255 - v) * 40) / 100;
    gray[i] = static_cast<uint8_t>(l > 255 ? 255 : l);
  }
  for (int32_t y = 0; y < H; ++y) {
    for (int32_t x = 0; x < W; ++x) {
      int32_t v = gray[y * W + x];
      int32_t e;
      uint8_t o;
      if (v < threshold) {
        o = 255;
        e = v;
      } else {
        o = 0;
        e = v - 255;
      }
      for (int32_t t = 0; t < kernel.count; ++t) {
        int32_t tx = x + kernel.taps[t].dx, ty = y + kernel.taps[t].dy;
        if (tx < 0 || ty < 0 || tx >= W - 1 || ty >= H - 1) continue;
        int32_t q = (e * kernel.taps[t].weight) / kernel.divisor;
        int32_t s = gray[ty * W + tx] + q;
        gray[ty * W + tx] = static_cast<uint8_t>(s > 254 ? 255 : (s <= 0 ? 0 : s));
      }
      mono[y * W + x] = o;
    }
  }
  free(gray);
}

// 'Ref_Halftone()' - Scan for a grey dot; pure images map black to 255,
// others go through Ref_Bilevel with Floyd-Steinberg and 127.
int32_t Ref_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  if (!out || !rgb) return 25;
  TPanelGeometry g = Panel_Geometry(task);
  size_t n = static_cast<size_t>(g.width) * g.height;
  bool grey = false;
  for (size_t i = 0; i < n && !grey; ++i) {
    int32_t sum = rgb[3 * i] + rgb[3 * i + 1] + rgb[3 * i + 2];
    grey = sum != 0 && sum != 765;
  }
  if (grey) {
    Ref_Bilevel(task, rgb, out, g_floydSteinbergKernel, 127);
    return 0;
  }
  uint8_t* mono = static_cast<uint8_t*>(calloc(n + 1, 1));
  for (size_t i = 0; i < n; ++i)
    if (rgb[3 * i] + rgb[3 * i + 1] + rgb[3 * i + 2] == 0) mono[i] = 255;
  *out = mono;
  return 0;
}
