// WARNING lines of the page loop: pages cut short and jobs left without a card.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

class TPrintingTask;

// 'Warn_PageCutShort()' - Page number page ended after rowsRead of its
// height rows (the raster stream ended early); its missing rows print
// white.  Writes nothing for a page read whole or one whose rows hold no
// bytes.
void Warn_PageCutShort(int32_t page, uint32_t rowsRead, uint32_t height, uint32_t lineBytes);

// 'Warn_NoCard()' - At the end of a job that was not cancelled: pages were
// read and none of them began a card (each was left out: not 8-bit RGB, or
// no memory to convert it), so the job prints nothing at all.  Reads the
// task's framing state only; call it before the page loop closes anything.
void Warn_NoCard(const TPrintingTask* task, int32_t pages);
