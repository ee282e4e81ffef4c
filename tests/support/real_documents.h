// Support of the real-document test: running a document through cupsfilter,
// measuring the white margins of a panel and working out where the chain
// is meant to put the document's content.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

enum TDocKind { DOC_PDF, DOC_PICTURE, DOC_TEXT, DOC_POSTSCRIPT };

struct TRealDocument {
  std::string name;
  std::string path;
  TDocKind kind;
  std::vector<std::string> options;   // "-o" options; the first one names the colour mode
  bool monochrome;                    // checked for solid black
};

struct TRealRun {
  int status = -1;
  std::string err;
  TStreamCheck stream;
  uint32_t rasterWidth = 0;    // first page header as the filter logged it
  uint32_t rasterHeight = 0;
  bool resampled = false;      // the filter logged AspectResize
};

// White margins of a panel's content in dots: left, top, right, bottom.
struct TMargins {
  double left = 0, top = 0, right = 0, bottom = 0;
};

struct TSolidBlack {
  size_t black = 0;   // pure black dots of the page
  size_t set = 0;     // of those, set in the black panel
  size_t grey = 0;    // dots neither pure black nor pure white
};

// 'Real_RunCupsfilter()' - Print path on the model's PPD through cupsfilter
// (ServerBin of conf); the raster size and AspectResize from the filter's log.
TRealRun Real_RunCupsfilter(const std::string& conf, int model, const std::string& path,
                            const std::vector<std::string>& options);

// 'Real_Measure()' - Margins of the dots that are not white (colour panel)
// or set (one-byte panel).
TMargins Real_Measure(const TStreamPanel& p);

// 'Real_Expected()' - Where the documented placement puts the document's
// content on the model's panel: pages larger than the panel are fitted,
// smaller ones keep their size, pages of the other orientation are turned
// counter-clockwise, all are centred (pictures as imagetopdf places them),
// and the renderer lifts the page by the 0.36 pt its whole-point page
// height leaves out.
TMargins Real_Expected(const TRealDocument& d, int model, const std::string& conf);

// 'Real_ExpectNear()' - Each measured margin within 2 dots of the expected,
// and a picture centred to within 1 point.
void Real_ExpectNear(const TRealDocument& d, int model, const TMargins& got, const TMargins& want);

// 'Real_CheckSolid()' - Black and grey dots of a colour panel against a
// black panel of the same page.
TSolidBlack Real_CheckSolid(const TStreamPanel& color, const TStreamPanel& black);

// 'Real_CountBars()' - Bars drawn by a bar code file of the barcode program.
int Real_CountBars(const std::string& postscript);
// 'Real_CountPanelBars()' - Runs of set dots along the rows of a black panel,
// the count most rows show.
int Real_CountPanelBars(const TStreamPanel& p);

std::string Real_TableHeader();
std::string Real_TableRow(int model, const TRealDocument& d, const TRealRun& run, const TMargins& got,
                          const TMargins& want, const std::string& black);
