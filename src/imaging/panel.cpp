// Page and panel buffers: model tables, page allocation, rotation, fitting
// and luminance.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/panel.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "driver/printing_task.h"
#include "imaging/luma.h"
#include "log/log.h"
#include "status/models.h"
#include "util/signal_block.h"

std::map<uint32_t, TPanelGeometry> g_panelGeometry;
std::map<uint32_t, uint32_t> g_modelResolution;

namespace {

// Largest element Image_Rotate180 swaps.
constexpr uint32_t ROTATE_MAX_ELEMENT = 64;

}  // namespace

// 'Panel_BuildTables()' - Fill g_panelGeometry and g_modelResolution from
// the model table; called by the start-up table builder.
void Panel_BuildTables() {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  for (int32_t i = 0; i < count; ++i) {
    g_panelGeometry[models[i].id] = TPanelGeometry{models[i].panelWidth, models[i].panelHeight};
    g_modelResolution[models[i].id] = models[i].dpi;
  }
}

// 'Panel_ModelGeometry()' - The panel size of model; a model missing from
// the table reads as 0 x 0 (the table is never changed here).
TPanelGeometry Panel_ModelGeometry(uint32_t model) {
  auto it = g_panelGeometry.find(model);
  return it == g_panelGeometry.end() ? TPanelGeometry{0, 0} : it->second;
}

// 'Panel_ModelResolution()' - The dots per inch of model; 0 for a model
// missing from the table.
uint32_t Panel_ModelResolution(uint32_t model) {
  auto it = g_modelResolution.find(model);
  return it == g_modelResolution.end() ? 0 : it->second;
}

TPanelGeometry Panel_Geometry(const TPrintingTask* task) {
  return Panel_ModelGeometry(static_cast<uint32_t>(task->printerModel));
}

// 'CUPS_PageBytes()' - Size of the page buffer in 64 bits; false when the
// header asks for more than the caps allow.
bool CUPS_PageBytes(const cups_page_header2_t* header, uint64_t* bytes) {
  uint64_t line = header->cupsBytesPerLine;
  uint64_t rows = header->cupsHeight;
  *bytes = line * rows;
  return line <= PAGE_MAX_LINE_BYTES && rows <= PAGE_MAX_ROWS && *bytes <= PAGE_MAX_BYTES;
}

// 'CUPS_NoMemory()' - The page could not be had: the spooler's message, and
// the process ends at once with status 1.
[[noreturn]] static void CUPS_NoMemory() {
  fputs("ERROR: Unable to allocate memory!\n", stderr);
  _exit(1);
}

// 'CUPS_LogPage()' - The line that announces every page's buffer.
static void CUPS_LogPage(const cups_page_header2_t* header) {
  Log_Write(LOG_LOG, "CUPS_AllocPage(%d,%d,%d)", static_cast<int>(header->cupsWidth),
            static_cast<int>(header->cupsHeight), static_cast<int>(header->cupsBytesPerLine));
}

// 'CUPS_AllocPage()' - Allocate the zero-filled page buffer.  A header that
// exceeds the caps, or an allocation that fails, ends the process at once
// with status 1 after "ERROR: Unable to allocate memory!".
int32_t CUPS_AllocPage(TPrintingTask* task, const cups_page_header2_t* header, bool zeroFill) {
  CUPS_LogPage(header);
  uint64_t bytes = 0;
  uint8_t* block = nullptr;
  {
    TSignalBlock hold;   // no exit handler while the allocator is busy
    free(task->pageBuffer);
    task->pageBuffer = nullptr;
    if (CUPS_PageBytes(header, &bytes)) {
      size_t size = bytes ? static_cast<size_t>(bytes) : 1;
      block = static_cast<uint8_t*>(zeroFill ? calloc(1, size) : malloc(size));
    }
  }
  if (!block) CUPS_NoMemory();
  task->pageBuffer = block;
  return 0;
}

// 'CUPS_AdmitPage()' - The same line and the same caps as CUPS_AllocPage,
// for a page that will only be drained: nothing is allocated, and a page
// beyond the caps ends the job exactly as a failed allocation does.
int32_t CUPS_AdmitPage(TPrintingTask* task, const cups_page_header2_t* header) {
  CUPS_LogPage(header);
  {
    TSignalBlock hold;
    free(task->pageBuffer);
    task->pageBuffer = nullptr;
  }
  uint64_t bytes = 0;
  if (!CUPS_PageBytes(header, &bytes)) CUPS_NoMemory();
  return 0;
}

// 'Image_Rotate180()' - A 180-degree turn is the reversal of the sequence of
// elements: element i and element N - 1 - i change places.
int32_t Image_Rotate180(TPrintingTask*, uint8_t* buffer, uint32_t width, uint32_t height,
                        uint32_t elementSize) {
  if (!buffer || elementSize == 0 || elementSize > ROTATE_MAX_ELEMENT) return 0;
  size_t count = static_cast<size_t>(width) * height;
  if (count < 2) return 0;
  uint8_t* front = buffer;
  uint8_t* back = buffer + (count - 1) * elementSize;
  if (elementSize == 1) {
    for (; front < back; ++front, --back) {
      uint8_t t = *front;
      *front = *back;
      *back = t;
    }
  } else if (elementSize == 3) {
    for (; front < back; front += 3, back -= 3) {
      uint8_t a = front[0], b = front[1], c = front[2];
      front[0] = back[0], front[1] = back[1], front[2] = back[2];
      back[0] = a, back[1] = b, back[2] = c;
    }
  } else {
    uint8_t swap[ROTATE_MAX_ELEMENT];
    for (; front < back; front += elementSize, back -= elementSize) {
      memcpy(swap, front, elementSize);
      memcpy(front, back, elementSize);
      memcpy(back, swap, elementSize);
    }
  }
  return 0;
}

// 'Image_FitSize()' - Scale (width, height) by the smaller of the two axis
// ratios (sy on equality), truncating.  A zero width or height has no
// aspect ratio and is left as it is.
void Image_FitSize(TPrintingTask*, uint32_t targetWidth, uint32_t targetHeight, uint32_t* width,
                   uint32_t* height) {
  if (*width == 0 || *height == 0) return;
  double sx = static_cast<double>(targetWidth) / static_cast<double>(*width);
  double sy = static_cast<double>(targetHeight) / static_cast<double>(*height);
  double scale = sy > sx ? sx : sy;
  *width = static_cast<uint32_t>(std::trunc(static_cast<double>(*width) * scale));
  *height = static_cast<uint32_t>(std::trunc(scale * static_cast<double>(*height)));
}

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
