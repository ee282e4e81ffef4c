// Real documents through the real CUPS chain on every model: CUPS' test
// page and a sample form, a photo, a screenshot, a text file and a Code 128
// bar code, each checked for the raster size that reached the filter, the
// white margins around the printed content and, for "Monochrome", solid
// black.  Writes the table of results to <build>/e2e/real-documents.md.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

#include "jobstream/stream_reader.h"
#include "support/cups_env.h"
#include "support/process.h"
#include "support/real_documents.h"

namespace {

const char* kText = "/usr/share/doc/barcode/copyright";

std::vector<TRealDocument> Documents(const std::string& dir) {
  return {
      {"CUPS test page (A4 PDF)", "/usr/share/cups/data/default-testpage.pdf", DOC_PDF, {}, false},
      {"CUPS sample form (A4 PDF)", "/usr/share/cups/data/form_english.pdf", DOC_PDF, {}, false},
      {"photo (JPEG 445 x 570)", "/usr/share/cups/doc-root/images/smiley.jpg", DOC_PICTURE, {}, false},
      {"screenshot (PNG 961 x 636)", "/usr/share/doc/valgrind/html/images/kcachegrind_xtree.png",
       DOC_PICTURE, {}, false},
      {"text file (Debian copyright)", kText, DOC_TEXT, {"frontRibbon=Monochrome", "page-ranges=1"}, true},
      {"Code 128 bar code (PostScript)", dir + "/barcode.ps", DOC_POSTSCRIPT, {"frontRibbon=Monochrome"},
       true},
  };
}

class RealDocuments : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  }
};

}  // namespace

TEST_F(RealDocuments, EveryDocumentReachesTheFilterPanelSizedOnEveryModel) {
  std::string dir = Cups_WorkDir("real-documents");
  std::string conf = Cups_WriteFilesConf(dir, Cups_MakeServerBin(dir));
  TProcessResult bc = Test_RunProcess({"/usr/bin/barcode", "-b", "BRELLIAN-0042", "-e", "code128", "-u", "mm",
                                       "-p", "85.6x54", "-g", "60x20+12+17", "-o", dir + "/barcode.ps"});
  ASSERT_EQ(0, bc.status) << "the barcode package makes the bar code: " << bc.err;
  std::vector<TRealDocument> docs = Documents(dir);
  for (const TRealDocument& d : docs) ASSERT_EQ(0, access(d.path.c_str(), R_OK)) << d.path;
  int bars = Real_CountBars(Test_ReadFile(dir + "/barcode.ps"));
  ASSERT_GT(bars, 20);

  std::string table = Real_TableHeader();
  for (int model : {1030, 1035, 1060}) {
    for (const TRealDocument& d : docs) {
      SCOPED_TRACE(std::to_string(model) + " " + d.name);
      TRealRun run = Real_RunCupsfilter(conf, model, d.path, d.options);
      ASSERT_EQ(0, run.status) << run.err;
      ASSERT_TRUE(run.stream.complete) << run.stream.error;
      uint32_t w = model == 1060 ? 2072 : 1036, h = model == 1060 ? 1328 : 664;
      // The raster that reached the filter is the panel; nothing resampled.
      EXPECT_EQ(w, run.rasterWidth);
      EXPECT_EQ(h, run.rasterHeight);
      EXPECT_FALSE(run.resampled) << "the filter logged AspectResize";
      ASSERT_FALSE(run.stream.panels.empty());
      const TStreamPanel& p = run.stream.panels.front();
      TMargins got = Real_Measure(p);
      TMargins want = Real_Expected(d, model, conf);
      Real_ExpectNear(d, model, got, want);
      std::string black = "-";
      if (d.monochrome) {
        // The same job printed in colour shows the page as the filter read
        // it: no grey dot, and every black dot of it is a set black dot of
        // the "Monochrome" job.
        std::vector<std::string> color = d.options;
        color[0] = "frontRibbon=Color";
        TRealRun ref = Real_RunCupsfilter(conf, model, d.path, color);
        ASSERT_TRUE(ref.stream.complete) << ref.stream.error;
        TSolidBlack s = Real_CheckSolid(ref.stream.panels.front(), p);
        EXPECT_EQ(0u, s.grey) << "grey dots in the page";
        EXPECT_GT(s.black, 1000u);
        EXPECT_EQ(s.black, s.set) << "black dots of the page left unset in the black panel";
        if (d.kind == DOC_POSTSCRIPT) {
          EXPECT_EQ(bars, Real_CountPanelBars(p));
        }
        black = std::to_string(s.set) + " of " + std::to_string(s.black) + " set, " +
                std::to_string(s.grey) + " grey" +
                (d.kind == DOC_POSTSCRIPT ? ", " + std::to_string(Real_CountPanelBars(p)) + " of " +
                                                std::to_string(bars) + " bars"
                                          : std::string());
      }
      table += Real_TableRow(model, d, run, got, want, black);
    }
  }
  Test_WriteFile(dir + "/../real-documents.md", table);
  printf("%s", table.c_str());
}

TEST_F(RealDocuments, TheSpoolerTakesTheSameWayAsCupsfilter) {
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("real-documents-spooler");
  std::string conf = Cups_WriteFilesConf(dir, Cups_MakeServerBin(dir));
  TTestSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  const std::vector<std::string> files = {"/usr/share/cups/doc-root/images/smiley.jpg", kText};
  for (int model : {1030, 1035, 1060}) {
    std::string out, queue = "br" + std::to_string(model), captured = dir + "/out/" + queue + ".bin";
    ASSERT_EQ(0, spooler.Run("lpadmin -p " + queue + " -E -v capture:" + captured + " -P " +
                                 Cups_PpdPath(model), &out)) << out;
    for (const std::string& file : files) {
      SCOPED_TRACE(queue + " " + file);
      unlink(captured.c_str());
      ASSERT_EQ(0, spooler.Run("lp -d " + queue + " -o page-ranges=1 " + file, &out)) << out;
      ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
      TStreamCheck job;
      Stream_Read(Test_ReadFile(captured), &job);
      ASSERT_TRUE(job.complete) << job.error << spooler.ErrorLog();
      TRealRun ref = Real_RunCupsfilter(conf, model, file, {"page-ranges=1"});
      ASSERT_TRUE(ref.stream.complete);
      ASSERT_EQ(ref.stream.panels.size(), job.panels.size());
      // The same panels, dot for dot, as through cupsfilter.
      EXPECT_TRUE(ref.stream.panels[0].pixels == job.panels[0].pixels);
    }
  }
  std::string log = spooler.ErrorLog();
  EXPECT_NE(std::string::npos, log.find("pdftobrellian")) << "the queue did not use the PDF way";
  EXPECT_EQ(std::string::npos, log.find("imagetoraster"));
}

TEST_F(RealDocuments, PortraitSizesReachTheFilterAsTheTurnedPanel) {
  std::string dir = Cups_WorkDir("real-documents-portrait");
  std::string conf = Cups_WriteFilesConf(dir, Cups_MakeServerBin(dir));
  for (int model : {1030, 1060}) {
    uint32_t w = model == 1060 ? 2072 : 1036, h = model == 1060 ? 1328 : 664;
    for (const char* size : {"PageSize=CR80Portrait", "PageSize=PanelPortrait"}) {
      for (const std::string& file :
           {Cups_SampleCardPdf(), std::string("/usr/share/cups/doc-root/images/smiley.jpg")}) {
        SCOPED_TRACE(std::to_string(model) + " " + size + " " + file);
        TRealRun run = Real_RunCupsfilter(conf, model, file, {size, "page-ranges=1"});
        ASSERT_EQ(0, run.status) << run.err;
        ASSERT_TRUE(run.stream.complete) << run.stream.error;
        // A portrait page of the turned panel, which the filter turns back
        // without resampling.
        EXPECT_EQ(h, run.rasterWidth);
        EXPECT_EQ(w, run.rasterHeight);
        EXPECT_FALSE(run.resampled);
        EXPECT_EQ(w, run.stream.panels.front().width);
      }
    }
  }
}
