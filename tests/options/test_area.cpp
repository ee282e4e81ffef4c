// Tests of area strings: splitting, unit conversion, parsing and the tests.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "log/log.h"
#include "options/area.h"

namespace {

struct TAreaCase {
  const char* text;
  uint32_t dpi;
  TArea expected;
};

TArea Parse(const char* text, uint32_t dpi) {
  TArea area{1, 2, 3, 4};
  Area_Parse(&area, text, dpi);
  return area;
}

void ExpectArea(const TArea& expected, const TArea& got, const char* text) {
  EXPECT_EQ(expected.left, got.left) << text;
  EXPECT_EQ(expected.top, got.top) << text;
  EXPECT_EQ(expected.right, got.right) << text;
  EXPECT_EQ(expected.bottom, got.bottom) << text;
}

std::string Split(const char* text, int32_t* count) {
  char tokens[4][AREA_TOKEN_MAX + 1];
  *count = Area_SplitValues(text, tokens);
  return std::string(tokens[0]) + "|" + tokens[1] + "|" + tokens[2] + "|" + tokens[3];
}

}  // namespace

TEST(AreaParse, TableOfTexts) {
  const TAreaCase cases[] = {
      {"5mm 5mm 50mm 30mm", 300, {59, 59, 591, 354}},
      {"5mm 5mm 50mm 30mm", 600, {118, 118, 1181, 709}},
      {"custom.2.5cm 0 3in 1.5in", 300, {295, 0, 900, 450}},
      {"CUSTOM.2.5cm 0 3in 1.5in", 300, {295, 0, 900, 450}},
      {"10 20 30 40", 300, {10, 20, 30, 12000}},
      {"-10px 20px 30px 40px", 300, {10, 20, 30, 40}},
      {"+1in -2\" 3IN 4Mm", 300, {300, 600, 900, 47}},
      {"1px2px3px4px", 300, {1, 2, 3, 4}},
      {"  1px   2px 3px 4px  ", 300, {1, 2, 3, 4}},
      {".5in 1.5cm 0px 0.5in", 600, {300, 354, 0, 300}},
      {"1 2 3", 300, {0, 0, 0, 0}},
      {"1 2 3 4 5", 300, {0, 0, 0, 0}},
      {"1 2 3 4 mmx", 300, {0, 0, 0, 0}},
      {"", 300, {0, 0, 0, 0}},
      {"None", 300, {0, 0, 0, 0}},
      {"1pt 2px 3px 4px", 300, {0, 0, 0, 0}},
      {"1px 2px 3px x4px", 300, {0, 0, 0, 0}},
  };
  for (const TAreaCase& c : cases) ExpectArea(c.expected, Parse(c.text, c.dpi), c.text);
}

TEST(AreaParse, NullTextGivesEmptyArea) {
  ExpectArea({0, 0, 0, 0}, Parse(nullptr, 300), "null");
}

TEST(AreaSplit, UnitlessValueBeforeAnotherGetsPxLastKeepsNone) {
  int32_t count;
  EXPECT_EQ("10px|20px|30px|40", Split("10 20 30 40", &count));
  EXPECT_EQ(4, count);
  EXPECT_EQ("1in|2\"|3cm|4MM", Split("1in 2\" 3cm 4MM", &count));
  EXPECT_EQ("2.5cm|0px|3in|1.5in", Split("custom.2.5cm 0 3in 1.5in", &count));
}

TEST(AreaSplit, SecondDotEndsTheNumber) {
  int32_t count;
  EXPECT_EQ("1.2px|.3px|4px|5px", Split("1.2.3 4 5px", &count));
  EXPECT_EQ(4, count);
}

TEST(AreaSplit, FailureClearsAllTokens) {
  int32_t count = 7;
  EXPECT_EQ("|||", Split("1px 2px 3px", &count));
  EXPECT_EQ(0, count);
  EXPECT_EQ("|||", Split("1px 2px 3px 4px 5px", &count));
  EXPECT_EQ(0, count);
}

TEST(AreaSplit, TokensOfTwentyCharactersPassLongerOnesFail) {
  int32_t count;
  // 18 digits and a two-letter unit: 20 characters.
  std::string twenty = std::string(18, '1') + "px";
  std::string text = twenty + " 1px 1px 1px";
  EXPECT_EQ(twenty + "|1px|1px|1px", Split(text.c_str(), &count));
  EXPECT_EQ(4, count);
  std::string longer = std::string(19, '1') + "px 1px 1px 1px";
  EXPECT_EQ("|||", Split(longer.c_str(), &count));
  std::string longNumber = "1px 1px 1px " + std::string(21, '2');
  EXPECT_EQ("|||", Split(longNumber.c_str(), &count));
  EXPECT_EQ(0, count);
}

TEST(AreaValueToDots, UnitsAndRounding) {
  EXPECT_EQ(59u, Area_ValueToDots("5mm", 300));
  EXPECT_EQ(295u, Area_ValueToDots("2.5CM", 300));
  EXPECT_EQ(450u, Area_ValueToDots("1.5in", 300));
  EXPECT_EQ(450u, Area_ValueToDots("1.5\"", 300));
  EXPECT_EQ(12000u, Area_ValueToDots("40", 300));
  EXPECT_EQ(13u, Area_ValueToDots("12.5px", 300));
  EXPECT_EQ(12u, Area_ValueToDots("12.49px", 600));
  EXPECT_EQ(0u, Area_ValueToDots("", 300));
  EXPECT_EQ(0u, Area_ValueToDots(nullptr, 300));
}

TEST(AreaValueToDots, HugeValuesClampToTheLargestDotCount) {
  EXPECT_EQ(4294967295u, Area_ValueToDots("99999999999999999999", 600));
  EXPECT_EQ(4294967295u, Area_ValueToDots("4294967295px", 300));
  EXPECT_EQ(4294967294u, Area_ValueToDots("4294967294px", 300));
  TArea area = Parse("1px 1px 1px 999999999999999999", 600);
  EXPECT_EQ(4294967295u, area.bottom);
}

TEST(AreaParse, LogsTheResultAtLevel2) {
  Log_SetOutputMask(LOG_OUT_STDERR);
  Log_SetLevel(LOG_LOG);
  Log_SetDepth(0);
  testing::internal::CaptureStderr();
  Parse("5mm 5mm 50mm 30mm", 300);
  Parse("1 2 3", 300);
  std::string out = testing::internal::GetCapturedStderr();
  Log_SetOutputMask(0);
  EXPECT_EQ(" Parse area: (5mm 5mm 50mm 30mm)(300) --> (59,59)(591,354)\n", out);
}

TEST(AreaTests, EmptyAndContains) {
  TArea zero{0, 0, 0, 0};
  TArea box{10, 20, 30, 40};
  EXPECT_TRUE(Area_IsEmpty(nullptr));
  EXPECT_TRUE(Area_IsEmpty(&zero));
  EXPECT_FALSE(Area_IsEmpty(&box));
  EXPECT_FALSE(Area_Contains(0, 0, &zero));
  EXPECT_FALSE(Area_Contains(0, 0, nullptr));
  EXPECT_TRUE(Area_Contains(10, 20, &box));
  EXPECT_TRUE(Area_Contains(29, 39, &box));
  EXPECT_FALSE(Area_Contains(30, 39, &box));
  EXPECT_FALSE(Area_Contains(29, 40, &box));
  EXPECT_FALSE(Area_Contains(9, 25, &box));
  EXPECT_FALSE(Area_Contains(-1, 25, &box));
}

TEST(AreaTests, ContainsComparesSigned) {
  // A right edge above INT32_MAX reads as negative: nothing is inside.
  TArea wide{0, 0, 0x80000000u, 10};
  EXPECT_FALSE(Area_Contains(5, 5, &wide));
}

TEST(AreaSplit, AnyTextSplitsIntoBoundedTokens) {
  // Deterministic random texts over the characters that matter.
  const char alphabet[] = "0123456789.+- \t\"pxmcinPXMCINcustom.z";
  uint32_t seed = 777;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    size_t n = next() % 60;
    for (size_t i = 0; i < n; ++i) text.push_back(alphabet[(next() >> 8) % (sizeof alphabet - 1)]);
    char tokens[4][AREA_TOKEN_MAX + 1];
    int32_t count = Area_SplitValues(text.c_str(), tokens);
    ASSERT_TRUE(count == 0 || count == 4) << text;
    for (auto& t : tokens) {
      ASSERT_LE(strlen(t), static_cast<size_t>(AREA_TOKEN_MAX)) << text;
      if (count == 0) {
        ASSERT_EQ('\0', t[0]) << text;
      }
    }
  }
}
