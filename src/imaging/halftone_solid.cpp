// The black panel of a side with pure black kept solid and the rest diffused.
// Copyright 2026 The rastertobrellian authors.
//
// The "SolidBlack" black rendering: a dot of pure black (0,0,0) always
// prints and takes no part in the error diffusion, so text and bar codes
// beside a photo stay solid; every other dot is lightened and diffused
// exactly as Image_Bilevel does with g_floydSteinbergKernel and threshold
// 127 (the same taps, the same edge rules, the same clamping), so a photo
// prints as it does with the designed rendering.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "imaging/pure_map.h"
#include "imaging/stages.h"
#include "log/log.h"

namespace {

const int32_t kThreshold = 127;

// 'Solid_Lighten()' - A first sample moved 40 % of the way to white.
inline int32_t Solid_Lighten(int32_t v) {
  int32_t l = v + ((255 - v) * 40) / 100;
  return l > 255 ? 255 : l;
}

// 'Solid_Push()' - Add q to the working level at gray[i], clamped to 0..255.
inline void Solid_Push(uint8_t* gray, size_t i, int32_t q) {
  int32_t sum = gray[i] + q;
  gray[i] = static_cast<uint8_t>(sum <= 0 ? 0 : (sum > 254 ? 255 : sum));
}

// 'Solid_Diffuse()' - Fill mono (W x H) from rgb using the W x H working
// buffer gray: pure black prints and spreads no error, the rest is the
// Floyd-Steinberg diffusion of the lightened first sample.
void Solid_Diffuse(const uint8_t* rgb, uint8_t* mono, uint8_t* gray, int32_t W, int32_t H) {
  const size_t dots = static_cast<size_t>(W) * H;
  for (size_t i = 0; i < dots; ++i) gray[i] = static_cast<uint8_t>(Solid_Lighten(rgb[3 * i]));
  for (int32_t y = 0; y < H; ++y) {
    for (int32_t x = 0; x < W; ++x) {
      const size_t i = static_cast<size_t>(y) * W + x;
      const uint8_t* p = rgb + 3 * i;
      if ((p[0] | p[1] | p[2]) == 0) {
        mono[i] = 255;
        continue;
      }
      int32_t g = gray[i];
      mono[i] = g < kThreshold ? 255 : 0;
      int32_t e = g < kThreshold ? g : g - 255;
      // No error into the last column or row, and none at all while the
      // last row is processed: the bounds of Image_Bilevel.
      if (y + 1 >= H - 1) {
        if (x + 1 < W - 1 && y < H - 1) Solid_Push(gray, i + 1, e * 7 / 16);
        continue;
      }
      if (x + 1 < W - 1) Solid_Push(gray, i + 1, e * 7 / 16);
      if (x >= 1) Solid_Push(gray, i + W - 1, e * 3 / 16);
      if (x < W - 1) Solid_Push(gray, i + W, e * 5 / 16);
      if (x + 1 < W - 1) Solid_Push(gray, i + W + 1, e * 1 / 16);
    }
  }
}

}  // namespace

// 'Image_HalftoneSolidBlack()' - Make the W x H black panel (255 = print)
// of the side image rgb into *out, keeping every pure black dot printed;
// the caller frees it with free().  A pure black-and-white image is mapped
// dot for dot as by Image_Halftone.  Returns 0, 25 when out or rgb is null,
// 1 when memory ran out (*out null).
int32_t Image_HalftoneSolidBlack(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  TPanelGeometry panel = Panel_Geometry(task);
  const int32_t W = static_cast<int32_t>(panel.width), H = static_cast<int32_t>(panel.height);
  const size_t dots = static_cast<size_t>(W) * H;
  Log_Write(LOG_ENTRYEXIT, ">>>> Image_HalftoneSolidBlack");
  if (!out || !rgb) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_HalftoneSolidBlack[nullptr]");
    return 25;
  }
  uint8_t* mono = static_cast<uint8_t*>(malloc(dots ? dots : 1));
  *out = mono;
  if (mono && !Pure_MapBlack(rgb, mono, dots)) {
    uint8_t* gray = static_cast<uint8_t*>(malloc(dots ? dots : 1));
    if (gray) Solid_Diffuse(rgb, mono, gray, W, H);
    free(gray);
    if (!gray) {
      free(mono);
      *out = mono = nullptr;
    }
  }
  if (!mono) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_HalftoneSolidBlack[out of memory]");
    return 1;
  }
  Log_Write(LOG_ENTRYEXIT, "<<<< Image_HalftoneSolidBlack[success]");
  return 0;
}
