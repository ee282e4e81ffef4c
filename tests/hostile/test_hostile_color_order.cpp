// Pages in banded or planar colour order: refused with a log line, their
// data read to the end, and the next page printed.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "support/process.h"
#include "support/stream_types.h"
#include "support/hostile_harness.h"

namespace {

constexpr uint32_t kBanded = 1, kPlanar = 2;

// 'Order_Page()' - A page of 8 x 2 pixels in the given colour order with
// bytesPerLine bytes per line and lines lines of data.
std::string Order_Page(uint32_t order, uint32_t bytesPerLine, uint32_t lines, char fill) {
  THostileHeader h;
  h.colorOrder = order;
  h.bytesPerLine = bytesPerLine;
  if (order == kPlanar) h.bitsPerPixel = 8;
  return Hostile_HeaderBytes(h) + std::string(static_cast<size_t>(bytesPerLine) * lines, fill);
}

// 'Order_Expect()' - The refused page, then a chunky page that prints the
// card: both pages are counted, the card is complete, the log tells why the
// first page was refused.
void Order_Expect(const std::string& refused, const std::string& line) {
  Test_ResetLog();
  THostileRun run;
  run.input = Hostile_Stream({refused, Order_Page(0, 24, 2, '\x40')});
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(Hostile_ProgressErr({2, 2}), Test_WithoutWarnings(r.err));
  TStreamCheck check;
  EXPECT_EQ(0, Stream_Read(r.out, &check)) << check.error;
  EXPECT_TRUE(check.complete);
  EXPECT_EQ(Hostile_SimplexColorCard(1328, 9), Test_RecordTypes(r.out));
  Hostile_ExpectLogLines({line, "CUPS Color Order:         [0]"});
}

}  // namespace

// Planar 8-bit RGB: three planes of two lines of 8 bytes.  One byte per
// pixel in a line is refused by the usual check; the two planes after the
// first are still read, so the next header is found.
TEST(HostileColorOrder, PlanarPageIsDrainedAndTheNextPrints) {
  Order_Expect(Order_Page(kPlanar, 8, 6, '\x11'), "ERR: CUPS bytes per pixel = 1.  Only supports 3.");
}

// Planar lines that happen to hold three bytes per pixel: refused for
// their colour order.
TEST(HostileColorOrder, PlanarPageOfThreeBytesPerPixelIsRefused) {
  Order_Expect(Order_Page(kPlanar, 24, 6, '\x11'), "ERR: CUPS color order = 2.  Only supports 0.");
}

// Banded lines hold one band of each colour one after the other: as many
// bytes as chunky lines, but not pixels; refused for their colour order.
TEST(HostileColorOrder, BandedPageIsRefused) {
  Order_Expect(Order_Page(kBanded, 24, 2, '\x11'), "ERR: CUPS color order = 1.  Only supports 0.");
}
