// Unit tests of the names the application's file: devices give job files, and of its raster copies file.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/file_device.h"
#include "app/raster_copies.h"

namespace {

TEST(FileDevice, PlainJobNamesAreKept) {
  EXPECT_EQ(FileDev_OutputName("photo35", "brj"), "photo35.brj");
  EXPECT_EQ(FileDev_OutputName("a-b_c.d", "prn"), "a-b_c.d.prn");
}

TEST(FileDevice, NamesCannotLeaveTheDirectoryOrHide) {
  EXPECT_EQ(FileDev_OutputName("../../etc/shadow", "brj"), "_._.._etc_shadow.brj");
  EXPECT_EQ(FileDev_OutputName(".hidden", "brj"), "_hidden.brj");
  EXPECT_EQ(FileDev_OutputName("..", "brj"), "_..brj");
  EXPECT_EQ(FileDev_OutputName("", "brj"), "job.brj");
  EXPECT_EQ(FileDev_OutputName(nullptr, "brj"), "job.brj");
  EXPECT_EQ(FileDev_OutputName("tab\there \xc3\xa9", "brj"), "tab_here___.brj");
}

TEST(FileDevice, NamesAreBounded) {
  std::string longName(1000, 'x');
  std::string out = FileDev_OutputName(longName.c_str(), "brj");
  EXPECT_EQ(out, std::string(FILEDEV_MAX_NAME, 'x') + ".brj");
  EXPECT_LT(out.size(), 255u);
}

TEST(FileDevice, ExtensionIsLettersAndDigitsOnly) {
  EXPECT_EQ(FileDev_Extension("ext=brj"), "brj");
  EXPECT_EQ(FileDev_Extension("ext=brj&serial=X1"), "brj");
  EXPECT_EQ(FileDev_Extension(nullptr), "prn");
  EXPECT_EQ(FileDev_Extension("serial=X1"), "prn");
  EXPECT_EQ(FileDev_Extension("ext=../x"), "prn");
  EXPECT_EQ(FileDev_Extension("ext="), "prn");
  EXPECT_EQ(FileDev_Extension("ext=abcdefghijklmnopq"), "prn");  // 17 characters
}

TEST(RasterCopies, PagesComeBackAsWritten) {
  TRasterCopies copies;
  ASSERT_TRUE(copies.Open());
  std::vector<cups_page_header2_t> headers(2);
  for (unsigned p = 0; p < 2; ++p) {
    cups_page_header2_t& h = headers[p];
    h = cups_page_header2_t();
    h.cupsWidth = 5 + p;
    h.cupsHeight = 3;
    h.cupsBitsPerColor = 8;
    h.cupsBitsPerPixel = 24;
    h.cupsBytesPerLine = 3 * h.cupsWidth;
    h.cupsColorSpace = CUPS_CSPACE_SRGB;
    h.HWResolution[0] = h.HWResolution[1] = 300;
    ASSERT_TRUE(copies.WriteHeader(&h));
    for (unsigned y = 0; y < h.cupsHeight; ++y) {
      std::vector<unsigned char> row(h.cupsBytesPerLine, static_cast<unsigned char>(16 * p + y));
      ASSERT_TRUE(copies.WriteRow(row.data(), h.cupsBytesPerLine));
    }
  }
  for (int pass = 0; pass < 2; ++pass) {  // each further copy reads the file again
    std::vector<unsigned> widths;
    std::vector<unsigned char> firstBytes;
    int ends = 0;
    bool ok = copies.Replay(
        [&](cups_page_header2_t* h) {
          widths.push_back(h->cupsWidth);
          return true;
        },
        [&](const unsigned char* row, unsigned) {
          firstBytes.push_back(row[0]);
          return true;
        },
        [&]() {
          ends++;
          return true;
        });
    EXPECT_TRUE(ok);
    EXPECT_EQ(widths, (std::vector<unsigned>{5, 6}));
    EXPECT_EQ(firstBytes, (std::vector<unsigned char>{0, 1, 2, 16, 17, 18}));
    EXPECT_EQ(ends, 2);
  }
}

TEST(RasterCopies, ACallbackThatRefusesStopsTheReplay) {
  TRasterCopies copies;
  ASSERT_TRUE(copies.Open());
  cups_page_header2_t h = cups_page_header2_t();
  h.cupsWidth = 2;
  h.cupsHeight = 2;
  h.cupsBitsPerColor = 8;
  h.cupsBitsPerPixel = 24;
  h.cupsBytesPerLine = 6;
  h.cupsColorSpace = CUPS_CSPACE_SRGB;
  ASSERT_TRUE(copies.WriteHeader(&h));
  unsigned char row[6] = {1, 2, 3, 4, 5, 6};
  ASSERT_TRUE(copies.WriteRow(row, 6));
  ASSERT_TRUE(copies.WriteRow(row, 6));
  int rows = 0;
  EXPECT_FALSE(copies.Replay([](cups_page_header2_t*) { return true; },
                             [&](const unsigned char*, unsigned) { return ++rows < 1; }, []() { return true; }));
  EXPECT_EQ(rows, 1);
}

}  // namespace
