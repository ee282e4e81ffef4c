// WARNING lines of the page loop: pages cut short and jobs left without a card.
// Copyright 2026 The rastertobrellian authors.
//
// Both only read what the page loop has settled and write one line each
// with Warn_Write; neither logs nor changes the task.
#include "driver/loop_warnings.h"

#include "driver/printing_task.h"
#include "driver/warning.h"

// 'Warn_PageCutShort()' - Name the page and the rows that arrived.
void Warn_PageCutShort(int32_t page, uint32_t rowsRead, uint32_t height, uint32_t lineBytes) {
  if (rowsRead >= height || lineBytes == 0) return;
  Warn_Write("Page %d is cut short: %u of its %u rows arrived before the document's data ended; the "
             "rows that did not arrive are printed white. Send the document again in full",
             static_cast<int>(page), rowsRead, height);
}

// 'Warn_NoCard()' - Say that the job printed nothing.
void Warn_NoCard(const TPrintingTask* task, int32_t pages) {
  if (pages <= 0 || task->cardOpen || task->jobComplete) return;
  if (pages == 1)
    Warn_Write("No card printed: the job's only page could not be printed (the warning above says why)");
  else
    Warn_Write("No card printed: none of the job's %d pages could be printed (the warnings above say why)",
               static_cast<int>(pages));
}
