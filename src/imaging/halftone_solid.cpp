// The black panel of a side with pure black kept solid and the rest diffused.
// Copyright 2026 The rastertobrellian authors.
//
// The "SolidBlack" black rendering: a dot of pure black (0,0,0) always
// prints and takes no part in the error diffusion, so text and bar codes
// beside a photo stay solid; every other dot is lightened and diffused
// exactly as Image_Bilevel does with g_floydSteinbergKernel and threshold
// 127 (the same taps, the same edge rules, the same clamping), so a photo
// prints as it does with the designed rendering.  It is the shared
// diffusion of Image_Bilevel with a mask of the pure black dots, made in
// the panel itself.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/bilevel.h"
#include "imaging/panel.h"
#include "imaging/pure_map.h"
#include "imaging/stages.h"
#include "log/log.h"

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
  // A pure image is mapped as Image_Halftone maps it, in the pass that
  // finds it pure.  Any other image gets the mask of its pure black dots
  // in the panel, and the diffusion reads each mask byte before it writes
  // the panel byte in its place.
  if (mono && !Pure_MapBlack(rgb, mono, dots)) {
    Pure_MaskBlack(rgb, mono, dots);
    if (!Bilevel_Diffuse(rgb, mono, W, H, g_floydSteinbergKernel, 127, mono)) {
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
