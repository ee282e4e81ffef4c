// The resin black panel of a ColorK side: dark dots inside the resin areas.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>
#include <cstring>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "log/log.h"

namespace {

// 'Resin_IsEmpty()' - True for an area whose four values are all 0.
bool Resin_IsEmpty(const TArea& area) {
  return area.left == 0 && area.top == 0 && area.right == 0 && area.bottom == 0;
}

// 'Resin_MarkAreas()' - Set the mask to value on the span of every used
// area of group, logging each span with its word ("include"/"exclude").
void Resin_MarkAreas(const TArea* group, const char* word, uint8_t value, uint8_t* mask,
                     uint32_t W, uint32_t H) {
  for (int32_t a = 0; a < AREAS_PER_GROUP; ++a) {
    if (Resin_IsEmpty(group[a])) continue;
    int32_t x0, y0, x1, y1;
    Area_ToSpan(&group[a], W, H, &x0, &y0, &x1, &y1);
    Log_Write(LOG_LOG, "Image_StripToResin --> %s: %d,%d - %d,%d", word, x0, y0, x1, y1);
    if (x1 <= x0 || y1 <= y0) continue;
    for (int32_t y = y0; y < y1; ++y)
      memset(mask + static_cast<size_t>(y) * W + x0, value, static_cast<size_t>(x1 - x0));
  }
}

// 'Resin_Used()' - Number of used areas in a group.
int32_t Resin_Used(const TArea* group) {
  int32_t used = 0;
  for (int32_t a = 0; a < AREAS_PER_GROUP; ++a) used += Resin_IsEmpty(group[a]) ? 0 : 1;
  return used;
}

}  // namespace

// 'Image_StripToResin()' - Make the W x H resin panel (255 = resin) of the
// side image rgb into *out; the caller frees it with free().  A dot takes
// resin when it lies inside an include area of the side (the whole card
// when there is none) and outside every exclude area, and its luminance is
// at most the side's resinFlag.  Returns 0; 25 when out is null; 1 when
// rgb is null or memory ran out (the panel, if allocated, stays in *out,
// all zero).  Writes no entry or exit lines.
int32_t Image_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  if (!out) return 25;
  if (!rgb) return 1;
  TPanelGeometry panel = Panel_Geometry(task);
  const uint32_t W = panel.width, H = panel.height;
  const size_t dots = static_cast<size_t>(W) * H;
  uint8_t* resin = static_cast<uint8_t*>(calloc(dots ? dots : 1, 1));
  *out = resin;
  if (!resin) {
    Log_Write(LOG_LOG, "Image_StripToResin: Unable to allocate memory!");
    return 1;
  }
  uint8_t* mask = static_cast<uint8_t*>(calloc(dots ? dots : 1, 1));
  if (!mask) {
    Log_Write(LOG_LOG, "Image_StripToResin: Unable to allocate memory!");
    return 1;
  }
  const int32_t side = task->sideIndex == SIDE_BACK ? SIDE_BACK : SIDE_FRONT;
  const TArea* include = task->resinAreas[side][AREA_GROUP_INCLUDE];
  const TArea* exclude = task->resinAreas[side][AREA_GROUP_EXCLUDE];
  if (Resin_Used(include) > 0) {
    Resin_MarkAreas(include, "include", 1, mask, W, H);
  } else {
    Log_Write(LOG_LOG, "Image_StripToResin --> include: entire card");
    memset(mask, 1, dots);
  }
  if (Resin_Used(exclude) > 0) Resin_MarkAreas(exclude, "exclude", 0, mask, W, H);
  else Log_Write(LOG_LOG, "Image_StripToResin --> exclude: none");

  // trunc(L) <= flag, with L = 0.299 r + 0.587 g + 0.114 b summed in double
  // in this order (values above 255 taken as 255), is L < flag + 1; the
  // three products come from tables holding exactly the same doubles.
  double red[256], green[256], blue[256];
  for (int32_t v = 0; v < 256; ++v) {
    red[v] = 0.299 * v;
    green[v] = 0.587 * v;
    blue[v] = 0.114 * v;
  }
  const uint8_t flag = task->resinFlag[side];
  const double limit = flag + 1.0;
  for (size_t i = 0; i < dots; ++i) {
    if (!mask[i]) continue;
    const uint8_t* p = rgb + 3 * i;
    if (flag == 255 || red[p[0]] + green[p[1]] + blue[p[2]] < limit) resin[i] = 255;
  }
  free(mask);
  return 0;
}
