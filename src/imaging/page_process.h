// Page processing: which panel a page becomes, and writing side panels.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include <cups/raster.h>

class TPrintingTask;

// 'Page_Process()' - Turn one raster page into the next panel of the side.
// Returns 1 when the page could not be converted (nothing written), else 0.
int32_t Page_Process(TPrintingTask* task, const cups_page_header2_t* header);

// 'Page_PrintSidePanel()' - Write one W x H panel (3 bytes per dot for
// PANEL_COLOR, 1 otherwise) as ICMD_STARTIMAGE, ICMD_IMAGE chunks and
// ICMD_ENDIMAGE.  A null data pointer writes nothing.  Back-side panels of a
// tumbled job are turned in place.  Returns 0.
int32_t Page_PrintSidePanel(TPrintingTask* task, int32_t panelType, uint8_t* data);

// 'Page_SendPanel()' - Write a panel a stage made for this side with
// Page_PrintSidePanel, then free it.  A null panel (the stage yielded none)
// writes nothing.
void Page_SendPanel(TPrintingTask* task, int32_t panelType, uint8_t* panel);

// The per-panel producers: each writes the panel of this page from the
// W x H x 3 printer-RGB image rgb (which it does not free) and returns 0.
// RGB: the colour panel, and on a "ColorK" side with resin areas the resin
// black panel.  K: the halftoned black panel.  UV and PO: the inverted
// luminance of the page (black dots give 255).
int32_t Page_ProcessSubPage_RGB(TPrintingTask* task, uint8_t* rgb);
int32_t Page_ProcessSubPage_K(TPrintingTask* task, uint8_t* rgb);
int32_t Page_ProcessSubPage_UV(TPrintingTask* task, uint8_t* rgb);
int32_t Page_ProcessSubPage_PO(TPrintingTask* task, uint8_t* rgb);

// 'Page_ProcessSubPage_POManual()' - Build and send the side's overlay panel
// from its peel-off and keep areas.  Returns 0, or 37 when out of memory.
int32_t Page_ProcessSubPage_POManual(TPrintingTask* task);
// 'Page_ProcessSubPage_UVManual()' - Send the side's UV panel read from its
// UV preset file.  Returns 0; a failure only skips the panel.
int32_t Page_ProcessSubPage_UVManual(TPrintingTask* task);
