// The filter run as a process on hostile raster streams: every case ends in
// its designed outcome, in bounded time and memory, without a sanitizer
// report and without files outside the two system directories.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/hostile_harness.h"

namespace {

const std::string kNoPages = "ERROR: No pages found!\n";
const std::string kNoMemory = "ERROR: Unable to allocate memory!\n";

struct TRasterCase {
  const char* name;
  std::function<std::string()> input;
  int status;
  std::string err;                      // standard error, exactly
  std::vector<uint16_t> records;        // record types on standard output
  std::vector<std::string> logLines;    // lines the log must hold
};

THostileHeader Page(uint32_t w, uint32_t h, uint32_t bpl) {
  THostileHeader hd;
  hd.width = w;
  hd.height = h;
  hd.bytesPerLine = bpl;
  return hd;
}

std::string OnePage(const THostileHeader& h, size_t dataBytes) {
  return Hostile_Stream({Hostile_HeaderBytes(h) + std::string(dataBytes, '\x40')});
}

// 'Compressed60000()' - A compressed stream whose one page claims 60000 x
// 60000 RGB pixels: each encoded row repeats 256 times and is made of runs
// of 128 equal pixels, so the whole page takes about 443 KB.
std::string Compressed60000() {
  THostileHeader h = Page(60000, 60000, 180000);
  std::string row(1, '\xFF');   // this row and 255 more
  for (uint32_t left = 60000; left > 0;) {
    uint32_t run = left < 128 ? left : 128;
    row += static_cast<char>(run - 1);
    row += "\x10\x20\x30";
    left -= run;
  }
  std::string s = "2SaR" + Hostile_HeaderBytes(h);   // compressed, little-endian
  for (uint32_t rows = 0; rows < 60000; rows += 256) s += row;
  return s;
}

const std::vector<uint16_t> kHeaderOnly = {1};
const std::vector<uint16_t> kHeaderFooter = {1, 2};
const std::vector<uint16_t> kCard = Hostile_SimplexColorCard(1328, 9);

const TRasterCase kCases[] = {
    {"EmptyInput", [] { return std::string(); }, 1, kNoPages, kHeaderFooter, {}},
    {"BadSyncWord", [] { return "3SaX" + Hostile_HeaderBytes(Page(8, 2, 24)) + std::string(48, 0); },
     1, kNoPages, kHeaderFooter, {}},
    {"HeaderCutShort", [] { return Hostile_Stream({Hostile_HeaderBytes(Page(8, 2, 24)).substr(0, 1000)}); },
     1, kNoPages, kHeaderFooter, {}},
    {"PageCutMidRow", [] { return OnePage(Page(8, 2, 24), 30); }, 0, Hostile_ProgressErr({2}),
     kCard, {"CUPS_AllocPage(8,2,24)"}},
    {"WidthZero", [] { return OnePage(Page(0, 2, 24), 48); }, 0, Hostile_ProgressErr({2}),
     kHeaderFooter, {"CUPS_AllocPage(0,2,24)", "CUPS Width:               [0]",
      "ERR: CUPS bytes per pixel = 0.  Only supports 3."}},
    {"WidthWrapsThreeBytesPerLine", [] { return OnePage(Page(536870913, 2, 3), 6); }, 0,
     Hostile_ProgressErr({2}), kHeaderFooter, {"CUPS_AllocPage(536870913,2,3)", "ERR: CUPS bytes per pixel = 0.  Only supports 3."}},
    {"Page65536Square", [] { return OnePage(Page(65536, 65536, 196608), 0); }, 1, kNoMemory,
     kHeaderOnly, {"CUPS_AllocPage(65536,65536,196608)"}},
    {"Compressed60000Square", Compressed60000, 1, kNoMemory, kHeaderOnly,
     {"CUPS_AllocPage(60000,60000,180000)"}},
    {"HeightAllOnes", [] { return OnePage(Page(8, 0xFFFFFFFFu, 24), 48); }, 1, kNoMemory, kHeaderOnly,
     {"CUPS_AllocPage(8,-1,24)"}},
    // The raster library refuses a line of 2 GiB itself; one just below is
    // left to the filter's caps.
    {"LineOf2GiB", [] { return OnePage(Page(8, 1, 0x80000000u), 0); }, 1, kNoPages, kHeaderFooter, {}},
    {"LineJustBelow2GiB", [] { return OnePage(Page(8, 1, 2147483646u), 0); }, 1, kNoMemory, kHeaderOnly,
     {"CUPS_AllocPage(8,1,2147483646)"}},
    {"UnterminatedStrings",
     [] {
       THostileHeader h = Page(8, 2, 24);
       h.terminateStrings = false;
       return OnePage(h, 48);
     },
     0, Hostile_ProgressErr({2}), kCard,
     {"Media Class:              [" + std::string(64, 'S') + "]",
      "Output Type:              [" + std::string(64, 'S') + "]",
      "CUPS Page Size Name:      [" + std::string(64, 'T') + "]",
      "CUPS String:          16. [" + std::string(64, 'T') + "]"}},
    {"KCMYPage",
     [] {
       THostileHeader h = Page(8, 2, 32);
       h.colorSpace = 8;
       h.bitsPerPixel = 32;
       return OnePage(h, 64);
     },
     0, Hostile_ProgressErr({2}), kHeaderFooter, {"CUPS Color Space:         [8]", "ERR: CUPS bytes per pixel = 4.  Only supports 3."}},
    {"GrayPage",
     [] {
       THostileHeader h = Page(8, 2, 8);
       h.colorSpace = 3;
       h.bitsPerPixel = 8;
       return OnePage(h, 16);
     },
     0, Hostile_ProgressErr({2}), kHeaderFooter, {"CUPS_AllocPage(8,2,8)", "ERR: CUPS bytes per pixel = 1.  Only supports 3."}},
    {"EnumFieldsOutOfRange",
     [] {
       THostileHeader h = Page(8, 2, 24);
       h.duplex = 107;
       h.tumble = 0x80000000u;
       return OnePage(h, 48);
     },
     0, Hostile_ProgressErr({2}), kCard,
     {"Duplex:                   [107]", "Tumble:                   [-2147483648]"}},
    {"OneByHundredThousand", [] { return OnePage(Page(1, 100000, 3), 300000); }, 0,
     Hostile_ProgressErr({100000}), kCard, {"CUPS_AllocPage(1,100000,3)"}},
    {"HundredThousandByOne", [] { return OnePage(Page(100000, 1, 300000), 300000); }, 0,
     Hostile_ProgressErr({1}), kCard, {"CUPS_AllocPage(100000,1,300000)"}},
};

void PrintTo(const TRasterCase& c, std::ostream* os) { *os << c.name; }

class HostileRaster : public ::testing::TestWithParam<TRasterCase> {};

}  // namespace

TEST_P(HostileRaster, EndsAsDesigned) {
  const TRasterCase& c = GetParam();
  Test_ResetLog();
  THostileRun run;
  run.input = c.input();
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why << "\n" << r.err.substr(0, 2000);
  EXPECT_EQ(c.status, r.status);
  EXPECT_EQ(c.err, Test_WithoutWarnings(r.err));
  EXPECT_EQ(c.records, Test_RecordTypes(r.out));
  Hostile_ExpectLogLines(c.logLines);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileRaster, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<TRasterCase>& info) {
                           return std::string(info.param.name);
                         });
