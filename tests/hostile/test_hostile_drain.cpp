// Pages after the job's card is complete: read to the end of their data
// row by row, counted and reported, but never held in memory.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "support/process.h"
#include "support/stream_types.h"
#include "support/hostile_harness.h"

namespace {

// 'Drain_CompressedPage()' - One page of the compressed format (header and
// data) of width x height pixels of one colour: every encoded row repeats
// up to 256 times and is made of runs of up to 128 equal pixels.
std::string Drain_CompressedPage(uint32_t width, uint32_t height) {
  THostileHeader h;
  h.width = width;
  h.height = height;
  h.bytesPerLine = width * 3;
  std::string runs;
  for (uint32_t left = width; left > 0;) {
    uint32_t run = left < 128 ? left : 128;
    runs += static_cast<char>(run - 1);
    runs += "\x10\x80\xF0";
    left -= run;
  }
  std::string s = Hostile_HeaderBytes(h);
  for (uint32_t rows = 0; rows < height;) {
    uint32_t repeat = height - rows < 256 ? height - rows : 256;
    s += static_cast<char>(repeat - 1);
    s += runs;
    rows += repeat;
  }
  return s;
}

}  // namespace

// A card of one small page, then three pages of 124 MB each: the card is
// printed from the first, the rest are read and counted with all their
// progress lines, and the filter's peak memory stays far below one of them.
TEST(HostileDrain, PagesAfterTheCardAreNotHeld) {
  Test_ResetLog();
  const uint32_t kWidth = 1036, kHeight = 40000;   // 124 MB each
  std::string stream = "2SaR" + Drain_CompressedPage(8, 2);
  for (int i = 0; i < 3; ++i) stream += Drain_CompressedPage(kWidth, kHeight);
  ASSERT_LT(stream.size(), 64u * 1024u);

  THostileRun run;
  run.input = stream;
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(Hostile_ProgressErr({2, kHeight, kHeight, kHeight}), Test_WithoutWarnings(r.err));
  // The drained pages are still counted as pages that were not printed.
  EXPECT_NE(std::string::npos, r.err.find("WARNING: 3 pages not printed (pages 2 to 4)")) << r.err;
  TStreamCheck check;
  EXPECT_EQ(0, Stream_Read(r.out, &check)) << check.error;
  EXPECT_TRUE(check.complete);
  EXPECT_EQ(Hostile_SimplexColorCard(1328, 9), Test_RecordTypes(r.out));
  EXPECT_LT(r.maxRssKb, 100L * 1024L);   // one page would be 121,406 KB
  std::vector<std::string> log = Test_LogMessages();
  int announced = 0;
  for (const std::string& line : log)
    if (line.find("CUPS_AllocPage(1036,40000,3108)") != std::string::npos) ++announced;
  EXPECT_EQ(3, announced);
}

// A page after the card that claims more than the page caps still ends the
// job as designed, though it would only have been drained.
TEST(HostileDrain, PageBeyondTheCapsAfterTheCardStillEndsTheJob) {
  Test_ResetLog();
  THostileHeader huge;
  huge.width = 60000;
  huge.height = 60000;
  huge.bytesPerLine = 180000;
  std::string stream = "2SaR" + Drain_CompressedPage(8, 2) + Hostile_HeaderBytes(huge);
  THostileRun run;
  run.input = stream;
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("PAGE: 1 1\nINFO: Printing page 1, 0% complete...\nERROR: Unable to allocate memory!\n",
            r.err);
}
