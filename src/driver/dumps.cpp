// Diagnostic dumps of the environment and of raster page headers.
// Copyright 2026 The rastertobrellian authors.
#include "driver/dumps.h"

#include <cstdlib>

#include "driver/printing_task.h"
#include "log/log.h"
#include "util/raster_field.h"

namespace {

// 'Dump_Text()' - A value for the log: "NULL" when missing or empty.
const char* Dump_Text(const char* value) { return (value && *value) ? value : "NULL"; }

// 'Dump_Arg()' - Argument i of the task, or null when there is none.
const char* Dump_Arg(const TPrintingTask* task, int32_t i) {
  return (task->argv && i < task->argc) ? task->argv[i] : nullptr;
}

// The environment variables of the dump, in order.
const char* const kDumpedVariables[] = {
    "PPD",           "PRINTER", "DEVICE_URI", "CHARSET",  "CONTENT_TYPE", "CUPS_DATADIR",
    "CUPS_FONTPATH", "CUPS_SERVERROOT",       "LANG",     "SOFTWARE",     "TMPDIR",
};

// Header strings may fill their field without a terminating zero, so they
// are printed with the field's size as the bound.
// 'Dump_Int()' - A header word as a signed number; enumeration fields are
// read as plain words, since the stream may hold any value in them.
template <typename T>
int Dump_Int(const T& field) {
  return static_cast<int>(Header_Word(field));
}

#define DUMP_FIELD(field) static_cast<int>(sizeof(field)), (field)

}  // namespace

// 'Job_DumpEnvironment()' - Log how the spooler called the filter: the first
// five arguments and the spooler's environment variables.
void Job_DumpEnvironment(TPrintingTask* task) {
  Log_Write(LOG_LOG, ">>>> CUPS ENV");
  Log_Write(LOG_LOG, "CMD: ARGC    [%d]", task->argc);
  Log_Write(LOG_LOG, "CMD: APP     [%s]", Dump_Text(Dump_Arg(task, 0)));
  Log_Write(LOG_LOG, "CMD: JOBID   [%s]", Dump_Text(Dump_Arg(task, 1)));
  Log_Write(LOG_LOG, "CMD: USER    [%s]", Dump_Text(Dump_Arg(task, 2)));
  Log_Write(LOG_LOG, "CMD: TITLE   [%s]", Dump_Text(Dump_Arg(task, 3)));
  Log_Write(LOG_LOG, "CMD: COPIES  [%s]", Dump_Text(Dump_Arg(task, 4)));
  for (const char* name : kDumpedVariables)
    Log_Write(LOG_LOG, "ENV: %s[%s]", name, Dump_Text(getenv(name)));
  Log_Write(LOG_LOG, "<<<< CUPS ENV");
}

// 'Page_DumpHeader()' - Log every field of a version-2 page header in the
// order of the structure.  Returns 0.
int32_t Page_DumpHeader(TPrintingTask*, const cups_page_header2_t* h) {
  Log_Write(LOG_LOG, ">>>> PAGE HEADER");
  Log_Write(LOG_LOG, "Media Class:              [%.*s]", DUMP_FIELD(h->MediaClass));
  Log_Write(LOG_LOG, "Media Color:              [%.*s]", DUMP_FIELD(h->MediaColor));
  Log_Write(LOG_LOG, "Media Type:               [%.*s]", DUMP_FIELD(h->MediaType));
  Log_Write(LOG_LOG, "Output Type:              [%.*s]", DUMP_FIELD(h->OutputType));
  Log_Write(LOG_LOG, "Advance Distance:         [%d]", Dump_Int(h->AdvanceDistance));
  Log_Write(LOG_LOG, "Advance Media:            [%d]", Dump_Int(h->AdvanceMedia));
  Log_Write(LOG_LOG, "Collate:                  [%d]", Dump_Int(h->Collate));
  Log_Write(LOG_LOG, "Cut Media:                [%d]", Dump_Int(h->CutMedia));
  Log_Write(LOG_LOG, "Duplex:                   [%d]", Dump_Int(h->Duplex));
  Log_Write(LOG_LOG, "HW Resolution (DPI):      [%d][%d]", Dump_Int(h->HWResolution[0]),
            Dump_Int(h->HWResolution[1]));
  Log_Write(LOG_LOG, "Imaging Bounding Box:     [%d][%d][%d][%d]",
            Dump_Int(h->ImagingBoundingBox[0]), Dump_Int(h->ImagingBoundingBox[1]),
            Dump_Int(h->ImagingBoundingBox[2]), Dump_Int(h->ImagingBoundingBox[3]));
  Log_Write(LOG_LOG, "Insert Sheet:             [%d]", Dump_Int(h->InsertSheet));
  Log_Write(LOG_LOG, "Jog:                      [%d]", Dump_Int(h->Jog));
  Log_Write(LOG_LOG, "Leading Edge:             [%d]", Dump_Int(h->LeadingEdge));
  Log_Write(LOG_LOG, "Margins:                  [%d][%d]", Dump_Int(h->Margins[0]),
            Dump_Int(h->Margins[1]));
  Log_Write(LOG_LOG, "Manual Feed:              [%d]", Dump_Int(h->ManualFeed));
  Log_Write(LOG_LOG, "Media Position:           [%d]", Dump_Int(h->MediaPosition));
  Log_Write(LOG_LOG, "Media Weight:             [%d]", Dump_Int(h->MediaWeight));
  Log_Write(LOG_LOG, "Mirror Print:             [%d]", Dump_Int(h->MirrorPrint));
  Log_Write(LOG_LOG, "Negative Print:           [%d]", Dump_Int(h->NegativePrint));
  Log_Write(LOG_LOG, "Num Copies:               [%d]", Dump_Int(h->NumCopies));
  Log_Write(LOG_LOG, "Orientation:              [%d]", Dump_Int(h->Orientation));
  Log_Write(LOG_LOG, "Output Face Up:           [%d]", Dump_Int(h->OutputFaceUp));
  Log_Write(LOG_LOG, "Page Size:                [%d][%d]", Dump_Int(h->PageSize[0]),
            Dump_Int(h->PageSize[1]));
  Log_Write(LOG_LOG, "Separation:               [%d]", Dump_Int(h->Separations));
  Log_Write(LOG_LOG, "Tray Switch:              [%d]", Dump_Int(h->TraySwitch));
  Log_Write(LOG_LOG, "Tumble:                   [%d]", Dump_Int(h->Tumble));
  Log_Write(LOG_LOG, "CUPS Width:               [%d]", Dump_Int(h->cupsWidth));
  Log_Write(LOG_LOG, "CUPS Height:              [%d]", Dump_Int(h->cupsHeight));
  Log_Write(LOG_LOG, "CUPS Media Type:          [%d]", Dump_Int(h->cupsMediaType));
  Log_Write(LOG_LOG, "CUPS Bits Per Color:      [%d]", Dump_Int(h->cupsBitsPerColor));
  Log_Write(LOG_LOG, "CUPS Bits Per Pixel:      [%d]", Dump_Int(h->cupsBitsPerPixel));
  Log_Write(LOG_LOG, "CUPS Bytes Per Line:      [%d]", Dump_Int(h->cupsBytesPerLine));
  Log_Write(LOG_LOG, "CUPS Color Order:         [%d]", Dump_Int(h->cupsColorOrder));
  Log_Write(LOG_LOG, "CUPS Color Space:         [%d]", Dump_Int(h->cupsColorSpace));
  Log_Write(LOG_LOG, "CUPS Compression:         [%d]", Dump_Int(h->cupsCompression));
  Log_Write(LOG_LOG, "CUPS Row Count:           [%d]", Dump_Int(h->cupsRowCount));
  Log_Write(LOG_LOG, "CUPS Row Feed:            [%d]", Dump_Int(h->cupsRowFeed));
  Log_Write(LOG_LOG, "CUPS Row Step:            [%d]", Dump_Int(h->cupsRowStep));
  Log_Write(LOG_LOG, "CUPS Num Colors:          [%d]", Dump_Int(h->cupsNumColors));
  Log_Write(LOG_LOG, "CUPS Borderless Scaling:  [%f]",
            static_cast<double>(h->cupsBorderlessScalingFactor));
  Log_Write(LOG_LOG, "CUPS Page Size:           [%f][%f]", static_cast<double>(h->cupsPageSize[0]),
            static_cast<double>(h->cupsPageSize[1]));
  Log_Write(LOG_LOG, "CUPS Imaging Box:         [%f][%f][%f][%f]",
            static_cast<double>(h->cupsImagingBBox[0]), static_cast<double>(h->cupsImagingBBox[1]),
            static_cast<double>(h->cupsImagingBBox[2]), static_cast<double>(h->cupsImagingBBox[3]));
  Log_Write(LOG_LOG, "CUPS Marker Type:         [%.*s]", DUMP_FIELD(h->cupsMarkerType));
  Log_Write(LOG_LOG, "CUPS Rendering Intent:    [%.*s]", DUMP_FIELD(h->cupsRenderingIntent));
  Log_Write(LOG_LOG, "CUPS Page Size Name:      [%.*s]", DUMP_FIELD(h->cupsPageSizeName));
  for (int i = 0; i < 16; ++i)
    Log_Write(LOG_LOG, "CUPS Integer:         %2d. [%d]", i + 1, Dump_Int(h->cupsInteger[i]));
  for (int i = 0; i < 16; ++i)
    Log_Write(LOG_LOG, "CUPS Real:            %2d. [%f]", i + 1, static_cast<double>(h->cupsReal[i]));
  for (int i = 0; i < 16; ++i)
    Log_Write(LOG_LOG, "CUPS String:          %2d. [%.*s]", i + 1, DUMP_FIELD(h->cupsString[i]));
  Log_Write(LOG_LOG, "<<<< PAGE HEADER");
  return 0;
}
