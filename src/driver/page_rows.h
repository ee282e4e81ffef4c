// Reading the rows of one raster page: into the page buffer, or drained.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include <cups/raster.h>

class TPrintingTask;

// Rows between two progress lines.
constexpr uint32_t PROGRESS_ROWS = 128;

// Value of every byte of a row that never arrived: white in the 8-bit RGB
// pages the filter prints (a page in any other format is refused whole).
constexpr uint8_t ROW_MISSING_BYTE = 0xFF;

// 'Loop_ReadRows()' - Read the rows of one page into the page buffer, with
// a progress line every 128 rows.  Stops early when a read delivers nothing
// or a cancel arrives (checked after every row).  Returns the number of
// rows read whole.  A page read to its end holds exactly the bytes of a
// zero-filled page overwritten by its rows.  A page whose stream ended
// early (a read that delivered nothing) has every row from the failed one
// on set to ROW_MISSING_BYTE, so that what never arrived prints white, not
// black.  After a cancel the rows not read stay zero (the page is not
// processed).
uint32_t Loop_ReadRows(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header,
                       int32_t page);

// 'Loop_DrainRows()' - The same reads and progress lines as Loop_ReadRows,
// for a page that will not be processed: every row goes into the task's one
// scratch row, so the page costs no allocation, no zeroing and no memory
// beyond one line.
void Loop_DrainRows(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header,
                    int32_t page);

// 'Loop_DrainRest()' - Read and drop what the raster library still holds of
// a planar page: its header counts the rows of one plane, the data holds
// every plane, so the planes after the first are read here and the next
// read finds the next page header.  Any other page is left as it is: it
// has no lines beyond its height.
void Loop_DrainRest(TPrintingTask* task, cups_raster_t* raster, const cups_page_header2_t& header);
