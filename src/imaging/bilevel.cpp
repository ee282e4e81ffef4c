// Lightened error diffusion of a printer-RGB image into a black panel.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "imaging/bilevel.h"

#include "driver/printing_task.h"
#include "imaging/bilevel_fs.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "log/log.h"
#include "util/cpu.h"

namespace {

const TDiffusionTap kFloydSteinbergTaps[] = {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}};

// 'Bilevel_ClampByte()' - t + q limited to 0 ... 255.
inline uint8_t Bilevel_ClampByte(int64_t sum) {
  return static_cast<uint8_t>(sum <= 0 ? 0 : (sum > 254 ? 255 : sum));
}

// 'Bilevel_Generic()' - Diffusion with any kernel over the whole W x H
// working buffer gray (already lightened).  The share of each tap is looked
// up by level: the error of a dot depends on its level only.  A dot whose
// keep byte is 255 (keep not null) prints and pushes nothing.
void Bilevel_Generic(uint8_t* gray, uint8_t* mono, int32_t W, int32_t H,
                     const TDiffusionKernel& kernel, int32_t threshold, const uint8_t* keep) {
  int32_t count = kernel.taps && kernel.count > 0 ? kernel.count : 0;
  int32_t* share = count ? static_cast<int32_t*>(malloc(sizeof(int32_t) * 256 * count)) : nullptr;
  for (int32_t t = 0; share && t < count; ++t) {
    for (int32_t g = 0; g < 256; ++g) {
      int64_t e = g < threshold ? g : g - 255;
      share[t * 256 + g] = kernel.divisor
          ? static_cast<int32_t>(e * kernel.taps[t].weight / kernel.divisor) : 0;
    }
  }
  for (int32_t y = 0; y < H; ++y) {
    for (int32_t x = 0; x < W; ++x) {
      if (keep && keep[static_cast<size_t>(y) * W + x] == 255) {
        mono[static_cast<size_t>(y) * W + x] = 255;
        continue;
      }
      int32_t g = gray[static_cast<size_t>(y) * W + x];
      mono[static_cast<size_t>(y) * W + x] = g < threshold ? 255 : 0;
      int64_t e = g < threshold ? g : g - 255;
      for (int32_t t = 0; t < count; ++t) {
        int64_t tx = static_cast<int64_t>(x) + kernel.taps[t].dx;
        int64_t ty = static_cast<int64_t>(y) + kernel.taps[t].dy;
        if (tx < 0 || ty < 0 || tx >= W - 1 || ty >= H - 1) continue;
        int64_t q = share ? share[t * 256 + g]
                          : (kernel.divisor ? e * kernel.taps[t].weight / kernel.divisor : 0);
        uint8_t* target = gray + ty * W + tx;
        *target = Bilevel_ClampByte(*target + q);
      }
    }
  }
  free(share);
}

}  // namespace

// 'Bilevel_Diffuse()' - The diffusion of Image_Bilevel into mono, with an
// optional mask of kept dots; false when the working bytes could not be had.
bool Bilevel_Diffuse(const uint8_t* rgb, uint8_t* mono, int32_t W, int32_t H,
                     const TDiffusionKernel& kernel, int32_t threshold, const uint8_t* keep) {
  // Floyd-Steinberg on a panel of at least 3 x 3 needs one row of working
  // bytes; any other kernel works on a whole W x H copy.
  const size_t size = static_cast<size_t>(W) * H;
  bool fast = &kernel == &g_floydSteinbergKernel && W >= 3 && H >= 3;
  uint8_t* gray = static_cast<uint8_t*>(malloc(fast ? W : (size ? size : 1)));
  if (!gray) return false;
  uint8_t lighten[256];
  for (int32_t v = 0; v < 256; ++v) {
    int32_t l = v + ((255 - v) * 40) / 100;
    lighten[v] = static_cast<uint8_t>(l > 255 ? 255 : l);
  }
  if (fast) {
    if (!Cpu_HaveAvx2() || !Bilevel_FloydSteinbergWave(rgb, mono, W, H, threshold, lighten, keep))
      Bilevel_FloydSteinberg(rgb, mono, gray, W, H, threshold, lighten, keep);
  } else {
    for (size_t i = 0; i < size; ++i) gray[i] = lighten[rgb[3 * i]];
    Bilevel_Generic(gray, mono, W, H, kernel, threshold, keep);
  }
  free(gray);
  return true;
}

const TDiffusionKernel g_floydSteinbergKernel = {16, 4, kFloydSteinbergTaps};

// 'Image_Bilevel()' - Make a W x H black panel (255 = print) from the first
// sample of each dot of rgb: every level is first moved 40 % of the way to
// white, then diffused with kernel in row order, left to right; a dot below
// threshold prints.  The error is carried in the working bytes, clamped to
// 0 ... 255 at every write, and never pushed into the last row or column.
// *out receives the panel, which the caller frees with free(); it is null
// on every failure.
void Image_Bilevel(TPrintingTask* task, const uint8_t* rgb, uint8_t** out,
                   const TDiffusionKernel& kernel, int32_t threshold) {
  Log_Write(LOG_ENTRYEXIT, ">>>> Image_Bilevel");
  TPanelGeometry panel = Panel_Geometry(task);
  const int32_t W = static_cast<int32_t>(panel.width), H = static_cast<int32_t>(panel.height);
  const size_t size = static_cast<size_t>(W) * H;
  uint8_t* mono = static_cast<uint8_t*>(malloc(size ? size : 1));
  if (out) *out = mono;
  if (!mono) {
    Log_Write(LOG_LOG, "ERROR: Image_Bilevel --> (monoBuffer) out of memory");
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_Bilevel[1][nullptr]");
    return;
  }

  if (!rgb || !Bilevel_Diffuse(rgb, mono, W, H, kernel, threshold, nullptr)) {
    Log_Write(LOG_LOG, "ERROR: Image_Bilevel --> (grayBits) out of memory");
    free(mono);
    if (out) *out = nullptr;
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_Bilevel[2][nullptr]");
    return;
  }
  if (!out) free(mono);
  Log_Write(LOG_ENTRYEXIT, "<<<< Image_Bilevel");
}
