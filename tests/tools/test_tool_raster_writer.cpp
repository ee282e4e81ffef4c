// Tests of the raster writer, the page content helpers and the PNG codec.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>

#include "lib/png_io.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/raster_readback.h"

namespace {

uint32_t SyncWord(const std::string& stream) {
  uint32_t w = 0;
  memcpy(&w, stream.data(), 4);
  return w;
}

}  // namespace

TEST(RasterWriter, MakeRGBPageFillsHeaderAndPixels) {
  TRasterPage p = Raster_MakeRGBPage(4, 3, 300, 10, 20, 30);
  EXPECT_EQ(4u, p.header.cupsWidth);
  EXPECT_EQ(3u, p.header.cupsHeight);
  EXPECT_EQ(12u, p.header.cupsBytesPerLine);
  EXPECT_EQ(8u, p.header.cupsBitsPerColor);
  EXPECT_EQ(24u, p.header.cupsBitsPerPixel);
  EXPECT_EQ(CUPS_CSPACE_RGB, p.header.cupsColorSpace);
  EXPECT_EQ(1, static_cast<int>(p.header.cupsColorSpace));
  EXPECT_EQ(CUPS_ORDER_CHUNKED, p.header.cupsColorOrder);
  EXPECT_EQ(300u, p.header.HWResolution[0]);
  EXPECT_EQ(300u, p.header.HWResolution[1]);
  ASSERT_EQ(36u, p.data.size());
  EXPECT_EQ(10, p.data[33]);
  EXPECT_EQ(20, p.data[34]);
  EXPECT_EQ(30, p.data[35]);
}

TEST(RasterWriter, SetPixelAndFillRectStayOnThePage) {
  TRasterPage p = Raster_MakeRGBPage(5, 4, 300, 255, 255, 255);
  Raster_SetPixel(&p, 4, 3, 1, 2, 3);
  Raster_SetPixel(&p, 5, 0, 9, 9, 9);  // outside: ignored
  Raster_FillRect(&p, 3, 1, 10, 1, 7, 8, 9);
  EXPECT_EQ(std::vector<uint8_t>({1, 2, 3}), std::vector<uint8_t>(p.data.begin() + 57, p.data.end()));
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 255, 7, 8, 9, 7, 8, 9}),
            std::vector<uint8_t>(p.data.begin() + 15 + 6, p.data.begin() + 30));
  EXPECT_EQ(255, p.data[3 * 5 * 2 + 9]);
}

TEST(RasterWriter, UncompressedStreamReadsBackExactly) {
  TRasterPage p = Raster_MakeRGBPage(7, 5, 600, 200, 100, 50);
  Raster_SetPixel(&p, 6, 4, 0, 1, 2);
  p.header.Duplex = CUPS_TRUE;
  p.header.Tumble = CUPS_TRUE;
  p.header.NumCopies = 3;
  std::string stream;
  ASSERT_TRUE(Raster_WriteStream({p}, false, &stream));
  EXPECT_EQ(0x52615333u, SyncWord(stream));  // "RaS3"
  EXPECT_EQ(4u + 1796u + 7u * 5u * 3u, stream.size());
  std::vector<TReadPage> back = Test_ReadRaster(stream);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ(7u, back[0].header.cupsWidth);
  EXPECT_EQ(5u, back[0].header.cupsHeight);
  EXPECT_EQ(600u, back[0].header.HWResolution[1]);
  EXPECT_EQ(CUPS_TRUE, back[0].header.Duplex);
  EXPECT_EQ(CUPS_TRUE, back[0].header.Tumble);
  EXPECT_EQ(3u, back[0].header.NumCopies);
  EXPECT_EQ(p.data, back[0].data);
}

TEST(RasterWriter, CompressedStreamOfTwoPagesReadsBackExactly) {
  TRasterPage a = Raster_MakeTestPattern(64, 30, 300);
  TRasterPage b = Raster_MakeRGBPage(16, 8, 300, 0, 0, 0);
  Raster_FillRect(&b, 2, 2, 4, 4, 255, 0, 0);
  std::string stream;
  ASSERT_TRUE(Raster_WriteStream({a, b}, true, &stream));
  EXPECT_EQ(0x52615332u, SyncWord(stream));  // "RaS2"
  EXPECT_LT(stream.size(), 4u + 2u * 1796u + a.data.size());
  std::vector<TReadPage> back = Test_ReadRaster(stream);
  ASSERT_EQ(2u, back.size());
  EXPECT_EQ(a.data, back[0].data);
  EXPECT_EQ(b.data, back[1].data);
  EXPECT_EQ(16u, back[1].header.cupsWidth);
}

TEST(RasterWriter, TruncateKeepsExactlyTheFirstBytes) {
  TRasterPage p = Raster_MakeRGBPage(10, 10, 300, 1, 2, 3);
  std::string full, cut;
  ASSERT_TRUE(Raster_WriteStream({p}, false, &full));
  ASSERT_TRUE(Raster_WriteStream({p}, false, &cut, 1000));
  ASSERT_EQ(1000u, cut.size());
  EXPECT_EQ(full.substr(0, 1000), cut);
  EXPECT_TRUE(Test_ReadRaster(cut).empty());  // the header itself is cut
  ASSERT_TRUE(Raster_WriteStream({p}, false, &cut, 4 + 1796 + 30 * 4 + 5));
  std::vector<TReadPage> back = Test_ReadRaster(cut);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ(120u, back[0].data.size());  // four whole rows survive
}

TEST(RasterWriter, PageCutMidRowKeepsItsBytesUncompressed) {
  TRasterPage p = Raster_MakeRGBPage(4, 4, 300, 9, 9, 9);
  p.data.resize(12 * 2 + 5);
  std::string stream;
  ASSERT_TRUE(Raster_WriteStream({p}, false, &stream));
  EXPECT_EQ(4u + 1796u + 29u, stream.size());
  std::vector<TReadPage> back = Test_ReadRaster(stream);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ(24u, back[0].data.size());
  EXPECT_EQ(4u, back[0].header.cupsHeight);
}

TEST(RasterWriter, WriteFileMatchesStreamAndRefusesSymlinks) {
  TRasterPage p = Raster_MakeTestPattern(20, 9, 300);
  std::string dir = BRELLIAN_BINARY_DIR "/test-raster-writer";
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  std::string stream;
  ASSERT_TRUE(Raster_WriteStream({p}, true, &stream));
  ASSERT_TRUE(Raster_WriteFile({p}, true, dir + "/page.ras"));
  EXPECT_EQ(stream, Test_ReadFile(dir + "/page.ras"));
  ASSERT_EQ(0, symlink((dir + "/page.ras").c_str(), (dir + "/link.ras").c_str()));
  EXPECT_FALSE(Raster_WriteFile({p}, false, dir + "/link.ras"));
  EXPECT_EQ(stream, Test_ReadFile(dir + "/page.ras"));
  Test_RemoveTree(dir);
}

TEST(RasterContent, TestPatternHasBarsAndRamp) {
  TRasterPage p = Raster_MakeTestPattern(16, 9, 300);
  auto px = [&](uint32_t x, uint32_t y) {
    size_t at = y * 48u + x * 3u;
    return std::vector<uint8_t>(p.data.begin() + at, p.data.begin() + at + 3);
  };
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 255}), px(0, 0));
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 0}), px(2, 5));
  EXPECT_EQ(std::vector<uint8_t>({0, 0, 255}), px(13, 0));
  EXPECT_EQ(std::vector<uint8_t>({0, 0, 0}), px(15, 5));
  EXPECT_EQ(std::vector<uint8_t>({0, 0, 0}), px(0, 6));
  EXPECT_EQ(std::vector<uint8_t>({17, 17, 17}), px(1, 8));
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 255}), px(15, 6));
}

TEST(PngIo, RGBAndGrayRoundTrip) {
  std::vector<uint8_t> rgb = {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3, 250, 251, 252, 0, 0, 0};
  std::string png;
  ASSERT_TRUE(Png_EncodeRGB(3, 2, rgb.data(), &png));
  EXPECT_EQ(std::string("\x89PNG\r\n\x1a\n", 8), png.substr(0, 8));
  TPngImage img;
  std::string error;
  ASSERT_TRUE(Png_DecodeRGB(png, &img, &error)) << error;
  EXPECT_EQ(3u, img.width);
  EXPECT_EQ(2u, img.height);
  EXPECT_EQ(3u, img.channels);
  EXPECT_EQ(rgb, img.pixels);

  std::vector<uint8_t> gray = {0, 64, 128, 255};
  ASSERT_TRUE(Png_EncodeGray(2, 2, gray.data(), &png));
  ASSERT_TRUE(Png_DecodeGray(png, &img, &error)) << error;
  EXPECT_EQ(1u, img.channels);
  EXPECT_EQ(gray, img.pixels);
  ASSERT_TRUE(Png_DecodeRGB(png, &img, &error)) << error;
  EXPECT_EQ(std::vector<uint8_t>({0, 0, 0, 64, 64, 64, 128, 128, 128, 255, 255, 255}), img.pixels);
}

TEST(PngIo, RejectsBytesThatAreNotPng) {
  TPngImage img;
  std::string error;
  EXPECT_FALSE(Png_DecodeRGB("not a png", &img, &error));
  EXPECT_FALSE(error.empty());
  EXPECT_FALSE(Png_ReadRGB(BRELLIAN_BINARY_DIR "/no-such-file.png", &img, &error));
  EXPECT_NE(std::string::npos, error.find("cannot read"));
}
