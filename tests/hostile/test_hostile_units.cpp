// Hostile values in process: page size caps, conversion refusals, settings
// images with bad entries or cut short, and magnetic data out of bounds.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "log/log.h"
#include "options/mag.h"
#include "options/settings.h"
#include "status/tables.h"

namespace {

cups_page_header2_t Header(uint32_t w, uint32_t h, uint32_t bpl, uint32_t colorSpace = 1) {
  cups_page_header2_t hd;
  memset(&hd, 0, sizeof hd);
  hd.cupsWidth = w;
  hd.cupsHeight = h;
  hd.cupsBytesPerLine = bpl;
  uint32_t cs = colorSpace;
  memcpy(&hd.cupsColorSpace, &cs, sizeof cs);
  return hd;
}

bool Fits(uint32_t bpl, uint32_t h) {
  cups_page_header2_t hd = Header(8, h, bpl);
  uint64_t bytes = 0;
  return CUPS_PageBytes(&hd, &bytes);
}

// 'Convert()' - Image_CUPSToPrinterRGB on a zero-filled page; returns its
// result and the log lines it wrote.
int32_t Convert(const cups_page_header2_t& hd, std::string* log) {
  Status_BuildTables();
  char* argv[] = {nullptr};
  TPrintingTask task(6, argv);
  task.printerModel = 1030;
  task.pageHeader = &hd;
  task.pageBuffer = static_cast<uint8_t*>(calloc(1, static_cast<size_t>(hd.cupsBytesPerLine) * hd.cupsHeight + 1));
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  uint8_t* out = nullptr;
  int32_t rc = Image_CUPSToPrinterRGB(&task, &out);
  *log = testing::internal::GetCapturedStderr();
  Log_SetOutputMask(0);
  free(out);
  task.pageHeader = nullptr;
  return rc;
}

void PutU32(std::string* s, uint32_t v) {
  for (int i = 0; i < 4; ++i) s->push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

// 'Image()' - A settings image whose first two entries are given as raw
// bytes and whose other entries are valid texts "e<n>".
std::string Image(const std::string& firstTwo) {
  std::string s = "ERAWTFOS";
  PutU32(&s, SETTINGS_VERSION);
  s += std::string(SETTINGS_FLAGS, '\x01');
  s += firstTwo;
  for (int n = 2; n < 131; ++n) {
    std::string text = "e" + std::to_string(n);
    PutU32(&s, static_cast<uint32_t>(text.size() + 1));
    s += text;
    s.push_back('\0');
  }
  PutU32(&s, 0);
  PutU32(&s, 1);
  return s;
}

std::string Entry(uint32_t length, const std::string& bytes) {
  std::string s;
  PutU32(&s, length);
  return s + bytes;
}

TBrellianSettings Load(const std::string& image, size_t size);
TBrellianSettings Load(const std::string& image) { return Load(image, image.size()); }
TBrellianSettings Load(const std::string& image, size_t size) {
  TBrellianSettings s;
  s.LoadFromBytes(reinterpret_cast<const uint8_t*>(image.data()), size);
  return s;
}

}  // namespace

TEST(HostileUnits, PageBufferCapsAreComputedIn64Bits) {
  EXPECT_TRUE(Fits(16u * 1024u * 1024u, 16));        // exactly 256 MiB
  EXPECT_FALSE(Fits(16u * 1024u * 1024u, 17));
  EXPECT_FALSE(Fits(16u * 1024u * 1024u + 1u, 1));   // one line too long
  EXPECT_TRUE(Fits(1, 0xFFFFFFu));
  EXPECT_FALSE(Fits(1, 0x1000000u));                  // one row too many
  EXPECT_FALSE(Fits(0xFFFFFFFFu, 0xFFFFFFFFu));       // no 32-bit wrap
  EXPECT_FALSE(Fits(196608u, 65536u));                // 65536 x 65536 RGB
  EXPECT_TRUE(Fits(24, 0));
}

TEST(HostileUnits, ConversionRefusesWidthZeroAndWrappedLines) {
  std::string log;
  EXPECT_EQ(1, Convert(Header(0, 2, 24), &log));
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 0.  Only supports 3.\n", log);
  // 3 x 536870913 wraps to 3 in 32 bits: the line holds 0 bytes per pixel.
  EXPECT_EQ(1, Convert(Header(536870913u, 2, 3), &log));
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 0.  Only supports 3.\n", log);
  EXPECT_EQ(1, Convert(Header(8, 2, 24, 8), &log));
  EXPECT_EQ(" ERR: CUPS number planes = 4.  Only supports 1.\n", log);
  EXPECT_EQ(1, Convert(Header(8, 2, 8, 3), &log));
  EXPECT_EQ(" ERR: CUPS bytes per pixel = 1.  Only supports 3.\n", log);
}

TEST(HostileUnits, ConversionReadsWithinPaddedLines) {
  std::string log;
  // 31 bytes for 8 pixels is 3 bytes per pixel plus padding.
  EXPECT_EQ(0, Convert(Header(8, 2, 31), &log));
  EXPECT_EQ(0, Convert(Header(2, 9, 7), &log));   // portrait, padded
  EXPECT_EQ(0, Convert(Header(1, 1, 3), &log));
}

TEST(HostileUnits, SettingsEntryOfLengthZeroIsEmptyAndTheNextIsRead) {
  TBrellianSettings s = Load(Image(Entry(0, "") + Entry(4, std::string("abc", 4))));
  EXPECT_EQ("", s.resinAreas[0][0][0]);
  EXPECT_EQ("abc", s.resinAreas[0][0][1]);
  EXPECT_EQ("e2", s.resinAreas[0][0][2]);
  EXPECT_EQ(0, s.cardThickness);
  EXPECT_EQ(1, s.magPOMode);
}

TEST(HostileUnits, SettingsEntryWithoutZeroIsSkipped) {
  TBrellianSettings s = Load(Image(Entry(4, "abcd") + Entry(3, std::string("xy", 3))));
  EXPECT_EQ("", s.resinAreas[0][0][0]);
  EXPECT_EQ("xy", s.resinAreas[0][0][1]);
  EXPECT_EQ("e129", s.uvNames[4]);
  EXPECT_EQ("e130", s.plugin);
}

TEST(HostileUnits, SettingsLengthAllOnesStopsTheReader) {
  TBrellianSettings s = Load(Image(Entry(4, std::string("abc", 4)) + Entry(0xFFFFFFFFu, "zz")));
  EXPECT_EQ("abc", s.resinAreas[0][0][0]);
  EXPECT_EQ("", s.resinAreas[0][0][1]);
  EXPECT_EQ("", s.uvNames[4]);
  EXPECT_EQ("", s.plugin);
  EXPECT_EQ(-1, s.cardThickness);
  EXPECT_EQ(-1, s.magPOMode);
}

// Cut at every length, an image yields each entry whole or empty, never a
// part of one, and the numbers only from a complete image.
TEST(HostileUnits, SettingsCutAtEveryLength) {
  std::string image = Image(Entry(3, std::string("p0", 3)) + Entry(3, std::string("p1", 3)));
  TBrellianSettings full = Load(image, image.size());
  ASSERT_EQ("e129", full.uvNames[4]);
  for (size_t n = 0; n < image.size(); ++n) {
    TBrellianSettings s = Load(image, n);
    for (int k = 0; k < 5; ++k) {
      EXPECT_TRUE(s.uvNames[k].empty() || s.uvNames[k] == full.uvNames[k]) << n;
      EXPECT_TRUE(s.lutNames[k].empty() || s.lutNames[k] == full.lutNames[k]) << n;
    }
    EXPECT_TRUE(s.plugin.empty() || s.plugin == full.plugin) << n;
    EXPECT_EQ(-1, s.cardThickness) << n;
  }
}

TEST(HostileUnits, MagneticDataOf128CharactersAndNonAscii) {
  Status_BuildTables();
  TMagTrack t;
  Mag_EncodeTrack(3, "ISO7-69", std::string(128, 'x').c_str(), &t);
  EXPECT_EQ(MAG_STATUS_TOO_LONG, t.format);
  EXPECT_EQ(0, t.length);
  Mag_EncodeTrack(3, "ISO7-69", "caf\xC3\xA9", &t);
  EXPECT_EQ(MAG_STATUS_BAD_CHAR, t.format);
  Mag_EncodeTrack(1, "ISO6-76", "A\x80", &t);
  EXPECT_EQ(MAG_STATUS_BAD_CHAR, t.format);
  for (uint8_t c : t.codes) EXPECT_EQ(0, c);
}
