// The badge table: badges made the way a badge office makes them (glabels
// with the shipped CR80 template merging three people, qrencode and zint
// symbols as PNG and EPS, a front/back PDF), rendered through cupsfilter
// and the real chain, printed on every model in Monochrome, ColorK and
// Color with the shipped defaults, and every symbol read back from the
// panel that carries it.  Writes the table to <build>/e2e/badges-*.md.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "support/badges.h"
#include "support/cups_env.h"
#include "support/process.h"

namespace {

const char* const kModes[] = {"Monochrome", "ColorK", "Color"};

// 'Joined()' - The lines joined by commas, "nothing" when there are none.
std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : ", ") + line;
  return text.empty() ? "nothing" : text;
}

class BadgeTable : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
    std::string missing;
    // Installed by scripts/install-deps.sh --full; a machine without them
    // cannot make the badges at all.
    ASSERT_TRUE(Badge_HaveTools(&missing)) << "missing:" << missing;
  }

  // 'Table()' - Print every document on the models that share a
  // resolution, in every mode, from one rendering per document (and per
  // duplex setting), check each symbol and return the table's rows.
  std::string Table(const std::string& name, const std::vector<int>& models) {
    std::string dir = Cups_WorkDir(name), error, rows;
    std::string serverBin = Cups_MakeServerBin(dir);
    std::string conf = Cups_WriteFilesConf(dir, serverBin);
    std::vector<TBadgeDoc> docs;
    EXPECT_TRUE(Badge_MakeDocuments(dir, &docs, &error)) << error;
    for (const TBadgeDoc& doc : docs) {
      std::string simplex, duplex;
      for (int model : models) {
        bool twoSided = !doc.back.empty() && model != 1030;
        std::string& raster = twoSided ? duplex : simplex;
        if (raster.empty()) raster = Badge_Render(conf, serverBin, model, doc, twoSided, &error);
        EXPECT_FALSE(raster.empty()) << model << " " << doc.name << ": " << error;
        if (raster.empty()) continue;
        for (const char* mode : kModes) rows += Row(dir, model, doc, mode, raster, twoSided);
      }
    }
    Test_WriteFile(dir + "/../" + name + ".md", rows);
    printf("%s", rows.c_str());
    return rows;
  }

  // 'Row()' - One job and its checks: the front symbol read from its panel,
  // every dot on the card, and the back symbol from the back's panel.
  std::string Row(const std::string& dir, int model, const TBadgeDoc& doc, const std::string& mode,
                  const std::string& raster, bool twoSided) {
    SCOPED_TRACE(std::to_string(model) + " " + doc.name + " " + mode);
    std::string options = "frontRibbon=" + mode + " backRibbon=" + mode, err;
    TStreamCheck stream;
    EXPECT_EQ(0, Badge_Print(raster, model, options, &stream, &err)) << err;
    EXPECT_TRUE(stream.complete) << stream.error;
    const TStreamPanel* front = Badge_Panel(stream, 0, mode);
    EXPECT_NE(nullptr, front) << "no " << (mode == "Color" ? "colour" : "black") << " panel in front";
    if (!front) return "";
    std::vector<std::string> read = Badge_Read(*front, dir);
    EXPECT_NE(read.end(), std::find(read.begin(), read.end(), doc.front)) << "read: " << Joined(read);
    std::string margins;
    bool inside = Badge_InsideCard(*front, doc.toEdge, &margins);
    EXPECT_TRUE(inside) << "dots beyond the card's edge, margins " << margins;
    std::string back = "-";
    if (twoSided) {
      const TStreamPanel* panel = Badge_Panel(stream, 1, mode);
      EXPECT_NE(nullptr, panel) << "no back side";
      std::vector<std::string> backRead;
      if (panel) backRead = Badge_Read(*panel, dir);
      EXPECT_NE(backRead.end(), std::find(backRead.begin(), backRead.end(), doc.back))
          << "back read: " << Joined(backRead);
      // The back's design is on the back, not printed over the front.
      EXPECT_EQ(read.end(), std::find(read.begin(), read.end(), doc.back)) << "front read: " << Joined(read);
      back = Joined(backRead);
    } else if (!doc.back.empty()) {
      back = "one-sided model";
    }
    std::string panelName = mode == "Color" ? "colour" : (mode == "ColorK" ? "resin black" : "black");
    return "| " + std::to_string(model) + " | " + doc.name + " | " + mode + " | " + panelName + " | " +
           Joined(read) + " | " + margins + (inside ? " (on the card)" : " (OFF THE CARD)") + " | " + back +
           " |\n";
  }
};

}  // namespace

TEST_F(BadgeTable, EverySymbolScansOnTheThreeHundredDpiModels) { Table("badges-300dpi", {1030, 1035}); }

TEST_F(BadgeTable, EverySymbolScansOnThe1060) { Table("badges-600dpi", {1060}); }

TEST_F(BadgeTable, TheSpoolerPrintsAGlabelsBadgeThatScansWithOneOptionOnly) {
  // The badge office's way: lp with the colour mode as the only option, on
  // a queue made from the shipped PPD.
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("badges-spooler"), error, out;
  std::vector<TBadgeDoc> docs;
  ASSERT_TRUE(Badge_MakeDocuments(dir, &docs, &error)) << error;
  Cups_WriteFilesConf(dir, Cups_MakeServerBin(dir));
  TTestSpooler spooler(dir);
  ASSERT_TRUE(spooler.Start(&error)) << error;
  std::string captured = dir + "/out/cards.bin";
  ASSERT_EQ(0, spooler.Run("lpadmin -p cards -E -v capture:" + captured + " -P " + Cups_PpdPath(1060), &out))
      << out;
  for (const char* mode : {"Monochrome", "ColorK"}) {
    SCOPED_TRACE(mode);
    unlink(captured.c_str());
    ASSERT_EQ(0, spooler.Run(std::string("lp -d cards -o frontRibbon=") + mode + " " + docs[0].path, &out)) << out;
    ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
    TStreamCheck job;
    Stream_Read(Test_ReadFile(captured), &job);
    ASSERT_TRUE(job.complete) << job.error << spooler.ErrorLog();
    const TStreamPanel* black = Badge_Panel(job, 0, mode);
    ASSERT_NE(nullptr, black) << "no black panel";
    std::vector<std::string> read = Badge_Read(*black, dir);
    EXPECT_NE(read.end(), std::find(read.begin(), read.end(), docs[0].front)) << "read: " << Joined(read);
  }
}
