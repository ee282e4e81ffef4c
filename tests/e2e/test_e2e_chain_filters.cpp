// Tests of the two filters the PPD files declare beside rastertobrellian,
// run as the spooler runs them: pdftobrellian (gstoraster piped into
// rastertobrellian) and texttobrellian (texttopdf with margins, pdftopdf,
// pdftobrellian): exit status, a cancel, a bad document, the text margins.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <dirent.h>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "support/cups_env.h"
#include "support/process.h"
#include "support/real_documents.h"

namespace {

class ChainFilters : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
    dir_ = Cups_WorkDir("chain-filters");
    filters_ = Cups_MakeServerBin(dir_) + "/filter/";
    tmp_ = dir_ + "/tmp";
    Test_MakeDirs(tmp_);
  }

  // 'Run()' - One filter with the spooler's arguments and environment.
  TProcessResult Run(const std::string& filter, const std::string& options, const std::string& file,
                     const std::string& sigtermOnErr = "") {
    TProcessOptions o;
    o.env["PPD"] = Cups_PpdPath(1060);
    o.env["TMPDIR"] = tmp_;
    o.env["CHARSET"] = "utf-8";
    o.env["CUPS_DATADIR"] = "/usr/share/cups";
    o.env["CUPS_SERVERBIN"] = dir_ + "/serverbin";
    o.sigtermOnErr = sigtermOnErr;
    return Test_RunProcess({filters_ + filter, "7", "user", "title", "1", options, file}, o);
  }

  // 'TmpEntries()' - What the filters left in their temporary directory.
  int TmpEntries() {
    int n = 0;
    if (DIR* d = opendir(tmp_.c_str())) {
      while (struct dirent* e = readdir(d)) n += std::string(e->d_name) != "." && std::string(e->d_name) != "..";
      closedir(d);
    }
    return n;
  }

  std::string dir_, filters_, tmp_;
};

}  // namespace

TEST_F(ChainFilters, PdfGivesACompleteJobOfPanelSizedPanels) {
  TProcessResult r = Run("pdftobrellian", "frontRibbon=ColorK", Cups_SampleCardPdf());
  ASSERT_EQ(0, r.status) << r.err;
  TStreamCheck s;
  Stream_Read(r.out, &s);
  ASSERT_TRUE(s.complete) << s.error;
  ASSERT_FALSE(s.panels.empty());
  EXPECT_EQ(2072u, s.panels[0].width);
  EXPECT_EQ(1328u, s.panels[0].height);
  EXPECT_NE(std::string::npos, r.err.find("INFO: Ready to print."));
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, ADocumentThatIsNoPdfFailsWithTheFiltersMessage) {
  std::string bad = dir_ + "/bad.pdf";
  Test_WriteFile(bad, "%PDF-1.4\nthis is not a PDF document\n");
  TProcessResult r = Run("pdftobrellian", "", bad);
  EXPECT_NE(0, r.status);
  EXPECT_NE(std::string::npos, r.err.find("ERROR: No pages found!")) << r.err;
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, SigtermEndsBothProgramsAndTheFilterEndsTheJob) {
  // The filter's own cancel: it stops reading pages, closes the job and
  // ends with status 0; the wrapper passes that status on.
  TProcessResult r = Run("pdftobrellian", "", Cups_SampleCardPdf(), "PAGE: 1");
  EXPECT_EQ(0, r.status) << r.err;
  TStreamCheck s;
  Stream_Read(r.out, &s);
  EXPECT_TRUE(s.ok) << s.error;
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, TextStartsTwelvePointsInUnlessTheJobSetsItsMargins) {
  std::string text = dir_ + "/text.txt";
  Test_WriteFile(text, "ACCESS CARD\nBRELLIAN 0042\n");
  TProcessResult plain = Run("texttobrellian", "frontRibbon=Monochrome", text);
  ASSERT_EQ(0, plain.status) << plain.err;
  TProcessResult wide = Run("texttobrellian", "frontRibbon=Monochrome page-left=72 page-top=36", text);
  ASSERT_EQ(0, wide.status) << wide.err;
  TStreamCheck a, b;
  Stream_Read(plain.out, &a);
  Stream_Read(wide.out, &b);
  ASSERT_TRUE(a.complete && b.complete);
  TMargins ma = Real_Measure(a.panels.front()), mb = Real_Measure(b.panels.front());
  // 12 points are 100 dots at 600 dpi; the glyphs start a few dots in.
  EXPECT_GE(ma.left, 100);
  EXPECT_LT(ma.left, 112);
  EXPECT_GE(ma.top, 100 - 3);   // less the renderer's 3-dot lift
  EXPECT_LT(ma.top, 125);
  // page-left=72 moves the text 60 points (500 dots) to the right.
  EXPECT_NEAR(ma.left + 500, mb.left, 3);
  EXPECT_NEAR(ma.top + 200, mb.top, 3);
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, ALongTextIsLaidOutOnlyAsFarAsOneCardGoes) {
  // 300 form feeds are 300 pages; a card takes at most 8.
  std::string text = dir_ + "/form-feeds.txt";
  Test_WriteFile(text, "FRONT\n" + std::string(300, '\f'));
  TProcessResult r = Run("texttobrellian", "frontRibbon=Monochrome", text);
  ASSERT_EQ(0, r.status) << r.err;
  size_t pages = 0;
  for (size_t at = r.err.find("PAGE: "); at != std::string::npos; at = r.err.find("PAGE: ", at + 1)) ++pages;
  EXPECT_GE(pages, 1u);
  EXPECT_LE(pages, 8u) << "pages read by the filter";
  TStreamCheck s;
  Stream_Read(r.out, &s);
  EXPECT_TRUE(s.complete) << s.error;
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, ALongPdfIsRenderedOnlyAsFarAsOneCardGoes) {
  std::string ps = dir_ + "/pages.ps", pdf = dir_ + "/pages.pdf";
  Test_WriteFile(ps, "%!PS\n1 1 30 { /Helvetica findfont 24 scalefont setfont 20 60 moveto 3 string cvs show "
                     "showpage } for\n");
  ASSERT_EQ(0, Test_RunProcess({"/usr/bin/gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite",
                                "-dDEVICEWIDTHPOINTS=248.64", "-dDEVICEHEIGHTPOINTS=159.36",
                                "-sOutputFile=" + pdf, ps}).status);
  TProcessResult r = Run("pdftobrellian", "frontRibbon=Color", pdf);
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("PAGE: 8 ")) << r.err;
  EXPECT_EQ(std::string::npos, r.err.find("PAGE: 9 ")) << "more than a card's pages rendered";
  EXPECT_NE(std::string::npos, r.err.find("WARNING: Only the first 8 pages of the document are rendered: a job "
                                          "prints one card, which takes at most 8 pages.\n"));
  EXPECT_EQ(0, TmpEntries());
}

TEST_F(ChainFilters, AnEpsDrawnFarFromTheOriginLandsOnTheCard) {
  // A logo whose bounding box lies far off a card-sized page at the origin.
  std::string eps = dir_ + "/logo.eps";
  Test_WriteFile(eps, "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 251 331 371 512\n%%EndComments\n"
                      "0 0 1 setrgbcolor 251 331 120 181 rectfill 0 setgray 261 341 100 161 rectfill\n");
  TProcessResult r = Run("pdftobrellian", "frontRibbon=Color", eps);
  ASSERT_EQ(0, r.status) << r.err;
  TStreamCheck s;
  Stream_Read(r.out, &s);
  ASSERT_TRUE(s.complete) << s.error;
  TMargins m = Real_Measure(s.panels.front());
  // Fitted to the card (the rim outside it is 25 and 26 dots at 600 dpi):
  // turned, its long side across the card; its short side, 120 points,
  // fills the card's height less 0.5 point (4 dots) each side, lifted
  // 3 dots by the renderer; centred across.
  EXPECT_NEAR(26 + 4 - 3, m.top, 2);
  EXPECT_NEAR(26 + 4 + 3, m.bottom, 2);
  EXPECT_NEAR(m.left, m.right, 2);
  EXPECT_GE(m.left, 25 + 4);
  // 181 x 120 points scaled by (153.07 - 1) / 120: 1911 dots across.
  EXPECT_NEAR(1911, 2072 - m.left - m.right, 3);
}

TEST_F(ChainFilters, AWidePictureIsNotTurnedAndStaysInsideTheCard) {
  // A bar-code picture three times as wide as it is high, through the
  // spooler's own choice of filters.
  std::string png = dir_ + "/wide.png";
  ASSERT_EQ(0, Test_RunProcess({"/usr/bin/gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pnggray",
                                "-r72", "-g300x100", "-sOutputFile=" + png, "-c",
                                "0 setgray 0 0 300 100 rectfill 1 setgray 4 4 292 92 rectfill 0 setgray "
                                "10 10 290 { 0 4 100 rectfill } for showpage"}).status);
  TRealRun run = Real_RunCupsfilter(Cups_WriteFilesConf(dir_, dir_ + "/serverbin"), 1060, png, {});
  ASSERT_EQ(0, run.status) << run.err;
  ASSERT_TRUE(run.stream.complete) << run.stream.error;
  TMargins m = Real_Measure(run.stream.panels.front());
  double w = 2072 - m.left - m.right, h = 1328 - m.top - m.bottom;
  EXPECT_GT(w, 2.5 * h) << "the picture was turned";
  // 96 % of the panel's width, inside the card.
  EXPECT_GE(m.left, 25);
  EXPECT_GE(m.right, 25);
  EXPECT_NEAR(0.96 * 2072, w, 12);
}
