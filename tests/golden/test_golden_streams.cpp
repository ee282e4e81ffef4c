// Golden digests of whole job command streams: the same jobs must give the
// same bytes from every build of the filter, whatever its compiler flags.
// Copyright 2026 The rastertobrellian authors.
//
// Each job runs through the built filter as the spooler runs it.  The card
// id, which comes from the clock, is zeroed in the card's start and end
// records; every other byte of the stream goes into the digest.  The
// digests were recorded from a build whose stages match their plain
// reference versions byte for byte (the differential tests); a build that
// prints one dot differently fails here.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "lib/sample_card.h"
#include "support/digest.h"
#include "support/process.h"

namespace {

// Every panel kind on both sides.
const char* const kAllPanels =
    "frontRibbon=ColorK backRibbon=ColorK frontResin=Page backResin=Page frontUV=Page backUV=Page "
    "frontPO=Page backPO=Page";

struct TGoldenRun {
  int status = -1;
  bool complete = false;
  size_t panels = 0;
  size_t bytes = 0;
  uint64_t digest = 0;
  std::vector<std::string> log;  // the job's log lines, without time stamps
};

// 'Golden_Pattern()' - count pattern pages of width x height at dpi, duplex.
std::vector<TRasterPage> Golden_Pattern(size_t count, uint32_t width, uint32_t height, uint32_t dpi) {
  std::vector<TRasterPage> pages;
  for (size_t i = 0; i < count; ++i) {
    TRasterPage page = Raster_MakeTestPattern(width, height, dpi);
    page.header.Duplex = CUPS_TRUE;
    pages.push_back(page);
  }
  return pages;
}

// 'Golden_DesignedPPD()' - The model's PPD as the design has it: without
// the added black rendering options and with resin "Page" as the default,
// written into dir.  The digests are those of the designed output, which a
// PPD without the added options must keep giving.
std::string Golden_DesignedPPD(int model, const std::string& dir) {
  std::string text = Test_ReadFile(Test_GeneratedPPD(model));
  std::string out;
  bool skip = false;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start + 1);
    start = end + 1;
    if (line.find("BlackMode") != std::string::npos) {
      skip = line.rfind("*OpenUI", 0) == 0 ? true : line.rfind("*CloseUI", 0) == 0 ? false : skip;
      continue;
    }
    if (skip) continue;
    if (line.rfind("*DefaultfrontResin:", 0) == 0) line = "*DefaultfrontResin: Page\n";
    if (line.rfind("*DefaultbackResin:", 0) == 0) line = "*DefaultbackResin: Page\n";
    out += line;
  }
  std::string path = dir + "/designed" + std::to_string(model) + ".ppd";
  Test_WriteFile(path, out);
  return path;
}

// 'Golden_Run()' - Run the filter on pages for the model with options and
// digest its stream with the card ids zeroed.
TGoldenRun Golden_Run(const std::vector<TRasterPage>& pages, int model, const std::string& options) {
  TGoldenRun run;
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/test-golden";
  Test_MakeDirs(dir);
  std::string raster = dir + "/job.ras";
  EXPECT_TRUE(Raster_WriteFile(pages, true, raster));
  Test_ResetLog();
  TProcessOptions env;
  env.env["PPD"] = Golden_DesignedPPD(model, dir);
  env.env["DEVICE_URI"] = "usbbr://Brellian/Golden?serial=golden";
  env.env["PRINTER"] = "golden";
  TProcessResult process = Test_RunFilter({"7", "golden", "Golden card", "1", options, raster}, env);
  run.status = process.status;
  std::string bytes = process.out;
  TStreamCheck check;
  Stream_Read(bytes, &check);
  run.complete = check.complete;
  run.panels = check.panels.size();
  for (const TStreamRecord& r : check.records) {
    size_t at = 0;
    if (r.type == ICMD_STARTCARD) at = r.offset + STARTCARD_ID;
    else if (r.type == ICMD_ENDCARD) at = r.offset + 6;
    else continue;
    if (at + 8 <= bytes.size()) bytes.replace(at, 8, 8, '\0');
  }
  run.bytes = bytes.size();
  run.digest = Test_Fnv(bytes);
  run.log = Test_LogMessages();
  return run;
}

// 'Golden_Expect()' - The job printed whole, with the panels, size and
// digest recorded for it.
void Golden_Expect(const TGoldenRun& run, size_t panels, size_t bytes, uint64_t digest) {
  EXPECT_EQ(0, run.status);
  EXPECT_TRUE(run.complete);
  EXPECT_EQ(panels, run.panels);
  EXPECT_EQ(bytes, run.bytes);
  EXPECT_EQ(digest, run.digest) << std::hex << "0x" << run.digest;
}

}  // namespace

// Panel-sized pages at 600 dpi: every panel kind, the black panel through
// error diffusion, the UV and overlay panels through the luminance.
TEST(GoldenStreams, PanelSizedPagesAt600Dpi) {
  Golden_Expect(Golden_Run(Golden_Pattern(8, 2072, 1328, 600), 1060, kAllPanels), 8, 33025023,
                0x822791861531fd01ull);
}

// Card-sized pages at 600 dpi, every one fitted and resampled.
TEST(GoldenStreams, ResampledCardPagesAt600Dpi) {
  Golden_Expect(Golden_Run(Golden_Pattern(8, 2022, 1276, 600), 1060, kAllPanels), 8, 33025023,
                0x38066c7888cb7d89ull);
}

// Portrait pages, turned a quarter.
TEST(GoldenStreams, PortraitPagesAt600Dpi) {
  Golden_Expect(Golden_Run(Golden_Pattern(2, 1328, 2072, 600), 1060, "frontRibbon=ColorK"), 2, 11008924,
                0xc67ea61bf44b4962ull);
}

// The sample card at 300 dpi with every panel kind: pure black pages.
TEST(GoldenStreams, SampleCardAt300Dpi) {
  Golden_Expect(Golden_Run(Raster_MakeSampleCardAllPanelsJob(1036, 664, 300), 1030, kAllPanels), 8, 8257899,
                0xb1c5a1756f5771a0ull);
}

// A resin strip made from the colour page inside custom areas, and a back
// side printed in grey.
TEST(GoldenStreams, ResinStripAndGreyBackAt300Dpi) {
  TGoldenRun run = Golden_Run(Golden_Pattern(2, 1036, 664, 300), 1030,
                              "frontRibbon=ColorK frontResin=CustomAreas "
                              "frontResinInclude1='Custom.2mm 2mm 60mm 40mm' "
                              "frontResinExclude1='Custom.10mm 10mm 5mm 5mm' backRibbon=Grayscale");
  Golden_Expect(run, 3, 4817934, 0x489dda45471b1379ull);
  // The areas reached the resin strip: 2 mm is 24 dots at 300 dpi, and an
  // area's span runs from its corner over its extent.
  bool include = false, exclude = false;
  for (const std::string& line : run.log) {
    include = include || line.find("Image_StripToResin --> include: 24,24 - 733,496") != std::string::npos;
    exclude = exclude || line.find("Image_StripToResin --> exclude: 118,118 - 177,177") != std::string::npos;
  }
  EXPECT_TRUE(include);
  EXPECT_TRUE(exclude);
}
