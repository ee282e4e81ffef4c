// Process tests of brellian-rasterwrite.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "lib/png_io.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

const std::string RASTERWRITE = BRELLIAN_TOOLS_DIR "/brellian-rasterwrite";

// The first page header of an uncompressed stream ("RaS3", headers in
// native byte order right after the 4-byte sync word).
cups_page_header2_t FirstHeader(const std::string& stream) {
  cups_page_header2_t h;
  memset(&h, 0, sizeof h);
  if (stream.size() >= 4 + sizeof h) memcpy(&h, stream.data() + 4, sizeof h);
  return h;
}

}  // namespace

TEST(RasterWriteTool, SolidPageWithHeaderOptionsMatchesTheLibrary) {
  TProcessResult r = Test_RunProcess({RASTERWRITE, "-W", "8", "-H", "4", "--dpi", "600", "--duplex",
                                      "--tumble", "--copies", "2", "solid:10,20,30"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  TRasterPage p = Raster_MakeRGBPage(8, 4, 600, 10, 20, 30);
  p.header.Duplex = CUPS_TRUE;
  p.header.Tumble = CUPS_TRUE;
  p.header.NumCopies = 2;
  std::string expected;
  ASSERT_TRUE(Raster_WriteStream({p}, false, &expected));
  EXPECT_EQ(expected, r.out);
}

TEST(RasterWriteTool, FormatOptionsAndCutsReachTheStream) {
  TProcessResult r = Test_RunProcess({RASTERWRITE, "-W", "4", "-H", "3", "--color-space", "3",
                                      "--bits", "16", "--bits-per-pixel", "48", "--bytes-per-line",
                                      "10", "--claim-height", "5", "--page-bytes", "25", "pattern"});
  ASSERT_EQ(0, r.status) << r.err;
  cups_page_header2_t h = FirstHeader(r.out);
  EXPECT_EQ(3, static_cast<int>(h.cupsColorSpace));
  EXPECT_EQ(16u, h.cupsBitsPerColor);
  EXPECT_EQ(48u, h.cupsBitsPerPixel);
  EXPECT_EQ(10u, h.cupsBytesPerLine);
  EXPECT_EQ(5u, h.cupsHeight);
  EXPECT_EQ(4u + sizeof h + 25u, r.out.size());

  TProcessResult t = Test_RunProcess({RASTERWRITE, "--truncate", "100", "-c", "pattern"});
  ASSERT_EQ(0, t.status) << t.err;
  EXPECT_EQ(100u, t.out.size());
  EXPECT_EQ(std::string("2SaR"), t.out.substr(0, 4));
}

TEST(RasterWriteTool, PngPagesKeepTheirSizeAndPixels) {
  std::string dir = BRELLIAN_BINARY_DIR "/test-rasterwrite-cli";
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  std::vector<uint8_t> rgb = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  ASSERT_TRUE(Png_WriteRGB(dir + "/in.png", 2, 2, rgb.data()));
  TProcessResult r = Test_RunProcess({RASTERWRITE, "-o", dir + "/out.ras", dir + "/in.png", "solid:0,0,0"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.out);
  TPngImage img;
  img.width = 2;
  img.height = 2;
  img.channels = 3;
  img.pixels = rgb;
  std::string expected;
  ASSERT_TRUE(Raster_WriteStream({Raster_PageFromImage(img, 300), Raster_MakeRGBPage(1036, 664, 300, 0, 0, 0)},
                                 false, &expected));
  EXPECT_EQ(expected, Test_ReadFile(dir + "/out.ras"));
  Test_RemoveTree(dir);
}

TEST(RasterWriteTool, HelpAndBadArguments) {
  TProcessResult h = Test_RunProcess({RASTERWRITE, "--help"});
  EXPECT_EQ(0, h.status);
  EXPECT_EQ(0u, h.out.find("Usage: brellian-rasterwrite [options] PAGE...\n"));
  TProcessResult none = Test_RunProcess({RASTERWRITE});
  EXPECT_EQ(2, none.status);
  EXPECT_EQ(0u, none.err.find("brellian-rasterwrite: no PAGE given\n"));
  TProcessResult num = Test_RunProcess({RASTERWRITE, "--dpi", "x3", "pattern"});
  EXPECT_EQ(2, num.status);
  EXPECT_EQ(0u, num.err.find("brellian-rasterwrite: not a number: x3\n"));
  TProcessResult col = Test_RunProcess({RASTERWRITE, "solid:1,2,300"});
  EXPECT_EQ(1, col.status);
  EXPECT_EQ("brellian-rasterwrite: bad colour (want solid:R,G,B with 0-255): solid:1,2,300\n", col.err);
  EXPECT_EQ("", col.out);
  TProcessResult png = Test_RunProcess({RASTERWRITE, BRELLIAN_BINARY_DIR "/missing.png"});
  EXPECT_EQ(1, png.status);
  EXPECT_EQ(0u, png.err.find("brellian-rasterwrite: " BRELLIAN_BINARY_DIR "/missing.png: cannot read"));
}
