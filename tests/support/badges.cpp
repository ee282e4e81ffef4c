// Support of the badge table: making the badges, rendering them through
// the chain, printing them and reading their symbols back.
// Copyright 2026 The rastertobrellian authors.
#include "support/badges.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "support/cups_env.h"
#include "support/process.h"
#include "support/real_documents.h"

namespace {

const char* const kReader = BRELLIAN_SOURCE_DIR "/tests/support/read_symbols.py";

// 'Shell()' - Run a shell command in dir; false with its output in *error.
bool Shell(const std::string& dir, const std::string& command, std::string* error) {
  TProcessOptions o;
  o.workDir = dir;
  o.env["HOME"] = dir;  // glabels keeps the templates it meets under HOME
  o.deadlineSeconds = 180;
  TProcessResult r = Test_RunProcess({"/bin/sh", "-c", command}, o);
  if (r.status == 0) return true;
  *error = command + ": status " + std::to_string(r.status) + ": " + r.err;
  return false;
}

// The front/back card: a colour band and a QR code in front, a Code 128
// bar code and a line of text on the back, each page of the card's size.
const char* const kFrontBack =
    "%!PS\n"
    "/eps { /s exch def /y exch def /x exch def /f exch def\n"
    "       save /showpage {} def x y translate s s scale f run restore } def\n"
    "0.1 0.4 0.7 setrgbcolor 0 123 242.65 30.07 rectfill\n"
    "(front-qr.eps) 20 20 1.2 eps showpage\n"
    "0 setgray /Helvetica findfont 9 scalefont setfont 20 120 moveto (Return to Brellian) show\n"
    "(back-code128.eps) 30 20 1 eps showpage\n";

// 'NetpbmOf()' - The panel as a binary PPM (colour) or PGM (one byte)
// picture, printed dots dark.
std::string NetpbmOf(const TStreamPanel& p) {
  std::string head = (p.bytesPerPixel == 3 ? "P6\n" : "P5\n") + std::to_string(p.width) + " " +
                     std::to_string(p.rows) + "\n255\n";
  std::string body(p.pixels.begin(), p.pixels.end());
  // In a one-byte panel 255 means printed: black in the picture.
  if (p.bytesPerPixel == 1)
    for (char& c : body) c = char(255 - uint8_t(c));
  return head + body;
}

// 'LinesOf()' - The non-empty lines of text.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    if (!line.empty()) lines.push_back(line);
  return lines;
}

}  // namespace

// 'Badge_HaveTools()' - Look for every tool the badges need.
bool Badge_HaveTools(std::string* missing) {
  missing->clear();
  for (const char* tool : {"/usr/bin/glabels-3-batch", "/usr/bin/zbarimg", "/usr/bin/qrencode", "/usr/bin/zint",
                           "/usr/bin/barcode", "/usr/bin/python3"})
    if (access(tool, X_OK) != 0) *missing += std::string(" ") + tool;
  if (Test_RunProcess({"/usr/bin/python3", "-c", "import zxingcpp, numpy"}).status != 0)
    *missing += " python3-zxing-cpp";
  return missing->empty();
}

// 'Badge_MakeDocuments()' - Make the documents with the tools, in dir.
bool Badge_MakeDocuments(const std::string& dir, std::vector<TBadgeDoc>* docs, std::string* error) {
  std::string src = std::string(BRELLIAN_SOURCE_DIR) + "/docs/badges/";
  std::string commands =
      "cp " + src + "badge.glabels " + src + "people.csv " + src + "photo1.png " + src + "photo2.png " + src +
      "photo3.png . && glabels-3-batch -o badges.pdf badge.glabels >/dev/null 2>&1" +
      " && qrencode -o qr.png 'BRELLIAN-0042' && qrencode -t EPS -o qr.eps 'BRELLIAN-0042'" +
      " && zint -b DATAMATRIX -d 'BRELLIAN-0042' -o datamatrix.png" +
      " && zint -b DATAMATRIX -d 'BRELLIAN-0042' -o datamatrix.eps" +
      " && zint -b PDF417 -d 'BRELLIAN-0042' -o pdf417.png && zint -b PDF417 -d 'BRELLIAN-0042' -o pdf417.eps" +
      " && qrencode -t EPS -o front-qr.eps 'FRONT-0042'" +
      " && barcode -E -e code128 -b BACK-0042 -o back-code128.eps";
  if (!Shell(dir, commands, error)) return false;
  Test_WriteFile(dir + "/front-back.ps", kFrontBack);
  if (!Shell(dir,
             "gs -q -dNOSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dDEVICEWIDTHPOINTS=242.65 "
             "-dDEVICEHEIGHTPOINTS=153.07 -dFIXEDMEDIA -sOutputFile=front-back.pdf front-back.ps",
             error))
    return false;
  const char* people[] = {"BR-100421", "BR-100422", "BR-100423"};
  docs->clear();
  for (int i = 0; i < 3; ++i)
    docs->push_back({"glabels badge, person " + std::to_string(i + 1) + " (PDF)", dir + "/badges.pdf",
                     {"page-ranges=" + std::to_string(i + 1)}, std::string("CODE-128:") + people[i], "", true});
  docs->push_back({"QR code (qrencode PNG)", dir + "/qr.png", {}, "QR-Code:BRELLIAN-0042", "", false});
  docs->push_back({"QR code (qrencode EPS)", dir + "/qr.eps", {}, "QR-Code:BRELLIAN-0042", "", false});
  docs->push_back({"Data Matrix (zint PNG)", dir + "/datamatrix.png", {}, "DataMatrix:BRELLIAN-0042", "", false});
  docs->push_back({"Data Matrix (zint EPS)", dir + "/datamatrix.eps", {}, "DataMatrix:BRELLIAN-0042", "", false});
  docs->push_back({"PDF417 (zint PNG)", dir + "/pdf417.png", {}, "PDF417:BRELLIAN-0042", "", false});
  docs->push_back({"PDF417 (zint EPS)", dir + "/pdf417.eps", {}, "PDF417:BRELLIAN-0042", "", false});
  docs->push_back({"front/back card (2-page PDF)", dir + "/front-back.pdf", {}, "QR-Code:FRONT-0042",
                   "CODE-128:BACK-0042", true});
  return true;
}

// 'Badge_Render()' - Print through cupsfilter, keeping the filter's raster.
std::string Badge_Render(const std::string& conf, const std::string& serverBin, int model,
                         const TBadgeDoc& doc, bool duplex, std::string* error) {
  std::string kept = serverBin + "/../raster-" + std::to_string(model) + ".ras";
  std::string wrapper = serverBin + "/filter/rastertobrellian";
  unlink(wrapper.c_str());
  Test_WriteFile(wrapper, "#!/bin/sh\n# Keeps a copy of the raster the chain hands the filter.\ntee '" + kept +
                              "' | exec '" BRELLIAN_FILTER_PATH "' \"$@\"\n");
  chmod(wrapper.c_str(), 0755);
  unlink(kept.c_str());
  std::vector<std::string> options = doc.options;
  options.push_back("frontRibbon=Color");
  if (duplex) options.push_back("Duplex=DuplexNoTumble");
  TRealRun run = Real_RunCupsfilter(conf, model, doc.path, options);
  if (run.status != 0 || !run.stream.complete) {
    *error = "cupsfilter: status " + std::to_string(run.status) + " " + run.stream.error + ": " + run.err;
    return "";
  }
  return Test_ReadFile(kept);
}

// 'Badge_Print()' - The built filter on the raster.
int Badge_Print(const std::string& raster, int model, const std::string& options, TStreamCheck* stream,
                std::string* err) {
  TProcessOptions o;
  o.env["PPD"] = Cups_PpdPath(model);
  o.input = raster;
  TProcessResult r = Test_RunFilter({"1", "user", "badge", "1", options}, o);
  *stream = TStreamCheck();
  Stream_Read(r.out, stream);
  *err = r.err;
  return r.status;
}

// 'Badge_Panel()' - The first complete panel of the side and type.
const TStreamPanel* Badge_Panel(const TStreamCheck& stream, int side, const std::string& mode) {
  uint32_t type = mode == "Color" ? 0 : 1;
  for (const TStreamPanel& p : stream.panels)
    if (p.side == side && p.panelType == type && p.complete) return &p;
  return nullptr;
}

// 'Badge_Read()' - Both readers on the panel's picture.
std::vector<std::string> Badge_Read(const TStreamPanel& panel, const std::string& dir) {
  std::string file = dir + (panel.bytesPerPixel == 3 ? "/panel.ppm" : "/panel.pgm");
  Test_WriteFile(file, NetpbmOf(panel));
  std::vector<std::string> found = LinesOf(Test_RunProcess({"/usr/bin/zbarimg", "-q", file}).out);
  for (const std::string& line : LinesOf(Test_RunProcess({"/usr/bin/python3", kReader, file}).out))
    found.push_back(line);
  return found;
}

// 'Badge_InsideCard()' - The panel's margins against the card's rim.
bool Badge_InsideCard(const TStreamPanel& panel, bool toEdge, std::string* margins) {
  TMargins m = Real_Measure(panel);
  // The card is the centred 2022 x 1276 dots of 2072 x 1328 (600 dpi) or
  // 1011 x 638 of 1036 x 664 (300 dpi): its edge lies 25 and 26 dots, or
  // 12.5 and 13 dots, in from the panel's edge.
  double rimX = panel.width > 1500 ? 25 : 12.5, rimY = panel.width > 1500 ? 26 : 13;
  // A design that reaches the card's edge may touch the dot across it, and
  // the renderer lifts every page by 0.36 point (3 dots at 600 dpi, 1.5 at
  // 300), which moves such an edge that far into the rim.
  double lift = panel.width > 1500 ? 3 : 1.5;
  double slack = 0.5 + (toEdge ? 1 + lift : 0);
  char text[64];
  snprintf(text, sizeof text, "%.0f/%.0f/%.0f/%.0f", m.left, m.top, m.right, m.bottom);
  *margins = text;
  return m.left >= rimX - slack && m.right >= rimX - slack && m.top >= rimY - slack && m.bottom >= rimY - slack;
}
