// Tests of the raster writer's PWG raster mode, the form IPP clients send.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "lib/raster_content.h"
#include "lib/raster_writer.h"

namespace {

struct TPwgSource {
  const std::string* bytes;
  size_t at;
};

ssize_t PwgRead(void* ctx, unsigned char* buffer, size_t bytes) {
  TPwgSource* src = static_cast<TPwgSource*>(ctx);
  size_t n = std::min(bytes, src->bytes->size() - src->at);
  memcpy(buffer, src->bytes->data() + src->at, n);
  src->at += n;
  return static_cast<ssize_t>(n);
}

TEST(RasterWriterPwg, SRGBPagesReadBackWithTheirPixels) {
  TRasterPage a = Raster_MakeTestPattern(120, 80, 300);
  TRasterPage b = Raster_MakeRGBPage(120, 80, 300, 10, 200, 30);
  std::string stream;
  ASSERT_TRUE(Raster_WritePwgStream({a, b}, &stream));
  ASSERT_GE(stream.size(), 4u);
  EXPECT_EQ(stream.compare(0, 4, "RaS2"), 0);
  TPwgSource src = {&stream, 0};
  cups_raster_t* ras = cupsRasterOpenIO(PwgRead, &src, CUPS_RASTER_READ);
  ASSERT_NE(ras, nullptr);
  const TRasterPage* want[2] = {&a, &b};
  for (const TRasterPage* page : want) {
    cups_page_header2_t h;
    ASSERT_TRUE(cupsRasterReadHeader2(ras, &h));
    EXPECT_EQ(h.cupsColorSpace, CUPS_CSPACE_SRGB);
    EXPECT_EQ(h.cupsBitsPerPixel, 24u);
    EXPECT_EQ(h.cupsWidth, 120u);
    EXPECT_EQ(h.cupsHeight, 80u);
    EXPECT_EQ(h.HWResolution[0], 300u);
    EXPECT_EQ(h.cupsInteger[0], 2u);  // TotalPageCount
    std::vector<uint8_t> rows(static_cast<size_t>(h.cupsBytesPerLine) * h.cupsHeight);
    for (unsigned y = 0; y < h.cupsHeight; ++y)
      ASSERT_EQ(cupsRasterReadPixels(ras, rows.data() + y * h.cupsBytesPerLine, h.cupsBytesPerLine),
                h.cupsBytesPerLine);
    EXPECT_EQ(rows, page->data);
  }
  cups_page_header2_t extra;
  EXPECT_FALSE(cupsRasterReadHeader2(ras, &extra));
  cupsRasterClose(ras);
}

TEST(RasterWriterPwg, AppleRasterReadsBackWithItsPixels) {
  TRasterPage a = Raster_MakeTestPattern(64, 40, 300);
  std::string stream;
  ASSERT_TRUE(Raster_WritePwgStream({a}, &stream, true));
  ASSERT_GE(stream.size(), 8u);
  EXPECT_EQ(stream.compare(0, 8, std::string("UNIRAST\0", 8)), 0);
  TPwgSource src = {&stream, 0};
  cups_raster_t* ras = cupsRasterOpenIO(PwgRead, &src, CUPS_RASTER_READ);
  ASSERT_NE(ras, nullptr);
  cups_page_header2_t h;
  ASSERT_TRUE(cupsRasterReadHeader2(ras, &h));
  EXPECT_EQ(h.cupsWidth, 64u);
  EXPECT_EQ(h.cupsHeight, 40u);
  EXPECT_EQ(h.cupsBitsPerPixel, 24u);
  std::vector<uint8_t> rows(static_cast<size_t>(h.cupsBytesPerLine) * h.cupsHeight);
  for (unsigned y = 0; y < h.cupsHeight; ++y)
    ASSERT_EQ(cupsRasterReadPixels(ras, rows.data() + y * h.cupsBytesPerLine, h.cupsBytesPerLine), h.cupsBytesPerLine);
  EXPECT_EQ(rows, a.data);
  cupsRasterClose(ras);
}

}  // namespace
