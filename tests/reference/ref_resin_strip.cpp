// Reference resin strip: a whole-panel mask, luminance of every dot.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "reference/reference_stages.h"

namespace {

bool Ref_Empty(const TArea& a) { return a.left == 0 && a.top == 0 && a.right == 0 && a.bottom == 0; }

// 'Ref_Mark()' - Set every mask byte of each used area's span to value.
void Ref_Mark(const TArea* group, uint8_t value, uint8_t* mask, uint32_t W, uint32_t H) {
  for (int32_t a = 0; a < AREAS_PER_GROUP; ++a) {
    if (Ref_Empty(group[a])) continue;
    int32_t x0, y0, x1, y1;
    Ref_AreaToSpan(&group[a], W, H, &x0, &y0, &x1, &y1);
    for (int32_t y = y0; y < y1; ++y)
      for (int32_t x = x0; x < x1; ++x) mask[static_cast<size_t>(y) * W + x] = value;
  }
}

}  // namespace

void Ref_AreaToSpan(const TArea* area, uint32_t width, uint32_t height, int32_t* x0, int32_t* y0,
                    int32_t* x1, int32_t* y1) {
  int32_t W = static_cast<int32_t>(width), H = static_cast<int32_t>(height);
  int32_t l = static_cast<int32_t>(area->left), t = static_cast<int32_t>(area->top);
  int32_t r = static_cast<int32_t>(area->right), b = static_cast<int32_t>(area->bottom);
  *x0 = l < 0 ? 0 : l;
  *y0 = t < 0 ? 0 : t;
  int32_t ex = r == 0 ? W : r, ey = b == 0 ? H : b;
  *x1 = *x0 + ex < W ? *x0 + ex : W;
  *y1 = *y0 + ey < H ? *y0 + ey : H;
}

int32_t Ref_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  if (!out) return 25;
  if (!rgb) return 1;
  TPanelGeometry g = Panel_Geometry(task);
  size_t n = static_cast<size_t>(g.width) * g.height;
  uint8_t* panel = static_cast<uint8_t*>(calloc(n + 1, 1));
  uint8_t* mask = static_cast<uint8_t*>(calloc(n + 1, 1));
  *out = panel;
  int32_t s = task->sideIndex;
  const TArea* inc = task->resinAreas[s][0];
  const TArea* exc = task->resinAreas[s][1];
  bool anyInclude = false;
  for (int32_t a = 0; a < AREAS_PER_GROUP; ++a) anyInclude |= !Ref_Empty(inc[a]);
  if (anyInclude) Ref_Mark(inc, 1, mask, g.width, g.height);
  else memset(mask, 1, n);
  Ref_Mark(exc, 0, mask, g.width, g.height);
  for (size_t i = 0; i < n; ++i) {
    double l = 0.299 * rgb[3 * i] + 0.587 * rgb[3 * i + 1] + 0.114 * rgb[3 * i + 2];
    uint8_t lum = l > 255.0 ? 255 : static_cast<uint8_t>(l);
    if (mask[i] != 0 && lum <= task->resinFlag[s]) panel[i] = 255;
  }
  free(mask);
  return 0;
}
