// Page and panel buffers: the luminance of a colour panel, in place or as a new plane.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/luma.h"
#include "imaging/panel.h"

namespace {

// 'Luma_PixelCount()' - W x H of the task's model.
inline size_t Luma_PixelCount(const TPrintingTask* task) {
  TPanelGeometry g = Panel_Geometry(task);
  return static_cast<size_t>(g.width) * g.height;
}

// 'Luma_NewPlane()' - A new W x H plane holding the luminance of every pixel
// of rgb XORed with flip, or null when rgb is null or the plane could not be
// allocated.
uint8_t* Luma_NewPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t flip) {
  if (!rgb) return nullptr;
  size_t count = Luma_PixelCount(task);
  uint8_t* plane = static_cast<uint8_t*>(malloc(count ? count : 1));
  if (plane) Luma_Plane(rgb, plane, count, flip);
  return plane;
}

}  // namespace

// 'Image_Luminance()' - 0.299 R + 0.587 G + 0.114 B in double, truncated.
uint8_t Image_Luminance(uint8_t r, uint8_t g, uint8_t b) { return Luma_Dot(r, g, b); }

// 'Image_ToGrayInPlace()' - Every pixel of the W x H x 3 panel becomes its
// luminance in R, G and B.  Returns 1 when rgb is null, else 0.
int32_t Image_ToGrayInPlace(TPrintingTask* task, uint8_t* rgb) {
  if (!rgb) return 1;
  // A row's luminance goes to a small buffer first, then is spread back
  // over the row's three channels.
  uint8_t y[1024];
  size_t count = Luma_PixelCount(task);
  for (size_t done = 0; done < count;) {
    size_t n = count - done < sizeof y ? count - done : sizeof y;
    Luma_Plane(rgb, y, n, 0);
    for (size_t i = 0; i < n; ++i, rgb += 3) rgb[0] = rgb[1] = rgb[2] = y[i];
    done += n;
  }
  return 0;
}

// 'Image_ToGrayPlane()' - A new W x H plane with the luminance of every
// pixel of the W x H x 3 panel, in row-major order.  *out is null when rgb is
// null or the plane could not be allocated (the caller then skips the
// panel); otherwise the caller frees *out.  Returns 0.
int32_t Image_ToGrayPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  *out = Luma_NewPlane(task, rgb, 0);
  return 0;
}

// 'Image_ToInvertedGrayPlane()' - As Image_ToGrayPlane, each byte then
// inverted (255 minus the luminance), in the same pass.  Returns 0.
int32_t Image_ToInvertedGrayPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  *out = Luma_NewPlane(task, rgb, 0xFF);
  return 0;
}
