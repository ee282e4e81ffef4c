// Overlay panels from peel-off areas and UV panels from preset files.
// Copyright 2026 The rastertobrellian authors.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "driver/printing_task.h"
#include "imaging/page_process.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "log/log.h"
#include "options/conf_file.h"

namespace {

// Out of memory, the status of Page_ProcessSubPage_POManual.
constexpr int32_t PO_MANUAL_NO_MEMORY = 37;

// 'Page_FillAreas()' - Set every dot of the spans of the side's non-empty
// areas of one group to value, logging each span as "include" or "exclude".
void Page_FillAreas(uint8_t* panel, TPanelGeometry g, const TArea* areas, const char* word,
                    uint8_t value) {
  int32_t x0, y0, x1, y1;
  for (int32_t i = 0; i < AREAS_PER_GROUP; ++i) {
    if (Area_IsEmpty(&areas[i])) continue;
    Area_ToSpan(&areas[i], g.width, g.height, &x0, &y0, &x1, &y1);
    Log_Write(LOG_LOG, "Page_ProcessSubPage_POManual --> %s: %d,%d - %d,%d", word, x0, y0, x1, y1);
    if (x1 <= x0 || y1 <= y0) continue;
    for (int32_t y = y0; y < y1; ++y)
      memset(panel + static_cast<size_t>(y) * g.width + x0, value, static_cast<size_t>(x1 - x0));
  }
}

}  // namespace

// 'Page_ProcessSubPage_POManual()' - Build and send the side's overlay panel
// from its peel-off areas (255) and keep areas (0), then free it.
//
// With no peel-off area the panel is all 0 and is still sent.  Returns 0, or
// 37 when the panel could not be allocated (nothing is sent).
int32_t Page_ProcessSubPage_POManual(TPrintingTask* task) {  // I - Job
  const int32_t s = task->sideIndex;
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_POManual(%d)", task->po(s));

  TPanelGeometry g = Panel_Geometry(task);
  const size_t size = static_cast<size_t>(g.width) * g.height;
  uint8_t* panel = static_cast<uint8_t*>(malloc(size ? size : 1));
  if (panel == nullptr) {
    Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_POManual[out of memory]");
    Warn_PanelLeftOut(task, PANEL_PO);
    return PO_MANUAL_NO_MEMORY;
  }
  memset(panel, 0, size);

  Page_FillAreas(panel, g, task->poAreas[s][AREA_GROUP_PEELOFF], "include", 255);
  Page_FillAreas(panel, g, task->poAreas[s][AREA_GROUP_KEEP], "exclude", 0);

  if (task->rotation(s) == 1) Image_Rotate180(task, panel, g.width, g.height, 1);
  Page_SendPanel(task, PANEL_PO, panel);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_POManual");
  return 0;
}

// 'Page_ProcessSubPage_UVManual()' - Send the side's UV panel read from its
// UV preset file, then free it.
//
// The file is a raw W x H image, one byte per dot; a longer file is accepted
// and only its first W x H bytes are read.  A missing, unopenable (symbolic
// links and other non-regular files included) or short file, or no memory,
// is logged and no UV panel is sent; a file another user could have planted
// (Conf_OpenFile) is logged as not found.  Returns 0.
int32_t Page_ProcessSubPage_UVManual(TPrintingTask* task) {  // I - Job
  const int32_t s = task->sideIndex;
  const char* path = task->uvFile(s).c_str();
  Log_Write(LOG_ENTRYEXIT, ">>>> Page_ProcessSubPage_UVManual(%d)(%s)", task->uv(s), path);

  FILE* file = nullptr;
  int fd = Conf_OpenFile(path);
  if (fd < 0 && (errno == ENOENT || errno == ENOTDIR)) {
    Log_Write(LOG_ERROR, "Page_ProcessSubPage_UVManual --> file not found (%s)", path);
    Warn_UVFileLeftOut(task, path);
  } else if (fd < 0 || (file = fdopen(fd, "rb")) == nullptr) {
    int error = errno;
    if (fd >= 0) close(fd);
    Log_Write(LOG_ERROR, "Page_ProcessSubPage_UVManual --> unable to open file (%s)(%d)", path,
              error);
    Warn_UVFileLeftOut(task, path);
  } else {
    TPanelGeometry g = Panel_Geometry(task);
    const size_t size = static_cast<size_t>(g.width) * g.height;
    uint8_t* panel = static_cast<uint8_t*>(malloc(size ? size : 1));
    if (panel == nullptr) {
      Log_Write(LOG_ERROR, "Page_ProcessSubPage_UVManual --> out of memory");
      Warn_PanelLeftOut(task, PANEL_UV);
    } else if (fread(panel, 1, size, file) < size) {
      Log_Write(LOG_ERROR, "Page_ProcessSubPage_UVManual --> unable to read file (%s)", path);
      Warn_UVFileLeftOut(task, path);
      free(panel);
    } else {
      // A longer file is printed from its first W x H bytes, as designed;
      // one of another model's size gives a garbled UV image, so say so.
      struct stat st;
      if (fstat(fileno(file), &st) == 0 && static_cast<unsigned long long>(st.st_size) > size)
        Warn_UVFileTooLong(task, path, static_cast<unsigned long long>(st.st_size));
      if (task->rotation(s) == 1) Image_Rotate180(task, panel, g.width, g.height, 1);
      Page_SendPanel(task, PANEL_UV, panel);
    }
  }

  if (file != nullptr) fclose(file);
  Log_Write(LOG_ENTRYEXIT, "<<<< Page_ProcessSubPage_UVManual");
  return 0;
}
