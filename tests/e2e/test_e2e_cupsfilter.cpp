// End-to-end tests: documents through the real CUPS filter chain
// (cupsfilter, the upstream filters and ghostscript) and rastertobrellian.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "lib/png_io.h"
#include "support/cups_env.h"
#include "support/process.h"

namespace {

struct TJob {
  TProcessResult run;
  TStreamCheck stream;
};

// 'RunCupsfilter()' - Print file on a model's queue through cupsfilter with
// "-o" options and read the job command stream it produced.
TJob RunCupsfilter(int model, const std::string& file, const std::vector<std::string>& options) {
  std::string dir = Cups_WorkDir("cupsfilter-" + std::to_string(model));
  std::string conf = Cups_WriteFilesConf(dir, Cups_MakeServerBin(dir));
  std::vector<std::string> argv = {"/usr/sbin/cupsfilter", "-c", conf, "-p", Cups_PpdPath(model),
                                   "-m", "printer/brellian", "-e"};
  for (const std::string& o : options) {
    argv.push_back("-o");
    argv.push_back(o);
  }
  argv.push_back(file);
  TJob job;
  job.run = Test_RunProcess(argv);
  Stream_Read(job.run.out, &job.stream);
  return job;
}

const TStreamPanel* FindPanel(const TStreamCheck& s, int32_t side, uint32_t type) {
  for (const TStreamPanel& p : s.panels)
    if (p.side == side && p.panelType == type) return &p;
  return nullptr;
}

const uint8_t* Rgb(const TStreamPanel* p, uint32_t x, uint32_t y) {
  return &p->pixels[(static_cast<size_t>(y) * p->width + x) * 3];
}

// Dots of a one-byte panel inside a rectangle that are 255.
size_t CountApplied(const TStreamPanel* p, uint32_t x0, uint32_t y0, uint32_t x1, uint32_t y1) {
  size_t n = 0;
  for (uint32_t y = y0; y < y1; ++y)
    for (uint32_t x = x0; x < x1; ++x) n += p->pixels[static_cast<size_t>(y) * p->width + x] == 255;
  return n;
}

// Points of the sample card (from its top-left corner) to dots of the
// panel: the card-sized page lands at its true size, centred on the panel
// (about 3 points of rim on each side).
uint32_t Dot(double points, uint32_t panelWidth) {
  return static_cast<uint32_t>((points + 3.0) / 72.0 * (panelWidth == 2072 ? 600 : 300));
}

class CupsfilterJobs : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  }
};

}  // namespace

TEST_F(CupsfilterJobs, SampleCardColorKOnEveryModel) {
  for (int model : {1030, 1035, 1060}) {
    SCOPED_TRACE(model);
    TJob job = RunCupsfilter(model, Cups_SampleCardPdf(),
                             {"frontRibbon=ColorK", "frontResin=Preset1", "page-ranges=1"});
    ASSERT_EQ(0, job.run.status) << job.run.err;
    ASSERT_TRUE(job.stream.complete) << job.stream.error;
    EXPECT_NE(std::string::npos, job.run.err.find("INFO: Ready to print."));
    uint32_t w = model == 1060 ? 2072 : 1036, h = model == 1060 ? 1328 : 664;
    ASSERT_EQ(2u, job.stream.panels.size());
    const TStreamPanel* color = FindPanel(job.stream, 0, 0);
    const TStreamPanel* black = FindPanel(job.stream, 0, 1);
    ASSERT_TRUE(color && black);
    EXPECT_EQ(w, color->width);
    EXPECT_EQ(h, color->height);
    EXPECT_EQ(w, black->width);
    // The blue band at the top of the card.
    const uint8_t* band = Rgb(color, Dot(100, w), Dot(8, w));
    EXPECT_LT(band[0], 80);
    EXPECT_GT(band[2], 120);
    // White card stock at the right edge, and the white rim of the panel
    // below the card.
    const uint8_t* stock = Rgb(color, Dot(235, w), Dot(60, w));
    EXPECT_GE(stock[0], 250);
    EXPECT_GE(stock[2], 250);
    const uint8_t* margin = Rgb(color, w / 2, h - 1);
    EXPECT_EQ(255, margin[0]);
    // Resin black: the bar code (pure black) takes resin; the band and the
    // white stock do not.
    uint32_t codeTop = Dot(153.07 - 58, w), codeBottom = Dot(153.07 - 22, w);
    EXPECT_GT(CountApplied(black, Dot(90, w), codeTop, Dot(120, w), codeBottom), 100u);
    EXPECT_EQ(0u, CountApplied(black, 0, 0, w, Dot(20, w)));
    EXPECT_EQ(0u, CountApplied(black, Dot(200, w), Dot(40, w), Dot(240, w), Dot(60, w)));
  }
}

TEST_F(CupsfilterJobs, TwoPageDuplexPdfPrintsBothSides) {
  TJob job = RunCupsfilter(1060, Cups_SampleCardPdf(), {"Duplex=DuplexNoTumble"});
  ASSERT_EQ(0, job.run.status) << job.run.err;
  ASSERT_TRUE(job.stream.complete) << job.stream.error;
  ASSERT_EQ(2u, job.stream.panels.size());
  const TStreamPanel* front = FindPanel(job.stream, 0, 0);
  const TStreamPanel* back = FindPanel(job.stream, 1, 0);
  ASSERT_TRUE(front && back);
  // The back's red band along the bottom edge of the card (30 points high).
  const uint8_t* red = Rgb(back, 1000, Dot(153.07 - 15, 2072));
  EXPECT_GT(red[0], 150);
  EXPECT_LT(red[1], 100);
  // The front's blue band.
  EXPECT_GT(Rgb(front, 1000, Dot(8, 2072))[2], 120);
  TStartCardFields card;
  int cards = 0;
  for (const TStreamRecord& r : job.stream.records) {
    if (Stream_DecodeStartCard(r, &card)) {
      ++cards;
      EXPECT_EQ(1, card.duplex);
    }
  }
  EXPECT_EQ(1, cards);
}

TEST_F(CupsfilterJobs, PortraitPngPhotoIsTurnedToTheLandscapePanel) {
  std::string dir = Cups_WorkDir("png-photo");
  const uint32_t pw = 540, ph = 856;
  std::vector<uint8_t> rgb(static_cast<size_t>(pw) * ph * 3);
  for (uint32_t y = 0; y < ph; ++y)
    for (uint32_t x = 0; x < pw; ++x) {
      uint8_t* p = &rgb[(static_cast<size_t>(y) * pw + x) * 3];
      p[0] = static_cast<uint8_t>(x * 255 / pw);
      p[1] = static_cast<uint8_t>(y * 255 / ph);
      p[2] = y < ph / 4 ? 0 : 160;  // a dark blue-free top quarter
    }
  std::string png = dir + "/photo.png";
  ASSERT_TRUE(Png_WriteRGB(png, pw, ph, rgb.data()));
  TJob job = RunCupsfilter(1035, png, {"media=CR80Portrait", "fit-to-page"});
  ASSERT_EQ(0, job.run.status) << job.run.err;
  ASSERT_TRUE(job.stream.complete) << job.stream.error;
  ASSERT_EQ(1u, job.stream.panels.size());
  const TStreamPanel* color = FindPanel(job.stream, 0, 0);
  ASSERT_TRUE(color);
  EXPECT_EQ(1036u, color->width);
  EXPECT_EQ(664u, color->height);
  // The page is turned counter-clockwise: the photo's top edge becomes the
  // panel's left edge, so blue is missing on the left and present on the right.
  size_t leftBlue = 0, rightBlue = 0;
  for (uint32_t y = 100; y < 500; ++y) {
    leftBlue += Rgb(color, 60, y)[2] < 40;
    rightBlue += Rgb(color, 900, y)[2] > 120;
  }
  EXPECT_GT(leftBlue, 300u);
  EXPECT_GT(rightBlue, 300u);
}

TEST_F(CupsfilterJobs, PortraitJpegMonochromeGivesOnlyABlackPanel) {
  std::string dir = Cups_WorkDir("jpeg");
  std::string ps = dir + "/portrait.ps", jpg = dir + "/portrait.jpg";
  Test_WriteFile(ps,
                 "%!PS\n<< /PageSize [153 243] >> setpagedevice\n"
                 "1 1 1 setrgbcolor 0 0 153 243 rectfill\n"
                 "0 0 0 setrgbcolor 20 20 40 200 rectfill showpage\n");
  TProcessResult gs = Test_RunProcess({"/usr/bin/gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE",
                                       "-sDEVICE=jpeg", "-r150", "-o", jpg, ps});
  ASSERT_EQ(0, gs.status) << gs.err;
  TJob job = RunCupsfilter(1030, jpg, {"frontRibbon=Monochrome", "media=CR80Portrait", "fit-to-page"});
  ASSERT_EQ(0, job.run.status) << job.run.err;
  ASSERT_TRUE(job.stream.complete) << job.stream.error;
  ASSERT_EQ(1u, job.stream.panels.size());
  const TStreamPanel* black = FindPanel(job.stream, 0, 1);
  ASSERT_TRUE(black);
  EXPECT_EQ(1036u, black->width);
  TStartSideFields side;
  int sides = 0;
  for (const TStreamRecord& r : job.stream.records) {
    if (Stream_DecodeStartSide(r, &side)) {
      ++sides;
      EXPECT_EQ(0, side.ymc);
      EXPECT_EQ(1, side.k);
    }
  }
  EXPECT_EQ(1, sides);
  // Some black is printed (the bar), and most of the panel is not.
  size_t applied = CountApplied(black, 0, 0, black->width, black->height);
  EXPECT_GT(applied, 1000u);
  EXPECT_LT(applied, static_cast<size_t>(black->width) * black->height / 2);
}
