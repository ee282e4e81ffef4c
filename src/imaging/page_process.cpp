// Page processing: which panel a raster page becomes, and what follows it.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/page_process.h"

#include <cstdlib>

#include "driver/printing_task.h"
#include "imaging/blank_side.h"
#include "imaging/page_warnings.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "jobstream/framing.h"
#include "log/log.h"

namespace {

// Which pages a rule applies to, as a bit per panel type just printed.
constexpr uint32_t AFTER_COLOR = 1u << PANEL_COLOR;
constexpr uint32_t AFTER_K = 1u << PANEL_K;
constexpr uint32_t AFTER_UV = 1u << PANEL_UV;
constexpr uint32_t AFTER_PO = 1u << PANEL_PO;

// Conditions on the side's options.
enum TFollowCondition {
  FOLLOW_ALWAYS,        // no condition
  FOLLOW_COLORK_PAGE,   // "ColorK" ribbon with resin "Page": a black page follows
  FOLLOW_UV_PAGE,       // UV "Page": a UV page follows
  FOLLOW_PO_PAGE,       // overlay "Page": an overlay page follows
};

// Keep subPage as it is (the side ends, or nothing follows).
constexpr int32_t NEXT_KEEP = -1;

// One row of the table of what follows a printed panel.  The first row that
// matches the panel just printed and whose condition holds is applied: the
// preset UV panel (when the side has a UV preset), then the preset overlay
// panel (when it has an overlay preset), then the next subPage or the end of
// the side.
struct TFollowRule {
  uint32_t printed;
  TFollowCondition condition;
  bool uvPreset;
  bool poPreset;
  int32_t next;
  bool endSide;
};

const TFollowRule kFollowRules[] = {
    {AFTER_COLOR, FOLLOW_COLORK_PAGE, false, false, PANEL_K, false},
    {AFTER_COLOR | AFTER_K, FOLLOW_UV_PAGE, false, false, PANEL_UV, false},
    {AFTER_COLOR | AFTER_K, FOLLOW_PO_PAGE, true, false, PANEL_PO, false},
    {AFTER_COLOR | AFTER_K, FOLLOW_ALWAYS, true, true, NEXT_KEEP, true},
    {AFTER_UV, FOLLOW_PO_PAGE, false, false, PANEL_PO, false},
    {AFTER_UV, FOLLOW_ALWAYS, false, true, NEXT_KEEP, true},
    {AFTER_PO, FOLLOW_ALWAYS, false, false, NEXT_KEEP, true},
};

// 'Page_ConditionHolds()' - Whether a rule's condition holds for side s.
bool Page_ConditionHolds(const TPrintingTask* task, int32_t s, TFollowCondition condition) {
  switch (condition) {
    case FOLLOW_COLORK_PAGE:
      return task->ribbon(s) == 3 && task->resin(s) == 0;
    case FOLLOW_UV_PAGE:
      return task->uv(s) == 1;
    case FOLLOW_PO_PAGE:
      return task->po(s) == 1;
    case FOLLOW_ALWAYS:
      break;
  }
  return true;
}

// 'Page_IsUVPreset()'/'Page_IsPOPreset()' - UV presets are codes 2-6,
// overlay presets and custom areas codes 2-12.
bool Page_IsUVPreset(int32_t uv) { return uv >= 2 && uv <= 6; }
bool Page_IsPOPreset(int32_t po) { return po >= 2 && po <= 12; }

// 'Page_EndSide()' - Close the side; closing the card's last side latches
// jobComplete, so the job's later pages are read but not printed.
void Page_EndSide(TPrintingTask* task) {
  Blank_EndSide(task);
  Job_EndSide(task);
  if (task->cardOpen == 0) task->jobComplete = 1;
}

// 'Page_Follow()' - Apply the first matching rule for the panel just
// printed.  A subPage outside 0-3 matches no rule and changes nothing.
void Page_Follow(TPrintingTask* task, int32_t printed) {
  if (printed < PANEL_COLOR || printed > PANEL_PO) return;
  int32_t s = task->sideIndex;
  for (const TFollowRule& rule : kFollowRules) {
    if (!(rule.printed & (1u << printed))) continue;
    if (!Page_ConditionHolds(task, s, rule.condition)) continue;
    if (rule.uvPreset && Page_IsUVPreset(task->uv(s))) Page_ProcessSubPage_UVManual(task);
    if (rule.poPreset && Page_IsPOPreset(task->po(s))) Page_ProcessSubPage_POManual(task);
    if (rule.next != NEXT_KEEP) task->subPage = rule.next;
    if (rule.endSide) Page_EndSide(task);
    return;
  }
}

// 'Page_LogState()' - The state a page arrives in.
void Page_LogState(const TPrintingTask* task, const cups_page_header2_t* header) {
  int32_t s = task->sideIndex;
  // A header that claims no width gives 0 rather than a division by zero.
  unsigned bpp = header->cupsWidth ? header->cupsBytesPerLine / header->cupsWidth : 0;
  Log_Write(LOG_LOG, ">>>> Page_Process");
  Log_Write(LOG_LOG, "PAGE:      %d", task->pageCount);
  Log_Write(LOG_LOG, "SIDE:      %d", s);
  Log_Write(LOG_LOG, "SIDEPANEL: %d", task->subPage);
  Log_Write(LOG_LOG, "ROTATE:    %s", task->rotation(s) == 1 ? "yes" : "no");
  Log_Write(LOG_LOG, "COLOR:     %d", task->ribbon(s));
  Log_Write(LOG_LOG, "RESIN:     %d", task->resin(s));
  Log_Write(LOG_LOG, "UV:        %d", task->uv(s));
  Log_Write(LOG_LOG, "PO:        %d", task->po(s));
  Log_Write(LOG_LOG, "BPP:       %d", static_cast<int>(bpp));
}

// 'Page_Produce()' - Write the panel named by subPage from the page image.
void Page_Produce(TPrintingTask* task, uint8_t* rgb) {
  switch (task->subPage) {
    case PANEL_COLOR:
      Page_ProcessSubPage_RGB(task, rgb);
      break;
    case PANEL_K:
      Page_ProcessSubPage_K(task, rgb);
      break;
    case PANEL_UV:
      Page_ProcessSubPage_UV(task, rgb);
      break;
    case PANEL_PO:
      Page_ProcessSubPage_PO(task, rgb);
      break;
    default:
      break;
  }
}

}  // namespace

// 'Page_Process()' - Turn one raster page into the next panel of the side.
//
// Opens the card and the side when they are not open, writes the panel that
// subPage names and decides which panel the next page is, or ends the side.
// Returns 1 when the page could not be converted (nothing was written and
// the state is unchanged), else 0.
int32_t Page_Process(TPrintingTask* task,                  // I - Job
                     const cups_page_header2_t* header) {  // I - Page header
  Page_LogState(task, header);
  task->pageHeader = header;

  uint8_t* rgb = nullptr;
  if (Image_CUPSToPrinterRGB(task, &rgb) != 0 || rgb == nullptr) {
    Warn_PageNotConverted(task);
    return 1;
  }

  TPanelGeometry g = Panel_Geometry(task);
  int32_t s = task->sideIndex;
  if (task->rotation(s) == 1) Image_Rotate180(task, rgb, g.width, g.height, 3);

  if (task->subPage == PANEL_COLOR) {
    if (task->ribbon(s) == 0)
      task->subPage = PANEL_K;  // a monochrome side has no colour page
    else if (task->ribbon(s) == 1)
      Image_ToGrayInPlace(task, rgb);  // a grayscale side prints its colour panel in gray
  }

  Job_OpenSide(task);

  int32_t printed = task->subPage;
  Page_Produce(task, rgb);
  free(rgb);

  Page_Follow(task, printed);

  Log_Write(LOG_LOG, "<<<< Page_Process");
  return 0;
}
