// The WARNING line for a card side that prints nothing.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/blank_side.h"

#include <cstring>

#include "driver/printing_task.h"
#include "driver/warning.h"
#include "imaging/panel.h"

namespace {

// 'AllBytes()' - True when every one of n bytes of data is value.
bool AllBytes(const uint8_t* data, uint64_t n, uint8_t value) {
  uint8_t block[4096];
  memset(block, value, sizeof block);
  while (n >= sizeof block) {
    if (memcmp(data, block, sizeof block) != 0) return false;
    data += sizeof block;
    n -= sizeof block;
  }
  return memcmp(data, block, n) == 0;
}

}  // namespace

// 'Blank_NotePanel()' - Look for a printed dot once per side: a side
// already known to print something is not scanned again.
void Blank_NotePanel(TPrintingTask* task, int32_t panelType, const uint8_t* data) {
  if (data == nullptr || task->sideHasInk || (panelType != PANEL_COLOR && panelType != PANEL_K)) return;
  TPanelGeometry g = Panel_Geometry(task);
  const uint64_t bytes = static_cast<uint64_t>(g.width) * g.height * (panelType == PANEL_COLOR ? 3 : 1);
  if (!AllBytes(data, bytes, panelType == PANEL_COLOR ? 255 : 0)) task->sideHasInk = 1;
}

// 'Blank_EndSide()' - Warn about a side without a printed dot.
void Blank_EndSide(TPrintingTask* task) {
  if (!task->sideHasInk)
    Warn_Write("%s side prints nothing: its pages have no dot to print on the card (a white page, or a "
               "document that lies outside the page). See \"Where the document goes\" in the user guide.",
               task->sideIndex == 0 ? "Front" : "Back");
  task->sideHasInk = 0;
}
