// Tests of magnetic track conversion: formats by track and character sets.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <cstring>

#include "options/mag.h"

namespace {

class MagTest : public ::testing::Test {
 protected:
  void SetUp() override { Mag_BuildCharsets(); }

  static std::vector<uint8_t> Codes(const TMagTrack& t) {
    return std::vector<uint8_t>(t.codes, t.codes + t.length);
  }
  static bool AllZeroFrom(const TMagTrack& t, size_t from) {
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&t);
    for (size_t i = from; i < sizeof t; ++i)
      if (bytes[i]) return false;
    return true;
  }
  TMagTrack Encode(int32_t track, const char* format, const char* data) {
    TMagTrack t;
    memset(&t, 0xAB, sizeof t);
    Mag_EncodeTrack(track, format, data, &t);
    return t;
  }
};

}  // namespace

TEST_F(MagTest, Track2Iso437) {
  TMagTrack t = Encode(2, "ISO4-37", ";1234=5678?");
  EXPECT_EQ(180, t.format);
  EXPECT_EQ(11, t.length);
  EXPECT_EQ((std::vector<uint8_t>{11, 1, 2, 3, 4, 13, 5, 6, 7, 8, 15}), Codes(t));
  EXPECT_TRUE(AllZeroFrom(t, 2 + 11));
}

TEST_F(MagTest, FormatNameIsCaseInsensitiveLookupIsExact) {
  TMagTrack bad = Encode(1, "iso6-79", "AB x");
  EXPECT_EQ(3, bad.format);
  EXPECT_TRUE(AllZeroFrom(bad, 1));
  TMagTrack good = Encode(1, "iso6-79", "AB X");
  EXPECT_EQ(168, good.format);
  EXPECT_EQ(4, good.length);
  EXPECT_EQ((std::vector<uint8_t>{33, 34, 0, 56}), Codes(good));
}

TEST_F(MagTest, FormatNotAllowedOnTrack) {
  TMagTrack t = Encode(2, "ISO6-79", "ABC");
  EXPECT_EQ(1, t.format);
  EXPECT_TRUE(AllZeroFrom(t, 1));
  EXPECT_EQ(1, Encode(1, "ISO4-37", "1").format);
  EXPECT_EQ(1, Encode(3, "ISO6-76", "A").format);
  EXPECT_EQ(1, Encode(0, "None", "A").format);
  EXPECT_EQ(1, Encode(4, "ISO7-69", "A").format);
  EXPECT_EQ(1, Encode(1, "Bogus", "A").format);
  EXPECT_EQ(1, Encode(1, nullptr, "A").format);
}

TEST_F(MagTest, FormatCodesByTrack) {
  struct { int32_t track; const char* format; uint8_t code; } cases[] = {
      {1, "ISO6-76", 166}, {1, "ISO7-69", 167}, {1, "ISO6-79", 168}, {2, "ISO4-37", 180},
      {3, "ISO7-69", 199}, {3, "ISO6-79", 198}, {3, "ISO4-104", 196},
  };
  for (const auto& c : cases) EXPECT_EQ(c.code, Encode(c.track, c.format, "1").format) << c.format;
}

TEST_F(MagTest, Track3Iso769TakesUpTo127Characters) {
  std::string data127(127, 'a');
  TMagTrack ok = Encode(3, "ISO7-69", data127.c_str());
  EXPECT_EQ(199, ok.format);
  EXPECT_EQ(127, ok.length);
  EXPECT_EQ('a' - 0x20, ok.codes[126]);
  EXPECT_EQ(0, ok.codes[127]);
  std::string data128(128, 'a');
  TMagTrack tooLong = Encode(3, "ISO7-69", data128.c_str());
  EXPECT_EQ(2, tooLong.format);
  EXPECT_TRUE(AllZeroFrom(tooLong, 1));
}

TEST_F(MagTest, NoneStoresNothing) {
  for (int32_t track = 1; track <= 3; ++track) {
    TMagTrack t = Encode(track, "None", "anything at all ~");
    EXPECT_TRUE(AllZeroFrom(t, 0));
  }
}

TEST_F(MagTest, SevenBitSetReachesDel) {
  TMagTrack t = Encode(1, "ISO7-69", " ~\x7f");
  EXPECT_EQ(167, t.format);
  EXPECT_EQ((std::vector<uint8_t>{0, 94, 95}), Codes(t));
  EXPECT_EQ(3, Encode(1, "ISO7-69", "\x80").format);
  EXPECT_EQ(3, Encode(1, "ISO7-69", "\t").format);
}

TEST_F(MagTest, SixBitSetEndsAtUnderscore) {
  TMagTrack t = Encode(3, "ISO6-79", " _");
  EXPECT_EQ((std::vector<uint8_t>{0, 63}), Codes(t));
  EXPECT_EQ(3, Encode(3, "ISO6-79", "`").format);
}

TEST_F(MagTest, FourBitSetHoldsOnlyDigitsAndSigns) {
  EXPECT_EQ(3, Encode(2, "ISO4-37", "12A").format);
  EXPECT_EQ(3, Encode(3, "ISO4-104", " ").format);
  EXPECT_EQ(196, Encode(3, "ISO4-104", "0?").format);
}

TEST_F(MagTest, EmptyDataIsAcceptedWithNoCodes) {
  TMagTrack t = Encode(2, "ISO4-37", "");
  EXPECT_EQ(180, t.format);
  EXPECT_EQ(0, t.length);
}

TEST_F(MagTest, EncodeByCode) {
  TMagTrack t;
  Mag_EncodeByCode(196, ";12", &t);
  EXPECT_EQ(196, t.format);
  EXPECT_EQ((std::vector<uint8_t>{11, 1, 2}), Codes(t));
  Mag_EncodeByCode(199, "az", &t);
  EXPECT_EQ((std::vector<uint8_t>{65, 90}), Codes(t));
  Mag_EncodeByCode(166, "az", &t);
  EXPECT_EQ(3, t.format);
  Mag_EncodeByCode(0, "AB", &t);
  EXPECT_TRUE(AllZeroFrom(t, 0));
  Mag_EncodeByCode(170, "AB", &t);
  EXPECT_EQ(1, t.format);
  EXPECT_TRUE(AllZeroFrom(t, 1));
  std::string data128(128, '1');
  Mag_EncodeByCode(180, data128.c_str(), &t);
  EXPECT_EQ(2, t.format);
}
