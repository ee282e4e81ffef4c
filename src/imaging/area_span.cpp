// The dots of a panel that an area covers, for the resin and overlay panels.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/stages.h"
#include "options/area.h"

// 'Area_ToSpan()' - The dots x0 <= x < x1, y0 <= y < y1 of a W x H panel
// that area covers: left and top (signed, negative read as 0) are the
// corner, right and bottom are extents (0 reaching the panel's edge), and
// the span is cut at W and H.  Nothing is covered unless x1 > x0 and
// y1 > y0.
void Area_ToSpan(const TArea* area, uint32_t width, uint32_t height, int32_t* x0, int32_t* y0,
                 int32_t* x1, int32_t* y1) {
  const int64_t W = static_cast<int32_t>(width), H = static_cast<int32_t>(height);
  int64_t left = static_cast<int32_t>(area->left), top = static_cast<int32_t>(area->top);
  int64_t ex = static_cast<int32_t>(area->right), ey = static_cast<int32_t>(area->bottom);
  if (left < 0) left = 0;
  if (top < 0) top = 0;
  if (ex == 0) ex = W;
  if (ey == 0) ey = H;
  *x0 = static_cast<int32_t>(left);
  *y0 = static_cast<int32_t>(top);
  *x1 = static_cast<int32_t>(left + ex < W ? left + ex : W);
  *y1 = static_cast<int32_t>(top + ey < H ? top + ey : H);
}
