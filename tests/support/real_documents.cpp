// Support of the real-document test.
// Copyright 2026 The rastertobrellian authors.
#include "support/real_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <map>
#include <regex>

#include "support/cups_env.h"
#include "support/process.h"

namespace {

const double kPanelW = 248.64, kPanelH = 159.36;   // the panel in points
// The renderers place the page from its height rounded to whole points.
const double kLift = kPanelH - std::round(kPanelH);

struct TBox {
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

// 'BBox()' - Bounding box of what page 1 of a PDF or PostScript file draws.
TBox BBox(const std::string& file) {
  TProcessResult r = Test_RunProcess({"/usr/bin/gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE",
                                      "-dFirstPage=1", "-dLastPage=1", "-sDEVICE=bbox", file});
  TBox b;
  std::smatch m;
  std::regex re("%%HiResBoundingBox: ([-0-9.]+) ([-0-9.]+) ([-0-9.]+) ([-0-9.]+)");
  if (std::regex_search(r.err, m, re))
    b = {std::stod(m[1]), std::stod(m[2]), std::stod(m[3]), std::stod(m[4])};
  return b;
}

// 'PdfPageSize()' - Width and height in points of page 1, from pdfinfo.
bool PdfPageSize(const std::string& file, double* w, double* h) {
  TProcessResult r = Test_RunProcess({"/usr/bin/pdfinfo", file});
  std::smatch m;
  if (!std::regex_search(r.out, m, std::regex("Page size: +([0-9.]+) x ([0-9.]+) pts"))) return false;
  *w = std::stod(m[1]);
  *h = std::stod(m[2]);
  return true;
}

// 'PicturePdf()' - The picture placed on the panel-sized page by the
// upstream imagetopdf with the options the documented rule gives: kept
// unturned when it is wide like the card, fitted inside the card (96 % of
// the panel) unless it has the card's proportions.
std::string PicturePdf(const std::string& picture, int model, const std::string& dir) {
  TProcessOptions o;
  o.env["PPD"] = Cups_PpdPath(model);
  TProcessResult probe = Test_RunProcess({"/usr/lib/cups/filter/imagetopdf", "1", "u", "t", "1", "", picture}, o);
  std::smatch w, h;
  std::string options;
  if (std::regex_search(probe.out, w, std::regex("/Width ([0-9]+)")) &&
      std::regex_search(probe.out, h, std::regex("/Height ([0-9]+)"))) {
    double pw = std::stod(w[1]), ph = std::stod(h[1]), r = std::max(pw, ph) / std::min(pw, ph);
    if (pw >= ph) options = "orientation-requested=3";
    if (r < 1.54 || r > 1.61) options += std::string(options.empty() ? "" : " ") + "scaling=96";
  }
  TProcessResult r = Test_RunProcess({"/usr/lib/cups/filter/imagetopdf", "1", "u", "t", "1", options, picture}, o);
  std::string pdf = dir + "/picture-" + std::to_string(model) + ".pdf";
  Test_WriteFile(pdf, r.out);
  return pdf;
}

// 'TextPdf()' - The text laid out by the upstream texttopdf with the
// margins texttobrellian gives it.
std::string TextPdf(const std::string& text, int model, const std::string& dir) {
  TProcessOptions o;
  o.env["PPD"] = Cups_PpdPath(model);
  o.env["CHARSET"] = "utf-8";
  o.env["CUPS_DATADIR"] = "/usr/share/cups";
  o.env["LANG"] = "C.UTF8";
  TProcessResult r = Test_RunProcess({"/usr/lib/cups/filter/texttopdf", "1", "u", "t", "1",
                                      "page-left=12 page-right=12 page-top=12 page-bottom=12", text}, o);
  std::string pdf = dir + "/text-" + std::to_string(model) + ".pdf";
  Test_WriteFile(pdf, r.out);
  return pdf;
}

bool IsWhite(const TStreamPanel& p, size_t i) {
  if (p.bytesPerPixel == 1) return p.pixels[i] == 0;
  const uint8_t* c = &p.pixels[i * 3];
  return c[0] == 255 && c[1] == 255 && c[2] == 255;
}

}  // namespace

TRealRun Real_RunCupsfilter(const std::string& conf, int model, const std::string& path,
                            const std::vector<std::string>& options) {
  std::vector<std::string> argv = {"/usr/sbin/cupsfilter", "-c", conf, "-p", Cups_PpdPath(model),
                                   "-m", "printer/brellian", "-e"};
  for (const std::string& o : options) {
    argv.push_back("-o");
    argv.push_back(o);
  }
  argv.push_back(path);
  Test_ResetLog();
  TProcessResult r = Test_RunProcess(argv);
  TRealRun run;
  run.status = r.status;
  run.err = r.err;
  Stream_Read(r.out, &run.stream);
  for (const std::string& line : Test_LogMessages()) {
    unsigned w, h, bpl;
    size_t at = line.find("CUPS_AllocPage(");
    if (at != std::string::npos && run.rasterWidth == 0 &&
        sscanf(line.c_str() + at, "CUPS_AllocPage(%u,%u,%u)", &w, &h, &bpl) == 3) {
      run.rasterWidth = w;
      run.rasterHeight = h;
    }
    if (line.find("AspectResize") != std::string::npos) run.resampled = true;
  }
  return run;
}

TMargins Real_Measure(const TStreamPanel& p) {
  uint32_t x0 = p.width, y0 = p.height, x1 = 0, y1 = 0;
  for (uint32_t y = 0; y < p.rows; ++y)
    for (uint32_t x = 0; x < p.width; ++x)
      if (!IsWhite(p, size_t(y) * p.width + x)) {
        x0 = std::min(x0, x), x1 = std::max(x1, x);
        y0 = std::min(y0, y), y1 = std::max(y1, y);
      }
  TMargins m;
  if (x0 > x1) return m;
  m.left = x0, m.top = y0, m.right = p.width - 1 - x1, m.bottom = p.height - 1 - y1;
  return m;
}

TMargins Real_Expected(const TRealDocument& d, int model, const std::string& conf) {
  double pw = kPanelW, ph = kPanelH;
  TBox c;
  std::string dir = conf.substr(0, conf.rfind('/'));
  if (d.kind == DOC_PDF) {
    PdfPageSize(d.path, &pw, &ph);
    c = BBox(d.path);
  } else if (d.kind == DOC_PICTURE) {
    c = BBox(PicturePdf(d.path, model, dir));
  } else if (d.kind == DOC_TEXT) {
    c = BBox(TextPdf(d.path, model, dir));
  } else {
    // PostScript without a bounding box whose ink lies on the card-sized
    // page at the origin: that page is fitted inside the card 0.5 point in
    // from its edge, and the card-sized page is centred on the panel.
    const double cw = 242.65, ch = 153.07;
    double f = std::min((cw - 1) / cw, (ch - 1) / ch);
    TBox ink = BBox(d.path);
    double tx = (cw - f * cw) / 2, ty = (ch - f * ch) / 2;
    c = {tx + f * ink.x0, ty + f * ink.y0, tx + f * ink.x1, ty + f * ink.y1};
    pw = cw, ph = ch;
  }
  // A page of the other orientation is turned counter-clockwise: its top
  // edge becomes the left edge.
  if ((pw > ph) != (kPanelW > kPanelH)) {
    c = {ph - c.y1, c.x0, ph - c.y0, c.x1};
    std::swap(pw, ph);
  }
  double s = std::min(1.0, std::min(kPanelW / pw, kPanelH / ph));
  double ox = (kPanelW - s * pw) / 2, oy = (kPanelH - s * ph) / 2 + kLift;
  double k = (model == 1060 ? 600 : 300) / 72.0;
  TMargins m;
  m.left = (ox + s * c.x0) * k;
  m.right = (kPanelW - ox - s * c.x1) * k;
  m.bottom = (oy + s * c.y0) * k;
  m.top = (kPanelH - oy - s * c.y1) * k;
  // What is lifted past the panel's top edge is cut off.
  m.top = std::max(0.0, m.top);
  return m;
}

void Real_ExpectNear(const TRealDocument& d, int model, const TMargins& got, const TMargins& want) {
  std::string where = std::to_string(model) + " " + d.name;
  EXPECT_NEAR(want.left, got.left, 2) << where << ": left";
  EXPECT_NEAR(want.right, got.right, 2) << where << ": right";
  EXPECT_NEAR(want.top, got.top, 2) << where << ": top";
  EXPECT_NEAR(want.bottom, got.bottom, 2) << where << ": bottom";
  if (d.kind != DOC_PICTURE) return;
  // imagetopdf centres a picture to within 1 point (it works in whole
  // points and hundredths of an inch); the 2 dots are rounding.
  double point = (model == 1060 ? 600 : 300) / 72.0;
  EXPECT_LE(std::fabs(got.left - got.right) / 2, point + 2) << where << ": off centre";
}

TSolidBlack Real_CheckSolid(const TStreamPanel& color, const TStreamPanel& black) {
  TSolidBlack s;
  size_t n = std::min(size_t(color.rows) * color.width, size_t(black.rows) * black.width);
  for (size_t i = 0; i < n; ++i) {
    const uint8_t* c = &color.pixels[i * 3];
    bool isBlack = c[0] == 0 && c[1] == 0 && c[2] == 0;
    bool isWhite = c[0] == 255 && c[1] == 255 && c[2] == 255;
    if (isBlack) {
      ++s.black;
      s.set += black.pixels[i] == 255;
    } else if (!isWhite) {
      ++s.grey;
    }
  }
  return s;
}

int Real_CountBars(const std::string& postscript) {
  // Each bar is one "[height xpos ypos width]" entry of the bar table.
  std::regex bar("\\[ *[0-9.]+ +[0-9.]+ +[0-9.]+ +[0-9.]+\\]");
  return int(std::distance(std::sregex_iterator(postscript.begin(), postscript.end(), bar),
                           std::sregex_iterator()));
}

int Real_CountPanelBars(const TStreamPanel& p) {
  std::map<int, int> rowsWithRuns;
  for (uint32_t y = 0; y < p.rows; ++y) {
    int runs = 0;
    for (uint32_t x = 0; x < p.width; ++x) {
      bool on = p.pixels[size_t(y) * p.width + x] == 255;
      bool before = x > 0 && p.pixels[size_t(y) * p.width + x - 1] == 255;
      runs += on && !before;
    }
    if (runs > 0) ++rowsWithRuns[runs];
  }
  int best = 0, count = 0;
  for (const auto& r : rowsWithRuns)
    if (r.second > count) best = r.first, count = r.second;
  return best;
}

std::string Real_TableHeader() {
  return "| Model | Document | Options | Raster at the filter | Resampled | Margins L/T/R/B (dots) | "
         "Expected L/T/R/B | Black (Monochrome) |\n|---|---|---|---|---|---|---|---|\n";
}

std::string Real_TableRow(int model, const TRealDocument& d, const TRealRun& run, const TMargins& got,
                          const TMargins& want, const std::string& black) {
  char buf[512];
  std::string options;
  for (const std::string& o : d.options) options += (options.empty() ? "" : " ") + o;
  snprintf(buf, sizeof buf, "| %d | %s | %s | %u × %u | %s | %.0f/%.0f/%.0f/%.0f | %.1f/%.1f/%.1f/%.1f | %s |\n",
           model, d.name.c_str(), options.empty() ? "-" : options.c_str(), run.rasterWidth,
           run.rasterHeight, run.resampled ? "yes" : "no", got.left, got.top, got.right, got.bottom,
           want.left, want.top, want.right, want.bottom, black.c_str());
  return buf;
}
