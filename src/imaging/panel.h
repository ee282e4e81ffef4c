// Panel types, the model tables and the shared buffer operations.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <map>

#include <cups/raster.h>

class TPrintingTask;

// Panel type codes; also the panel field of ICMD_STARTIMAGE.
constexpr int32_t PANEL_COLOR = 0;
constexpr int32_t PANEL_K = 1;
constexpr int32_t PANEL_UV = 2;
constexpr int32_t PANEL_PO = 3;

struct TPanelGeometry {
  uint32_t width;
  uint32_t height;
};

// Model id -> panel size, and model id -> dots per inch.  Filled once by the
// start-up table builder, read-only afterwards: read them with find (or the
// lookups below), never operator[], which would add a missing model.
extern std::map<uint32_t, TPanelGeometry> g_panelGeometry;
extern std::map<uint32_t, uint32_t> g_modelResolution;

// 'Panel_BuildTables()' - Fill g_panelGeometry and g_modelResolution.
void Panel_BuildTables();

// Lookups of the model tables; they never add an entry.  A model missing
// from the tables reads as a 0 x 0 panel at 0 dots per inch.
TPanelGeometry Panel_ModelGeometry(uint32_t model);
uint32_t Panel_ModelResolution(uint32_t model);

// 'Panel_Geometry()' - Panel size of the task's printerModel.
TPanelGeometry Panel_Geometry(const TPrintingTask* task);

// Caps on a raster page header before its buffer is allocated: the raster
// library checks headers very little, so the size is computed in 64 bits
// and a page beyond any cap is treated as out of memory.
constexpr uint64_t PAGE_MAX_LINE_BYTES = 16u * 1024u * 1024u;   // 16 MiB per line
constexpr uint64_t PAGE_MAX_ROWS = 0xFFFFFFu;                    // rows per page
constexpr uint64_t PAGE_MAX_BYTES = 256u * 1024u * 1024u;       // 256 MiB per page

// 'CUPS_PageBytes()' - cupsBytesPerLine x cupsHeight in 64 bits into
// *bytes; false when the page exceeds a cap.
bool CUPS_PageBytes(const cups_page_header2_t* header, uint64_t* bytes);

// 'CUPS_AllocPage()' - Allocate the task's zero-filled pageBuffer for the
// page described by header (a page of 0 bytes still gets a valid block).
// Returns 0; when the page exceeds a cap or the allocation fails it writes
// "ERROR: Unable to allocate memory!" and ends the process with status 1.
// With zeroFill false the block is left as the allocator gives it: the
// caller then owes every byte a zero before it is read (the page loop
// zeroes each row just before reading into it, and every row it did not
// read, so that the page holds the bytes of a zero-filled block).
int32_t CUPS_AllocPage(TPrintingTask* task, const cups_page_header2_t* header, bool zeroFill = true);

// 'CUPS_AdmitPage()' - For a page that is read but never processed (the
// job's card is complete): the log line and the caps of CUPS_AllocPage,
// with the same end when a cap is exceeded, but no page buffer.  Returns 0.
int32_t CUPS_AdmitPage(TPrintingTask* task, const cups_page_header2_t* header);

// 'Image_Rotate180()' - Turn a width x height image of elementSize-byte
// pixels (at most 64) by 180 degrees in place.  Returns 0.
int32_t Image_Rotate180(TPrintingTask* task, uint8_t* buffer, uint32_t width, uint32_t height,
                        uint32_t elementSize);

// 'Image_FitSize()' - Scale (width, height) to fit (targetWidth,
// targetHeight) keeping the aspect ratio.
void Image_FitSize(TPrintingTask* task, uint32_t targetWidth, uint32_t targetHeight,
                   uint32_t* width, uint32_t* height);

// 'Image_Luminance()' - 0.299 R + 0.587 G + 0.114 B in double precision,
// truncated; 255 when above 255.0.
uint8_t Image_Luminance(uint8_t r, uint8_t g, uint8_t b);

// 'Image_ToGrayInPlace()' - Replace every pixel of the W x H x 3 panel by its
// luminance in all three bytes.  Returns 1 when rgb is null, else 0.
int32_t Image_ToGrayInPlace(TPrintingTask* task, uint8_t* rgb);

// 'Image_ToGrayPlane()' - Allocate a W x H plane into *out and fill it with
// the luminance of the W x H x 3 panel.  Returns 0; *out is null when rgb
// is null or the plane could not be allocated (the caller then skips the
// panel).  The caller frees *out.
int32_t Image_ToGrayPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);

// 'Image_ToInvertedGrayPlane()' - As Image_ToGrayPlane, with every byte
// inverted (255 minus the luminance) in the same pass.  Returns 0.
int32_t Image_ToInvertedGrayPlane(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
