// Writing one side panel as image records of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/page_process.h"
#include "imaging/panel.h"
#include "jobstream/record_out.h"
#include "jobstream/records.h"
#include "log/log.h"

namespace {

// 'Page_WriteStartImage()' - Write ICMD_STARTIMAGE: width and height (low
// 16 bits each) and the panel type.
void Page_WriteStartImage(TPrintingTask* task, uint32_t width, uint32_t height, int32_t type) {
  uint8_t record[ICMD_HEADER_BYTES + ICMD_STARTIMAGE_PAYLOAD] = {};
  Rec_Header(record, ICMD_STARTIMAGE, ICMD_STARTIMAGE_PAYLOAD);
  Rec_Put16(record + 6, static_cast<uint16_t>(width));
  Rec_Put16(record + 8, static_cast<uint16_t>(height));
  record[10] = static_cast<uint8_t>(type);
  Job_WriteCommand(task, record);
}

// 'Page_WriteEndImage()' - Write ICMD_ENDIMAGE (no payload).
void Page_WriteEndImage(TPrintingTask* task) {
  uint8_t record[ICMD_HEADER_BYTES] = {};
  Rec_Header(record, ICMD_ENDIMAGE, ICMD_ENDIMAGE_PAYLOAD);
  Job_WriteCommand(task, record);
}

}  // namespace

// 'Page_PrintSidePanel()' - Write one W x H panel of the current side.
//
// The panel goes out as ICMD_STARTIMAGE, ICMD_IMAGE records of whole rows
// (at most IMAGE_CHUNK_BYTES of data each, the last one shorter) and
// ICMD_ENDIMAGE.  The image records are written straight from data to the
// task's output, without copying and without a flush, each one whole
// (Rec_WriteWhole); the flush after ICMD_ENDIMAGE pushes them out.  On the back side of a tumbled job the panel
// is first turned by 180 degrees in place, so the caller's buffer changes.
// A null data pointer writes nothing; so does a row too wide for one image
// record, which no supported model has.  Returns 0.
int32_t Page_PrintSidePanel(TPrintingTask* task,  // I - Job (output, side, model)
                            int32_t panelType,    // I - PANEL_COLOR, _K, _UV or _PO
                            uint8_t* data) {      // IO - W x H panel, maybe turned
  TPanelGeometry g = Panel_Geometry(task);
  const uint32_t bpp = panelType == PANEL_COLOR ? 3 : 1;
  const uint64_t rowBytes = static_cast<uint64_t>(bpp) * g.width;
  const uint32_t rows = rowBytes ? static_cast<uint32_t>(IMAGE_CHUNK_BYTES / rowBytes) : 0;
  const uint32_t fullBytes = static_cast<uint32_t>(rows * rowBytes);  // at most 61440

  Log_Write(LOG_ENTRYEXIT, ">>>> Page_PrintSidePanel(%d)(%d)(%d)(%d)(%d)", panelType,
            static_cast<int>(g.width), static_cast<int>(g.height), static_cast<int>(rows),
            static_cast<int>(fullBytes));
  if (data == nullptr) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Page_PrintSidePanel[nullptr]");
    return 0;
  }
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

  Page_WriteStartImage(task, g.width, g.height, panelType);

  const uint8_t* p = data;
  uint32_t total = 0;
  for (uint32_t row = 0; row < g.height;) {
    uint32_t end = row + rows;
    uint32_t n = fullBytes;
    if (end > g.height) {
      end = g.height;
      n = static_cast<uint32_t>((g.height - row) * rowBytes);
    }
    uint8_t header[ICMD_HEADER_BYTES];
    Rec_Header(header, ICMD_IMAGE, n);
    Rec_WriteWhole(task->output, header, sizeof header, p, n, false);
    p += n;
    total += n;
    row = end;
  }

  Log_Write(LOG_LOG, "CMD: ICMD_IMAGE [%d]", static_cast<int>(total));
  Page_WriteEndImage(task);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_PrintSidePanel[%d]", static_cast<int>(total));
  return 0;
}

void Page_SendPanel(TPrintingTask* task, int32_t panelType, uint8_t* panel) {
  if (panel == nullptr) return;
  Page_PrintSidePanel(task, panelType, panel);
  free(panel);
}
