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
