// WARNING lines for the spooler about pages and panels a job won't get.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

class TPrintingTask;

// 'Warn_PageNotConverted()' - The page just read could not be converted
// (not 8-bit RGB, or no memory) and is left out.
void Warn_PageNotConverted(const TPrintingTask* task);

// 'Warn_PageUnscaled()' - The page is placed unscaled for lack of memory to
// fit it to the panel.
void Warn_PageUnscaled(const TPrintingTask* task, uint32_t width, uint32_t height);

// 'Warn_PanelLeftOut()' - A panel of the current side is left out for lack
// of memory.
void Warn_PanelLeftOut(const TPrintingTask* task, int32_t panelType);

// 'Warn_UVFileLeftOut()' - The side's UV preset file at path can't be read
// whole (missing, not a regular file, shorter than the panel, unreadable).
void Warn_UVFileLeftOut(const TPrintingTask* task, const char* path);

// 'Warn_UVFileTooLong()' - The side's UV preset file holds bytes bytes,
// more than the model's panel: only the first W x H are printed.
void Warn_UVFileTooLong(const TPrintingTask* task, const char* path, unsigned long long bytes);

// 'Warn_PageBeyondCard()' - Page number page is read after the card was
// complete and is not printed; counted on the task for Warn_JobEnd.
void Warn_PageBeyondCard(TPrintingTask* task, int32_t page);

// 'Warn_JobEnd()' - At the end of the page loop, before open sides and the
// card are closed: a side that still waits for pages, a back side never
// started, and the pages beyond the card.  Nothing is written for a
// cancelled job.
void Warn_JobEnd(const TPrintingTask* task, bool cancelled);
