// The panels a raster page becomes: colour, black, UV and overlay.
// Copyright 2026 The rastertobrellian authors.
//
// Each producer takes the side's W x H x 3 printer-RGB image, which it never
// frees, and writes its panel with Page_PrintSidePanel.  A stage that yields
// no panel buffer makes the producer write nothing.
#include <cstddef>
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/page_process.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "log/log.h"

namespace {

// 'Page_SendInvertedPlane()' - Write the inverted luminance of rgb as a UV
// or overlay panel: dark dots of the page become high values.  Nothing is
// written when rgb is null or the plane could not be had.  The entry and
// exit lines are the callers' (the log's nesting follows literal markers).
void Page_SendInvertedPlane(TPrintingTask* task, uint8_t* rgb, int32_t panelType) {
  uint8_t* plane = nullptr;
  Image_ToInvertedGrayPlane(task, rgb, &plane);  // luminance and inversion in one pass
  Page_SendPanel(task, panelType, plane);
}

}  // namespace

// 'Page_ProcessSubPage_RGB()' - Write the colour panel; on a "ColorK" side
// with resin areas also the resin black panel made from it.  Returns 0.
int32_t Page_ProcessSubPage_RGB(TPrintingTask* task,  // I - Job
                                uint8_t* rgb) {       // I - Side image, not freed
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_RGB");
  Page_PrintSidePanel(task, PANEL_COLOR, rgb);
  int32_t s = task->sideIndex;
  if (task->ribbon(s) == 3 && task->resin(s) > 0) {
    uint8_t* k = nullptr;
    // Without memory for its mask the resin panel comes back all 0.
    if (Image_StripToResin(task, rgb, &k) != 0 && k != nullptr) Warn_PanelLeftOut(task, PANEL_K);
    Page_SendPanel(task, PANEL_K, k);
  }
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_RGB");
  return 0;
}

// 'Page_ProcessSubPage_K()' - Write the halftoned black panel, in the
// side's black rendering.  Returns 0.
int32_t Page_ProcessSubPage_K(TPrintingTask* task,  // I - Job
                              uint8_t* rgb) {       // I - Side image, not freed
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_K");
  uint8_t* k = nullptr;
  if (task->blackMode(task->sideIndex) == BLACK_MODE_SOLID)
    Image_HalftoneSolidBlack(task, rgb, &k);
  else
    Image_Halftone(task, rgb, &k);
  Page_SendPanel(task, PANEL_K, k);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_K");
  return 0;
}

// 'Page_ProcessSubPage_UV()' - Write the UV panel made from the page: the
// inverted luminance, so black page dots give 255.  Returns 0.
int32_t Page_ProcessSubPage_UV(TPrintingTask* task,  // I - Job
                               uint8_t* rgb) {       // I - Side image, not freed
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_UV");
  Page_SendInvertedPlane(task, rgb, PANEL_UV);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_UV");
  return 0;
}

// 'Page_ProcessSubPage_PO()' - Write the overlay panel made from the page,
// as for UV.  Returns 0.
int32_t Page_ProcessSubPage_PO(TPrintingTask* task,  // I - Job
                               uint8_t* rgb) {       // I - Side image, not freed
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_PO");
  Page_SendInvertedPlane(task, rgb, PANEL_PO);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_PO");
  return 0;
}
