// A raster stream that ends in the middle of a page, through the built
// filter as the spooler runs it: the page is processed as read, its
// missing rows print white, a WARNING line says how many rows arrived, and
// every other line and byte is the designed one.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "lib/raster_content.h"
#include "support/jobs_support.h"
#include "support/process.h"
#include "support/warnings_support.h"

using namespace jobtest;
using namespace warntest;

namespace {

constexpr size_t kLine = static_cast<size_t>(kW) * 3;

// 'Cut_Pattern()' - The test pattern page of the 1030's panel size, with
// the duplex flag as given.
TRasterPage Cut_Pattern(bool duplex = false) {
  TRasterPage page = Raster_MakeTestPattern(kW, kH, 300);
  page.header.Duplex = duplex ? CUPS_TRUE : CUPS_FALSE;
  return page;
}

// 'Cut_Rows()' - page with only its first bytes of pixel data: the stream
// ends there.
TRasterPage Cut_Rows(TRasterPage page, size_t bytes) {
  page.data.resize(bytes);
  return page;
}

// 'Cut_WhiteFrom()' - page with every row from row on painted white: what
// the filter is to print for a page cut at row.
TRasterPage Cut_WhiteFrom(TRasterPage page, uint32_t row) {
  Raster_FillRect(&page, 0, row, kW, kH - row, 255, 255, 255);
  return page;
}

// 'Cut_Designed()' - The designed standard error of a job whose pages had
// rowsRead[i] rows delivered before a read failed (kH for a whole page):
// the PAGE line and a progress line for every multiple of 128 up to the
// row whose read failed, then "INFO: Ready to print.".
std::vector<std::string> Cut_Designed(const std::vector<uint32_t>& rowsRead) {
  std::vector<std::string> lines;
  for (size_t p = 0; p < rowsRead.size(); ++p) {
    const int page = static_cast<int>(p + 1);
    lines.push_back("PAGE: " + std::to_string(page) + " 1");
    uint32_t last = rowsRead[p] < kH ? rowsRead[p] : kH - 1;  // the failed read's row is reached too
    for (uint32_t row = 0; row <= last; row += 128)
      lines.push_back("INFO: Printing page " + std::to_string(page) + ", " + std::to_string(row * 100 / kH) +
                      "% complete...");
  }
  lines.push_back("INFO: Ready to print.");
  return lines;
}

// 'Cut_Warning()' - The WARNING line of a page cut after rows rows.
std::string Cut_Warning(int page, uint32_t rows) {
  return "WARNING: Page " + std::to_string(page) + " is cut short: " + std::to_string(rows) + " of its " +
         std::to_string(kH) + " rows arrived before the document's data ended; the rows that did not arrive "
         "are printed white. Send the document again in full";
}

}  // namespace

// The stream ends half way through row 300 of the only page: rows 0-299
// print as in the whole page, rows 300-663 (the half row included) white.
TEST_F(TWarnJobs, PageCutMidRowPrintsTheRowsReadAndWhiteBelow) {
  TWarnRun cut = Warn_Run({Cut_Rows(Cut_Pattern(), 300 * kLine + kLine / 2)}, "");
  TWarnRun whole = Warn_Run({Cut_Pattern()}, "");
  TWarnRun expected = Warn_Run({Cut_WhiteFrom(Cut_Pattern(), 300)}, "");
  EXPECT_EQ(0, cut.status);
  EXPECT_EQ((std::vector<std::string>{Cut_Warning(1, 300)}), cut.warnings);
  EXPECT_EQ(Cut_Designed({300}), cut.designed);
  EXPECT_TRUE(whole.warnings.empty());
  EXPECT_EQ(Cut_Designed({kH}), whole.designed);
  // The stream is that of the page with white rows below the cut.
  EXPECT_TRUE(cut.check.ok && cut.check.complete);
  EXPECT_TRUE(cut.stream == expected.stream) << cut.outline;
  // Where the rows are complete, the colour panel is the whole page's.
  ASSERT_EQ(1u, cut.check.panels.size());
  ASSERT_EQ(1u, whole.check.panels.size());
  const std::vector<uint8_t>& got = cut.check.panels[0].pixels;
  const std::vector<uint8_t>& full = whole.check.panels[0].pixels;
  ASSERT_EQ(full.size(), got.size());
  EXPECT_TRUE(std::equal(got.begin(), got.begin() + 300 * kLine, full.begin()));
  // Below, white: not one zero (black) byte, although the pattern has black.
  EXPECT_TRUE(std::all_of(got.begin() + 300 * kLine, got.end(), [](uint8_t b) { return b == 255; }));
  EXPECT_FALSE(std::all_of(full.begin() + 300 * kLine, full.end(), [](uint8_t b) { return b == 255; }));
  Warn_LogHasNo(cut, "cut short");
}

// A "ColorK" side whose black page ends after its header: the colour page
// prints whole, and the black panel made from a page with no rows is empty
// (white makes no black), where zero rows would have made it all black.
TEST_F(TWarnJobs, BlackPageWithNoRowsGivesAnEmptyBlackPanel) {
  const std::string options = "frontRibbon=ColorK frontResin=Page";
  TWarnRun cut = Warn_Run({Cut_Pattern(), Cut_Rows(Cut_Pattern(), 0)}, options);
  TWarnRun expected = Warn_Run({Cut_Pattern(), Cut_WhiteFrom(Cut_Pattern(), 0)}, options);
  EXPECT_EQ(0, cut.status);
  EXPECT_EQ((std::vector<std::string>{Cut_Warning(2, 0)}), cut.warnings);
  EXPECT_EQ(Cut_Designed({kH, 0}), cut.designed);
  EXPECT_TRUE(expected.warnings.empty());
  EXPECT_TRUE(cut.stream == expected.stream) << cut.outline;
  ASSERT_EQ(2u, cut.check.panels.size());
  const std::vector<uint8_t>& black = cut.check.panels[1].pixels;
  EXPECT_EQ(kDots, black.size());
  EXPECT_TRUE(std::all_of(black.begin(), black.end(), [](uint8_t b) { return b == 0; }));
}

// A compressed stream on standard input, cut inside the back page of a
// duplex card: the front is the whole job's, the back has its rows read.
TEST_F(TWarnJobs, CompressedStreamOnStandardInputCutInTheBackPage) {
  std::vector<TRasterPage> pages = {Cut_Pattern(true), Cut_Pattern(true)};
  std::string front, whole, cut;
  ASSERT_TRUE(Raster_WriteStream({pages[0]}, true, &front));
  ASSERT_TRUE(Raster_WriteStream(pages, true, &whole));
  // The back page's header (1796 bytes) follows the front's stream; cut in
  // the middle of the back page's pixel data.
  const size_t header = 1796;
  ASSERT_GT(whole.size(), front.size() + header);
  ASSERT_TRUE(Raster_WriteStream(pages, true, &cut, front.size() + header + (whole.size() - front.size() - header) / 2));
  TProcessOptions env;
  env.env["PPD"] = Job_PPD();
  env.env["DEVICE_URI"] = std::string("usbbr://Brellian/BR-1030?serial=") + kWarnSerial;
  env.input = cut;
  TProcessResult r = Test_RunFilter({"42", "user", "title", "1", ""}, env);
  env.input = whole;
  TProcessResult w = Test_RunFilter({"42", "user", "title", "1", ""}, env);
  EXPECT_EQ(0, r.status);
  TStreamCheck got, full;
  Stream_Read(r.out, &got);
  Stream_Read(w.out, &full);
  EXPECT_TRUE(got.ok && got.complete) << got.error;
  ASSERT_EQ(2u, got.panels.size());
  ASSERT_EQ(2u, full.panels.size());
  EXPECT_TRUE(got.panels[0].pixels == full.panels[0].pixels);
  // The back: the rows the warning counts are the whole job's, the rest white.
  size_t at = r.err.find("WARNING: Page 2 is cut short: ");
  ASSERT_NE(std::string::npos, at) << r.err;
  uint32_t rows = static_cast<uint32_t>(std::stoul(r.err.substr(at + 30)));
  EXPECT_GT(rows, 0u);
  EXPECT_LT(rows, kH);
  EXPECT_NE(std::string::npos, r.err.find(Cut_Warning(2, rows) + "\n"));
  const std::vector<uint8_t>& back = got.panels[1].pixels;
  const std::vector<uint8_t>& fullBack = full.panels[1].pixels;
  EXPECT_TRUE(std::equal(back.begin(), back.begin() + rows * kLine, fullBack.begin()));
  EXPECT_TRUE(std::all_of(back.begin() + rows * kLine, back.end(), [](uint8_t b) { return b == 255; }));
  // Standard error without the warning: the designed lines of the rows read.
  EXPECT_EQ(Test_WithoutWarnings(r.err), [&] {
    std::string text;
    for (const std::string& line : Cut_Designed({kH, rows})) text += line + "\n";
    return text;
  }());
  EXPECT_EQ(std::string::npos, w.err.find("WARNING:")) << w.err;
}
