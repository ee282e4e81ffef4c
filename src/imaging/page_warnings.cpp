// WARNING lines for the spooler about pages and panels a job won't get.
// Copyright 2026 The rastertobrellian authors.
//
// The checks read the task's state and write one line each with Warn_Write;
// none of them writes to the log or changes the state.
#include "imaging/page_warnings.h"

#include <sys/stat.h>

#include <string>

#include "driver/printing_task.h"
#include "driver/warning.h"
#include "imaging/panel.h"
#include "status/models.h"
#include "util/raster_field.h"

namespace {

const char* const kSideNames[2] = {"Front", "Back"};
const char* const kSideWords[2] = {"front", "back"};
const char* const kPanelNames[4] = {"colour", "black", "UV", "overlay"};

// 'Warn_Side()' - The task's current side, 0 or 1.
int32_t Warn_Side(const TPrintingTask* task) { return task->sideIndex == SIDE_BACK ? SIDE_BACK : SIDE_FRONT; }

// 'Warn_PanelName()' - The name of a panel type.
const char* Warn_PanelName(int32_t panelType) {
  return panelType >= PANEL_COLOR && panelType <= PANEL_PO ? kPanelNames[panelType] : "unknown";
}

// 'Warn_Join()' - "a", "a and b", "a, b and c".
std::string Warn_Join(const std::string& list, const std::string& item, bool last) {
  if (list.empty()) return item;
  return list + (last ? " and " : ", ") + item;
}

// 'Warn_OpenSide()' - The side is open and waits for the page named by
// subPage: name that panel and the panels that would have followed it (the
// next page panels and the preset panels sent after them), and the options
// that ask for the pages.
void Warn_OpenSide(const TPrintingTask* task) {
  const int32_t s = Warn_Side(task);
  const char* w = kSideWords[s];
  const bool uvPreset = task->uv(s) >= 2 && task->uv(s) <= 6;
  const bool poPreset = task->po(s) >= 2 && task->po(s) <= 12;
  std::string panels[5], needs;
  int32_t n = 0;
  int32_t next = task->subPage;
  if (next == PANEL_K) {
    panels[n++] = "black panel";
    needs = std::string(w) + "Ribbon=ColorK with " + w + "Resin=Page takes a page for the black panel";
    next = task->uv(s) == 1 ? PANEL_UV : task->po(s) == 1 ? PANEL_PO : -1;
    if (next == PANEL_PO && uvPreset) panels[n++] = "UV preset panel";
    if (next == -1 && uvPreset) panels[n++] = "UV preset panel";
    if (next == -1 && poPreset) panels[n++] = "overlay preset panel";
  }
  if (next == PANEL_UV) {
    panels[n++] = "UV panel";
    needs = Warn_Join(needs, std::string(w) + "UV=Page takes a page for the UV panel", false);
    next = task->po(s) == 1 ? PANEL_PO : -1;
    if (next == -1 && poPreset) panels[n++] = "overlay preset panel";
  }
  if (next == PANEL_PO) {
    panels[n++] = "overlay panel";
    needs = Warn_Join(needs, std::string(w) + "PO=Page takes a page for the overlay panel", false);
  }
  if (n == 0) return;
  std::string list;
  for (int32_t i = 0; i < n; ++i) list = Warn_Join(list, panels[i], i == n - 1);
  Warn_Write("%s side printed without its %s: the job has no more pages, and %s", kSideNames[s],
             list.c_str(), needs.c_str());
}

}  // namespace

// 'Warn_PageNotConverted()' - Name the page and why it is left out.
void Warn_PageNotConverted(const TPrintingTask* task) {
  const cups_page_header2_t* h = task->pageHeader;
  if (!h) return;
  uint32_t bpp = h->cupsWidth ? h->cupsBytesPerLine / h->cupsWidth : 0;
  uint32_t space = Header_Word(h->cupsColorSpace);
  bool rgbSpace = space != CUPS_CSPACE_CMY && space != CUPS_CSPACE_KCMY && space != CUPS_CSPACE_KCMYcm;
  if (bpp != 3 || !rgbSpace)
    Warn_Write("Page %d is left out: it is not 8-bit RGB (colour space %u, %u bits per pixel), the only "
               "raster the printer takes; the next page takes its place", static_cast<int>(task->pageCount),
               space, Header_Word(h->cupsBitsPerPixel));
  else
    Warn_Write("Page %d is left out: not enough memory to convert its %u x %u dots; the next page takes "
               "its place", static_cast<int>(task->pageCount), h->cupsWidth, h->cupsHeight);
}

// 'Warn_PageUnscaled()' - Name the page and the panel it was not fitted to.
void Warn_PageUnscaled(const TPrintingTask* task, uint32_t width, uint32_t height) {
  TPanelGeometry g = Panel_Geometry(task);
  Warn_Write("Page %d is printed unscaled from the top-left corner: not enough memory to fit its %u x %u "
             "dots to the %u x %u panel", static_cast<int>(task->pageCount), width, height, g.width, g.height);
}

// 'Warn_PanelLeftOut()' - Name the panel and the side.
void Warn_PanelLeftOut(const TPrintingTask* task, int32_t panelType) {
  Warn_Write("%s side printed without its %s panel: not enough memory to make it",
             kSideNames[Warn_Side(task)], Warn_PanelName(panelType));
}

// 'Warn_UVFileLeftOut()' - Name the option, the file and what is wrong with it.
void Warn_UVFileLeftOut(const TPrintingTask* task, const char* path) {
  const int32_t s = Warn_Side(task);
  TPanelGeometry g = Panel_Geometry(task);
  unsigned long long need = static_cast<unsigned long long>(g.width) * g.height;
  struct stat st;
  std::string why;
  if (lstat(path, &st) != 0) why = "it is not there";
  else if (!S_ISREG(st.st_mode)) why = "it is not a regular file";
  else if (static_cast<unsigned long long>(st.st_size) < need)
    why = std::to_string(st.st_size) + " bytes, fewer than the " + std::to_string(g.width) + " x " +
          std::to_string(g.height) + " = " + std::to_string(need) + " of model " +
          std::to_string(task->printerModel) + "'s panel";
  else why = "it can't be read";
  Warn_Write("%s side printed without its UV panel: %sUV=Preset%d names UV file %s, and %s", kSideNames[s],
             kSideWords[s], static_cast<int>(task->uv(s) - 1), path, why.c_str());
}

// 'Warn_UVFileTooLong()' - Name the option, the file, both sizes and, when
// the size is another model's panel, that model.
void Warn_UVFileTooLong(const TPrintingTask* task, const char* path, unsigned long long bytes) {
  const int32_t s = Warn_Side(task);
  TPanelGeometry g = Panel_Geometry(task);
  unsigned long long need = static_cast<unsigned long long>(g.width) * g.height;
  // Every model of the table whose panel has exactly that many dots, in
  // table order ("model A or B").
  std::string models, size;
  int32_t count = 0;
  const TModelInfo* all = Model_All(&count);
  for (int32_t i = 0; i < count; ++i) {
    if (static_cast<unsigned long long>(all[i].panelWidth) * all[i].panelHeight != bytes) continue;
    models += (models.empty() ? "" : " or ") + std::to_string(all[i].id);
    size = std::to_string(all[i].panelWidth) + " x " + std::to_string(all[i].panelHeight);
  }
  std::string other = models.empty() ? "" : " (the size of a " + size + " panel, model " + models + ")";
  Warn_Write("%s UV panel is not the UV image that was made: %sUV=Preset%d names UV file %s of %llu bytes%s, "
             "more than the %u x %u = %llu of model %d's panel, and only its first %llu bytes are printed; "
             "make the UV image again for this model with brellian-uvimage", kSideNames[s], kSideWords[s],
             static_cast<int>(task->uv(s) - 1), path, bytes, other.c_str(), g.width, g.height, need,
             static_cast<int>(task->printerModel), need);
}

// 'Warn_PageBeyondCard()' - Count the page on the task.
void Warn_PageBeyondCard(TPrintingTask* task, int32_t page) {
  if (task->pagesBeyondCard++ == 0) task->firstPageBeyondCard = page;
}

// 'Warn_JobEnd()' - The end-of-job checks.
void Warn_JobEnd(const TPrintingTask* task, bool cancelled) {
  if (cancelled) return;
  if (task->cardOpen && task->sideOpen) Warn_OpenSide(task);
  // The front side ended on a duplex page, and no page came for the back.
  bool backMissing = task->cardOpen && (task->sideOpen ? task->sideIndex == SIDE_FRONT && task->duplex
                                                       : task->sideIndex == SIDE_BACK);
  if (backMissing)
    Warn_Write("Back side not printed: the job asks for two-sided printing (Duplex) and has no page for "
               "the back");
  const int32_t first = task->firstPageBeyondCard, count = task->pagesBeyondCard;
  if (count == 1)
    Warn_Write("Page %d not printed: a job prints one card, and the card was complete after page %d; "
               "to print one card per page or pair of pages, use brellian-batch",
               static_cast<int>(first), static_cast<int>(first - 1));
  else if (count > 1)
    Warn_Write("%d pages not printed (pages %d to %d): a job prints one card, and the card was complete "
               "after page %d; to print one card per page or pair of pages, use brellian-batch",
               static_cast<int>(count), static_cast<int>(first),
               static_cast<int>(first + count - 1), static_cast<int>(first - 1));
}
