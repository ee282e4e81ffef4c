// A portrait page printed by the filter and shown upright by brellian-preview --portrait.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "lib/png_io.h"
#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/scratch_dir.h"

namespace {

constexpr uint32_t PW = 664, PH = 1036;   // a portrait page of model 1030 at 300 dpi

class PreviewPortrait : public TScratchDirTest {
 protected:
  PreviewPortrait() : TScratchDirTest("test-preview-portrait") {}
};

// 'Near()' - Whether the dot (x, y) of img is within 40 of (r, g, b).
bool Near(const TPngImage& img, uint32_t x, uint32_t y, int r, int g, int b) {
  const uint8_t* p = &img.pixels[(static_cast<size_t>(y) * img.width + x) * 3];
  return std::abs(p[0] - r) <= 40 && std::abs(p[1] - g) <= 40 && std::abs(p[2] - b) <= 40;
}

}  // namespace

TEST_F(PreviewPortrait, APortraitPageComesBackUprightAsItWasDrawn) {
  // White page, a red block at the top left and a blue one at the bottom right.
  TRasterPage page = Raster_MakeRGBPage(PW, PH, 300, 255, 255, 255);
  Raster_FillRect(&page, 0, 0, 100, 60, 255, 0, 0);
  Raster_FillRect(&page, PW - 100, PH - 60, 100, 60, 0, 0, 255);
  std::string raster;
  ASSERT_TRUE(Raster_WriteStream({page}, false, &raster));
  TProcessOptions o;
  o.input = raster;
  o.env["PPD"] = Test_GeneratedPPD(1030);
  TProcessResult r = Test_RunFilter({"9", "user", "portrait", "1", "frontRibbon=ColorK"}, o);
  ASSERT_EQ(0, r.status) << r.err;
  Test_WriteFile(dir + "/job.bin", r.out);

  r = Test_RunProcess({BRELLIAN_TOOLS_DIR "/brellian-preview", "-q", "-o", dir, dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  TPngImage lying;
  std::string error;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/side0-card.png"), &lying, &error)) << error;
  EXPECT_EQ(PH, lying.width);   // laid on its side by the filter
  EXPECT_FALSE(Near(lying, 30, 20, 255, 0, 0));

  r = Test_RunProcess({BRELLIAN_TOOLS_DIR "/brellian-preview", "-q", "--portrait", "-o", dir, dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  TPngImage upright;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/side0-card.png"), &upright, &error)) << error;
  ASSERT_EQ(PW, upright.width);
  ASSERT_EQ(PH, upright.height);
  EXPECT_TRUE(Near(upright, 30, 20, 255, 0, 0));             // red at the top left
  EXPECT_TRUE(Near(upright, PW - 30, PH - 20, 0, 0, 255));   // blue at the bottom right
  EXPECT_TRUE(Near(upright, PW - 30, 20, 255, 255, 255));    // white elsewhere
  EXPECT_TRUE(Near(upright, 30, PH - 20, 255, 255, 255));
}
