// Support of the badge table: badges made the way a badge office makes them
// (glabels with the shipped CR80 template, qrencode, zint, a front/back
// PDF), their raster through the real chain, and the symbols read back
// from the panels of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

struct TBadgeDoc {
  std::string name;                  // as the table names it
  std::string path;                  // the document file
  std::vector<std::string> options;  // "-o" options of the job beyond the colour mode
  std::string front;                 // the front's symbol as read back, "FORMAT:text"
  std::string back;                  // the back's symbol, empty for a one-sided document
  bool toEdge = false;               // the design reaches the card's edge
};

// 'Badge_HaveTools()' - True when glabels-3-batch, zbarimg, qrencode, zint,
// barcode and the Data Matrix and PDF417 reader are installed; the missing
// ones in *missing.
bool Badge_HaveTools(std::string* missing);

// 'Badge_MakeDocuments()' - Make every badge document in dir: the glabels
// badge of three people (generated photos, Code 128 numbers) from the
// shipped template, QR codes, Data Matrix and PDF417 symbols as PNG and
// EPS, and a two-page front/back PDF.  False with *error when a tool fails.
bool Badge_MakeDocuments(const std::string& dir, std::vector<TBadgeDoc>* docs, std::string* error);

// 'Badge_Render()' - The CUPS raster that the chain hands rastertobrellian
// for doc on the model's PPD, printed through cupsfilter with the
// ServerBin serverBin (whose filter/rastertobrellian is made to keep a
// copy of its input).  duplex asks for two-sided printing.
std::string Badge_Render(const std::string& conf, const std::string& serverBin, int model,
                         const TBadgeDoc& doc, bool duplex, std::string* error);

// 'Badge_Print()' - The built filter on raster with the model's PPD and
// options, as the chain starts it; the job stream read into *stream.
int Badge_Print(const std::string& raster, int model, const std::string& options, TStreamCheck* stream,
                std::string* err);

// 'Badge_Panel()' - The panel of side that carries the symbols in mode:
// the colour panel for "Color", the black (resin) panel otherwise.  Null
// when the stream has none.
const TStreamPanel* Badge_Panel(const TStreamCheck& stream, int side, const std::string& mode);

// 'Badge_Read()' - Every symbol read back from the panel, "FORMAT:text"
// lines: zbarimg for linear codes and QR, the zxing-cpp reader of
// read_symbols.py for Data Matrix and PDF417 (which zbarimg cannot read).
// The picture is written under dir.
std::vector<std::string> Badge_Read(const TStreamPanel& panel, const std::string& dir);

// 'Badge_InsideCard()' - True when every printed dot of the panel lies on
// the card (the centred 85.6 x 54 mm of the panel), allowing the half dot
// of rounding at the card's edge, and, when the design reaches the edge,
// one dot more and the renderer's lift of 0.36 point; the white margins in
// *margins ("L/T/R/B").
bool Badge_InsideCard(const TStreamPanel& panel, bool toEdge, std::string* margins);
