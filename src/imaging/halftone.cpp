// The black panel of a side: pure black and white mapped, anything else diffused.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "imaging/pure_map.h"
#include "imaging/stages.h"
#include "log/log.h"

// 'Image_Halftone()' - Make the W x H black panel (255 = print) of the side
// image rgb into *out; the caller frees it with free().  An image of only
// pure black and pure white dots prints its black dots solid; any grey dot
// sends the whole image through Image_Bilevel with g_floydSteinbergKernel
// and threshold 127.  Returns 0 (also when the diffusion failed and *out
// is null), 25 when out or rgb is null, 1 when the pure panel could not be
// allocated (*out null).
int32_t Image_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  TPanelGeometry panel = Panel_Geometry(task);
  const size_t dots = static_cast<size_t>(panel.width) * panel.height;
  Log_Write(LOG_ENTRYEXIT, ">>>> Image_Halftone");
  if (!out) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_Halftone[1][nullptr]");
    return 25;
  }
  if (!rgb) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Image_Halftone[2][nullptr]");
    return 25;
  }
  // The panel is taken first so that the purity scan and the mapping of a
  // pure image share one pass; a grey dot drops it and diffuses instead.
  // Without memory for it the scan runs alone, so that a grey image still
  // reaches the diffusion and a pure one fails as it must.
  uint8_t* mono = static_cast<uint8_t*>(malloc(dots ? dots : 1));
  bool pure = mono ? Pure_MapBlack(rgb, mono, dots) : Pure_MapBlackScalar(rgb, nullptr, dots);
  if (!pure) {
    free(mono);
    Image_Bilevel(task, rgb, out, g_floydSteinbergKernel, 127);
  } else {
    *out = mono;
    if (!mono) {
      Log_Write(LOG_ENTRYEXIT, "<<<< Image_Halftone[3][nullptr]");
      return 1;
    }
  }
  Log_Write(LOG_ENTRYEXIT, "<<<< Image_Halftone[success]");
  return 0;
}
