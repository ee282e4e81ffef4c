// Tests of the raster writer's PWG raster mode, the form IPP clients send.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/raster_readback.h"

TEST(RasterWriterPwg, SRGBPagesReadBackWithTheirPixels) {
  TRasterPage a = Raster_MakeTestPattern(120, 80, 300);
  TRasterPage b = Raster_MakeRGBPage(120, 80, 300, 10, 200, 30);
  std::string stream;
  ASSERT_TRUE(Raster_WritePwgStream({a, b}, &stream));
  ASSERT_GE(stream.size(), 4u);
  EXPECT_EQ(stream.compare(0, 4, "RaS2"), 0);
  std::vector<TReadPage> pages = Test_ReadRaster(stream);
  ASSERT_EQ(2u, pages.size());
  const TRasterPage* want[2] = {&a, &b};
  for (int i = 0; i < 2; ++i) {
    const cups_page_header2_t& h = pages[i].header;
    EXPECT_EQ(h.cupsColorSpace, CUPS_CSPACE_SRGB);
    EXPECT_EQ(h.cupsBitsPerPixel, 24u);
    EXPECT_EQ(h.cupsWidth, 120u);
    EXPECT_EQ(h.cupsHeight, 80u);
    EXPECT_EQ(h.HWResolution[0], 300u);
    EXPECT_EQ(h.cupsInteger[0], 2u);  // TotalPageCount
    EXPECT_EQ(pages[i].data, want[i]->data);
  }
}

TEST(RasterWriterPwg, AppleRasterReadsBackWithItsPixels) {
  TRasterPage a = Raster_MakeTestPattern(64, 40, 300);
  std::string stream;
  ASSERT_TRUE(Raster_WritePwgStream({a}, &stream, true));
  ASSERT_GE(stream.size(), 8u);
  EXPECT_EQ(stream.compare(0, 8, std::string("UNIRAST\0", 8)), 0);
  std::vector<TReadPage> pages = Test_ReadRaster(stream);
  ASSERT_EQ(1u, pages.size());
  EXPECT_EQ(pages[0].header.cupsWidth, 64u);
  EXPECT_EQ(pages[0].header.cupsHeight, 40u);
  EXPECT_EQ(pages[0].header.cupsBitsPerPixel, 24u);
  EXPECT_EQ(pages[0].data, a.data);
}
