// Reference conversion of the task's page to the printer-RGB panel.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include <cups/raster.h>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "reference/reference_stages.h"

// 'Ref_CUPSToPrinterRGB()' - Refuse all but 3 bytes per pixel outside
// CMY/KCMY/KCMYcm; copy (landscape) or turn (portrait) into a working
// image; if not panel-sized fit, resample and place top-left on white.
int32_t Ref_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out, uint32_t rowStep) {
  if (!out) return 1;
  const cups_page_header2_t* hd = task->pageHeader;
  uint32_t w = hd->cupsWidth, h = hd->cupsHeight, bpl = hd->cupsBytesPerLine;
  uint32_t bpp = w ? bpl / w : 0;
  uint32_t cs = hd->cupsColorSpace;
  if (cs == 4 || cs == 8 || cs == 9 || bpp != 3) return 1;
  TPanelGeometry g = Panel_Geometry(task);
  uint32_t W = g.width, H = g.height;
  uint8_t* work = static_cast<uint8_t*>(malloc(static_cast<size_t>(w) * h * 3 + 1));
  uint32_t cw, ch;
  if (h <= w) {
    memcpy(work, task->pageBuffer, static_cast<size_t>(w) * h * 3);
    cw = w;
    ch = h;
  } else {
    memset(work, 0, static_cast<size_t>(w) * h * 3);
    for (uint32_t k = 0; k < w; ++k)
      for (uint32_t y = 0; y < h; ++y)
        memcpy(work + (static_cast<size_t>(k) * h + y) * 3,
               task->pageBuffer + static_cast<size_t>(y) * bpl + 3 * (w - 1 - k), 3);
    cw = h;
    ch = w;
  }
  if (cw == W && ch == H) {
    *out = work;
    return 0;
  }
  uint32_t fw = cw, fh = ch;
  Image_FitSize(task, W, H, &fw, &fh);
  uint8_t* scaled = nullptr;
  Ref_BSplineResize(work, cw, ch, fw, fh, &scaled, rowStep);
  free(work);
  work = scaled;
  cw = fw;
  ch = fh;
  uint8_t* result = static_cast<uint8_t*>(malloc(static_cast<size_t>(W) * H * 3));
  memset(result, 0xFF, static_cast<size_t>(W) * H * 3);
  for (uint32_t y = 0; y < (H < ch ? H : ch); ++y)
    memcpy(result + static_cast<size_t>(y) * W * 3, work + static_cast<size_t>(y) * cw * 3,
           3 * static_cast<size_t>(cw < W ? cw : W));
  free(work);
  *out = result;
  return 0;
}
