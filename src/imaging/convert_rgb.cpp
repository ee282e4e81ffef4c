// The raster page as the printer-RGB working image of a card side.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include <cups/raster.h>

#include "driver/printing_task.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "imaging/resample.h"
#include "imaging/stages.h"
#include "log/log.h"
#include "util/raster_field.h"

namespace {

// Side of the square tiles in which a turned page is copied.
constexpr uint32_t kTile = 32;

// 'Convert_Colorants()' - Number of colorants of a refused colour space, or
// 0 when the space is not one of the refused ones.
int32_t Convert_Colorants(uint32_t colorSpace) {
  switch (colorSpace) {
    case CUPS_CSPACE_CMY: return 3;
    case CUPS_CSPACE_KCMY: return 4;
    case CUPS_CSPACE_KCMYcm: return 6;
    default: return 0;
  }
}

// 'Convert_FillWhite()' - Paint white everything of the W x H x 3 panel
// outside its top-left width x height corner.
void Convert_FillWhite(uint8_t* panel, uint32_t W, uint32_t H, uint32_t width, uint32_t height) {
  size_t stride = static_cast<size_t>(W) * 3;
  if (width < W)
    for (uint32_t y = 0; y < height; ++y)
      memset(panel + y * stride + static_cast<size_t>(width) * 3, 0xFF, (W - width) * 3);
  memset(panel + height * stride, 0xFF, (H - height) * stride);
}

}  // namespace

// 'Image_CopySource()' - Tile by tile, so that a turned page is read and
// written a cache line at a time rather than one pixel per line.
void Image_CopySource(const TImageSource& source, uint32_t width, uint32_t height, uint8_t* dst,
                      size_t dstStride) {
  for (uint32_t ty = 0; ty < height; ty += kTile) {
    uint32_t yEnd = height - ty < kTile ? height : ty + kTile;
    for (uint32_t tx = 0; tx < width; tx += kTile) {
      uint32_t xEnd = width - tx < kTile ? width : tx + kTile;
      for (uint32_t y = ty; y < yEnd; ++y) {
        const uint8_t* s = source.origin + y * source.rowStride + tx * source.colStride;
        uint8_t* d = dst + y * dstStride + static_cast<size_t>(tx) * 3;
        for (uint32_t x = tx; x < xEnd; ++x, s += source.colStride, d += 3) {
          d[0] = s[0];
          d[1] = s[1];
          d[2] = s[2];
        }
      }
    }
  }
}

// 'Image_CUPSToPrinterRGB()' - Turn the task's page (pageHeader, pageBuffer)
// into a new W x H x 3 panel stored in *out, which the caller frees with
// free().  Only 8-bit chunky RGB is accepted (a banded or planar page is
// refused for its colour order); a portrait page is turned a quarter
// counter-clockwise; a page of any other size than the panel is
// fitted and resampled, and placed top-left on white.  A landscape page of
// exactly the panel's size with rows of exactly 3 x W bytes is handed out
// as it is: pageBuffer then moves to *out and the task's pointer is null.
// Returns 0, or 1 (nothing stored) with one log line on failure.
int32_t Image_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out) {
  if (!out || !task || !task->pageHeader) return 1;
  const cups_page_header2_t* header = task->pageHeader;
  uint32_t w = header->cupsWidth, h = header->cupsHeight, lineBytes = header->cupsBytesPerLine;
  uint32_t bpp = w ? lineBytes / w : 0;   // a zero width reads as 0 bytes per pixel

  int32_t colorants = Convert_Colorants(Header_Word(header->cupsColorSpace));
  if (colorants != 0) {
    if (bpp == 3) Log_Write(LOG_LOG, "ERR: CUPS number planes = %d.  Only supports 1.", colorants);
    else Log_Write(LOG_LOG, "ERR: CUPS bytes per pixel = %d.  Only supports 3.", bpp);
    return 1;
  }
  if (bpp != 3) {
    Log_Write(LOG_LOG, "ERR: CUPS bytes per pixel = %d.  Only supports 3.", bpp);
    return 1;
  }
  // Banded and planar lines hold one colour after the other, not pixels,
  // even where their length would pass for three bytes per pixel.
  uint32_t order = Header_Word(header->cupsColorOrder);
  if (order != CUPS_ORDER_CHUNKED) {
    Log_Write(LOG_LOG, "ERR: CUPS color order = %d.  Only supports 0.", static_cast<int>(order));
    return 1;
  }
  // bpp 3 means lineBytes >= 3 w.  The page buffer holds lineBytes x h
  // bytes unless the page is beyond the caps of the page allocation (then
  // it was never allocated); such a page, or a missing buffer, is refused
  // as memory that could not be had.
  uint64_t pageBytes = 0;
  if (!CUPS_PageBytes(header, &pageBytes) || (pageBytes > 0 && !task->pageBuffer)) {
    Log_Write(LOG_LOG, "ERR: CUPSToPrinterRGB --> out of memory.");
    return 1;
  }

  TPanelGeometry panel = Panel_Geometry(task);
  const uint32_t W = panel.width, H = panel.height;
  TImageSource source;
  if (h <= w) {   // landscape: the page's bytes as one block of 3 w byte rows
    source = {task->pageBuffer, 3, static_cast<ptrdiff_t>(w) * 3, w, h};
  } else {        // portrait: working row k is page column w - 1 - k, top down
    source = {task->pageBuffer + (static_cast<size_t>(w) - 1) * 3,
              static_cast<ptrdiff_t>(lineBytes), -3, h, w};
  }
  const size_t stride = static_cast<size_t>(W) * 3;

  if (source.width == W && source.height == H && h <= w && lineBytes == stride) {
    *out = task->pageBuffer;
    task->pageBuffer = nullptr;
    return 0;
  }
  const size_t bytes = stride * H;
  uint8_t* result = static_cast<uint8_t*>(malloc(bytes ? bytes : 1));
  if (!result) {
    Log_Write(LOG_LOG, "ERR: CUPSToPrinterRGB --> out of memory.");
    return 1;
  }
  if (source.width == W && source.height == H) {
    if (h <= w) memcpy(result, source.origin, bytes);
    else Image_CopySource(source, W, H, result, stride);
    *out = result;
    return 0;
  }

  Log_Write(LOG_LOG, "Image_CUPSToPrinterRGB --> AspectResize(%d,%d)", source.width, source.height);
  uint32_t fw = source.width, fh = source.height;
  Image_FitSize(task, W, H, &fw, &fh);
  uint32_t cw = fw < W ? fw : W, ch = fh < H ? fh : H;
  if (Image_BSplineResample(source, fw, fh, cw, ch, result, stride) != 0) {
    // No memory to resample with: place the page unscaled.
    Warn_PageUnscaled(task, source.width, source.height);
    cw = source.width < W ? source.width : W;
    ch = source.height < H ? source.height : H;
    Image_CopySource(source, cw, ch, result, stride);
  }
  Convert_FillWhite(result, W, H, cw, ch);
  *out = result;
  return 0;
}
