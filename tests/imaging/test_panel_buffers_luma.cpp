// Tests of the luminance conversions against the double-precision formula.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "driver/printing_task.h"
#include "imaging/panel.h"

namespace {

// The formula itself, evaluated directly.
uint8_t Reference(int r, int g, int b) {
  double y = 0.299 * r + 0.587 * g + 0.114 * b;
  return y > 255.0 ? 0xFF : static_cast<uint8_t>(static_cast<int>(y));
}

}  // namespace

TEST(Luminance, WhiteBlackAndRed) {
  EXPECT_EQ(255, Image_Luminance(255, 255, 255));
  EXPECT_EQ(0, Image_Luminance(0, 0, 0));
  EXPECT_EQ(76, Image_Luminance(255, 0, 0));
  EXPECT_EQ(149, Image_Luminance(0, 255, 0));
  EXPECT_EQ(29, Image_Luminance(0, 0, 255));
}

TEST(Luminance, SumsJustBelowAnIntegerTruncateDown) {
  // 0.299 + 0.587 + 0.114 is a hair below 1 in double precision.
  EXPECT_EQ(0, Image_Luminance(1, 1, 1));
  EXPECT_EQ(44, Image_Luminance(0, 72, 24));
}

TEST(Luminance, EveryRgbValueMatchesTheFormula) {
  for (int r = 0; r < 256; ++r)
    for (int g = 0; g < 256; ++g)
      for (int b = 0; b < 256; ++b)
        if (Image_Luminance(r, g, b) != Reference(r, g, b))
          FAIL() << r << "," << g << "," << b << ": " << int(Image_Luminance(r, g, b));
}

TEST(Luminance, GrayInPlaceAndGrayPlaneCoverTheWholePanel) {
  Panel_BuildTables();
  TPrintingTask task(0, nullptr);
  task.printerModel = 1030;
  size_t n = 1036 * 664;
  std::vector<uint8_t> rgb(n * 3);
  for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = static_cast<uint8_t>(i * 31 + i / 7);
  uint8_t* plane = nullptr;
  EXPECT_EQ(0, Image_ToGrayPlane(&task, rgb.data(), &plane));
  ASSERT_NE(nullptr, plane);
  std::vector<uint8_t> gray = rgb;
  EXPECT_EQ(0, Image_ToGrayInPlace(&task, gray.data()));
  for (size_t i = 0; i < n; ++i) {
    uint8_t y = Reference(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
    ASSERT_EQ(y, plane[i]) << i;
    ASSERT_EQ(y, gray[3 * i]) << i;
    ASSERT_EQ(y, gray[3 * i + 1]) << i;
    ASSERT_EQ(y, gray[3 * i + 2]) << i;
  }
  free(plane);
}

TEST(Luminance, NullInputs) {
  TPrintingTask task(0, nullptr);
  task.printerModel = 1030;
  EXPECT_EQ(1, Image_ToGrayInPlace(&task, nullptr));
  uint8_t* plane = reinterpret_cast<uint8_t*>(&task);
  EXPECT_EQ(0, Image_ToGrayPlane(&task, nullptr, &plane));
  EXPECT_EQ(nullptr, plane);
}
