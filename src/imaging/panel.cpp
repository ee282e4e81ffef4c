// Page and panel buffers: model tables, page allocation, rotation, fitting
// and luminance.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/panel.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "util/signal_block.h"

std::map<uint32_t, TPanelGeometry> g_panelGeometry;
std::map<uint32_t, uint32_t> g_modelResolution;

namespace {

// One model: id, panel size in dots, resolution in dots per inch.
struct TModelPanel {
  uint32_t model;
  uint32_t width;
  uint32_t height;
  uint32_t dpi;
};

const TModelPanel kModelPanels[] = {
    {1030, 1036, 664, 300},
    {1035, 1036, 664, 300},
    {1060, 2072, 1328, 600},
};

// Largest element Image_Rotate180 swaps.
constexpr uint32_t ROTATE_MAX_ELEMENT = 64;

}  // namespace

// 'Panel_BuildTables()' - Fill g_panelGeometry and g_modelResolution from
// the model table; called by the start-up table builder.
void Panel_BuildTables() {
  for (const TModelPanel& m : kModelPanels) {
    g_panelGeometry[m.model] = TPanelGeometry{m.width, m.height};
    g_modelResolution[m.model] = m.dpi;
  }
}

// 'Panel_Geometry()' - The panel size of the task's printerModel; a model
// missing from the table reads as 0 x 0 (the table is never changed here).
TPanelGeometry Panel_Geometry(const TPrintingTask* task) {
  auto it = g_panelGeometry.find(static_cast<uint32_t>(task->printerModel));
  return it == g_panelGeometry.end() ? TPanelGeometry{0, 0} : it->second;
}

// 'CUPS_PageBytes()' - Size of the page buffer in 64 bits; false when the
// header asks for more than the caps allow.
bool CUPS_PageBytes(const cups_page_header2_t* header, uint64_t* bytes) {
  uint64_t line = header->cupsBytesPerLine;
  uint64_t rows = header->cupsHeight;
  *bytes = line * rows;
  return line <= PAGE_MAX_LINE_BYTES && rows <= PAGE_MAX_ROWS && *bytes <= PAGE_MAX_BYTES;
}

// 'CUPS_AllocPage()' - Allocate the zero-filled page buffer.  A header that
// exceeds the caps, or an allocation that fails, ends the process at once
// with status 1 after "ERROR: Unable to allocate memory!".
int32_t CUPS_AllocPage(TPrintingTask* task, const cups_page_header2_t* header) {
  Log_Write(LOG_LOG, "CUPS_AllocPage(%d,%d,%d)", static_cast<int>(header->cupsWidth),
            static_cast<int>(header->cupsHeight), static_cast<int>(header->cupsBytesPerLine));
  uint64_t bytes = 0;
  uint8_t* block = nullptr;
  {
    TSignalBlock hold;   // no exit handler while the allocator is busy
    free(task->pageBuffer);
    task->pageBuffer = nullptr;
    if (CUPS_PageBytes(header, &bytes))
      block = static_cast<uint8_t*>(calloc(1, bytes ? static_cast<size_t>(bytes) : 1));
  }
  if (!block) {
    fputs("ERROR: Unable to allocate memory!\n", stderr);
    g_exitStatus = 1;
    _exit(1);
  }
  task->pageBuffer = block;
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

// The three products of the luminance sum, one table per channel.  Each
// entry is the very double the formula computes (c * v, rounded once), and
// the sum adds them in the formula's order, so the result is bit-identical
// to 0.299 * R + 0.587 * G + 0.114 * B; only the multiplications are saved.
struct TLumaProducts {
  double r[256];
  double g[256];
  double b[256];
  TLumaProducts() {
    for (int v = 0; v < 256; ++v) {
      double d = static_cast<double>(v);
      r[v] = 0.299 * d;
      g[v] = 0.587 * d;
      b[v] = 0.114 * d;
    }
  }
};

const TLumaProducts& Luma_Products() {
  static const TLumaProducts products;
  return products;
}

// 'Luma_Byte()' - The luminance sum truncated toward zero; above 255.0 the
// byte is 0xFF.
inline uint8_t Luma_Byte(const TLumaProducts& t, uint8_t r, uint8_t g, uint8_t b) {
  double y = t.r[r] + t.g[g] + t.b[b];
  return y > 255.0 ? 0xFF : static_cast<uint8_t>(static_cast<int>(y));
}

// 'Luma_PixelCount()' - W x H of the task's model.
inline size_t Luma_PixelCount(const TPrintingTask* task) {
  TPanelGeometry g = Panel_Geometry(task);
  return static_cast<size_t>(g.width) * g.height;
}

}  // namespace

// 'Image_Luminance()' - 0.299 R + 0.587 G + 0.114 B in double, truncated.
uint8_t Image_Luminance(uint8_t r, uint8_t g, uint8_t b) {
  return Luma_Byte(Luma_Products(), r, g, b);
}

// 'Image_ToGrayInPlace()' - Every pixel of the W x H x 3 panel becomes its
// luminance in R, G and B.  Returns 1 when rgb is null, else 0.
int32_t Image_ToGrayInPlace(TPrintingTask* task, uint8_t* rgb) {
  if (!rgb) return 1;
  const TLumaProducts& t = Luma_Products();
  size_t count = Luma_PixelCount(task);
  for (size_t i = 0; i < count; ++i, rgb += 3) {
    uint8_t y = Luma_Byte(t, rgb[0], rgb[1], rgb[2]);
    rgb[0] = rgb[1] = rgb[2] = y;
  }
  return 0;
}

// 'Image_ToGrayPlane()' - A new W x H plane with the luminance of every
// pixel of the W x H x 3 panel, in row-major order.  *out is null when rgb is
// null or the plane could not be allocated (the caller then skips the
// panel); otherwise the caller frees *out.  Returns 0.
int32_t Image_ToGrayPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  *out = nullptr;
  if (!rgb) return 0;
  size_t count = Luma_PixelCount(task);
  uint8_t* plane = static_cast<uint8_t*>(malloc(count ? count : 1));
  if (!plane) return 0;
  const TLumaProducts& t = Luma_Products();
  for (size_t i = 0; i < count; ++i, rgb += 3) plane[i] = Luma_Byte(t, rgb[0], rgb[1], rgb[2]);
  *out = plane;
  return 0;
}
