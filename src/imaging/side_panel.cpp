// Writing one side panel as image records of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/blank_side.h"
#include "imaging/page_process.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "jobstream/records.h"
#include "log/log.h"

// 'Page_PrintSidePanel()' - Write one W x H panel of the current side.
//
// The job-stream writer sends the panel's rows as one image
// (Job_WriteImage: ICMD_STARTIMAGE, ICMD_IMAGE records of whole rows,
// ICMD_ENDIMAGE), straight from data.  On the back side of a tumbled job
// the panel is first turned by 180 degrees in place, so the caller's
// buffer changes.
// A null data pointer writes nothing; so does a row too wide for one image
// record, which no supported model has.  Returns 0.
int32_t Page_PrintSidePanel(TPrintingTask* task,  // I - Job (output, side, model)
                            int32_t panelType,    // I - PANEL_COLOR, _K, _UV or _PO
                            uint8_t* data) {      // IO - W x H panel, maybe turned
  TPanelGeometry g = Panel_Geometry(task);
  const uint32_t bpp = panelType == PANEL_COLOR ? 3 : 1;
  const uint64_t rowBytes = static_cast<uint64_t>(bpp) * g.width;
  const uint32_t rows = Job_ImageRowsPerRecord(rowBytes);
  const uint32_t fullBytes = static_cast<uint32_t>(rows * rowBytes);  // at most 61440

  Log_Write(LOG_ENTRYEXIT, ">>>> Page_PrintSidePanel(%d)(%d)(%d)(%d)(%d)", panelType,
            static_cast<int>(g.width), static_cast<int>(g.height), static_cast<int>(rows),
            static_cast<int>(fullBytes));
  if (data == nullptr) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Page_PrintSidePanel[nullptr]");
    return 0;
  }
  Blank_NotePanel(task, panelType, data);
  if (rows == 0) {
    // Not one row fits in an image record: the panel cannot be sent in
    // whole rows, so nothing is sent rather than looping without progress.
    Log_Write(LOG_LOG, "Page_PrintSidePanel --> row of %llu bytes exceeds %u, panel not sent",
              static_cast<unsigned long long>(rowBytes), IMAGE_CHUNK_BYTES);
    Log_Write(LOG_ENTRYEXIT, "<<<< Page_PrintSidePanel[row too wide]");
    return 0;
  }

  if (task->sideIndex == 1 && task->tumble) {
    Log_Write(LOG_LOG, "Tumble: Processing card rotation.");
    Image_Rotate180(task, data, g.width, g.height, bpp);
  }

  uint32_t total = Job_WriteImage(task, g.width, g.height, panelType, bpp, data);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_PrintSidePanel[%d]", static_cast<int>(total));
  return 0;
}

void Page_SendPanel(TPrintingTask* task, int32_t panelType, uint8_t* panel) {
  if (panel == nullptr) {
    Warn_PanelLeftOut(task, panelType);  // the stage that should have made it ran out of memory
    return;
  }
  Page_PrintSidePanel(task, panelType, panel);
  free(panel);
}
