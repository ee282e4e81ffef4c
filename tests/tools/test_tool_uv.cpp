// Tests of UV preset images: picture to UV file and back, fitting, installing (brellian-uvimage).
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "brellian_paths.h"
#include "options/settings.h"
#include "lib/png_io.h"
#include "status/tables.h"
#include "support/process.h"
#include "support/scratch_dir.h"
#include "lib/uv_image.h"

namespace {

const std::string UVIMAGE = BRELLIAN_TOOLS_DIR "/brellian-uvimage";
constexpr uint32_t W = 1036, H = 664;   // models 1030 and 1035

TPngImage Rgb(uint32_t w, uint32_t h, std::vector<uint8_t> pixels) {
  TPngImage img;
  img.width = w;
  img.height = h;
  img.channels = 3;
  img.pixels = std::move(pixels);
  return img;
}

class UvTool : public TScratchDirTest {
 protected:
  UvTool() : TScratchDirTest("test-uv-tool") {}
};

}  // namespace

TEST(UvImage, DarkPixelsApplyUV) {
  EXPECT_EQ(255, Uv_DotFromRGB(0, 0, 0));
  EXPECT_EQ(0, Uv_DotFromRGB(255, 255, 255));
  EXPECT_EQ(179, Uv_DotFromRGB(255, 0, 0));   // luminance 76
  EXPECT_EQ(11, Uv_DotFromRGB(244, 244, 244));
  EXPECT_EQ(std::vector<uint8_t>({255, 0, 11}), Uv_ToGray(std::vector<uint8_t>({0, 255, 244}).data(), 3));
}

TEST(UvImage, OtherSizesAreRefusedOrScaled) {
  Status_BuildTables();
  // A 2 x 1 picture: black, white.
  TPngImage pic = Rgb(2, 1, {0, 0, 0, 255, 255, 255});
  std::vector<uint8_t> out;
  std::string error;
  EXPECT_FALSE(Uv_FromImage(pic, 4, 4, UVFIT_EXACT, &out, &error));
  EXPECT_EQ("the picture is 2 x 1 but the panel is 4 x 4 (--fit fit or --fit stretch scales it)", error);
  ASSERT_TRUE(Uv_FromImage(pic, 4, 4, UVFIT_STRETCH, &out, &error));
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0}), out);
  // Fit: 4 x 2, centred, rows 0 and 3 without UV.
  ASSERT_TRUE(Uv_FromImage(pic, 4, 4, UVFIT_FIT, &out, &error));
  EXPECT_EQ(std::vector<uint8_t>({0, 0, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 0, 0, 0, 0}), out);
  // A 3 x 1 picture into 2 x 2 by fit: 2 x 0 becomes 2 x 1 at row 0.
  TPngImage wide = Rgb(3, 1, {0, 0, 0, 255, 255, 255, 0, 0, 0});
  ASSERT_TRUE(Uv_FromImage(wide, 2, 2, UVFIT_FIT, &out, &error));
  EXPECT_EQ(std::vector<uint8_t>({255, 255, 0, 0}), out);
  TPngImage same = Rgb(2, 1, {10, 10, 10, 0, 0, 255});
  ASSERT_TRUE(Uv_FromImage(same, 2, 1, UVFIT_EXACT, &out, &error));
  EXPECT_EQ(std::vector<uint8_t>({245, 226}), out);   // blue: luminance 29
}

TEST_F(UvTool, PictureAndUVFileConvertIntoEachOtherWithoutLoss) {
  std::vector<uint8_t> gray(W * H);
  for (size_t i = 0; i < gray.size(); ++i) gray[i] = static_cast<uint8_t>((i * 7 + i / W) % 256);
  ASSERT_TRUE(Png_WriteGray(dir + "/in.png", W, H, gray.data()));
  TProcessResult r = Test_RunProcess({UVIMAGE, "--model", "1030", "to-raw", dir + "/in.png", dir + "/uv.raw"});
  ASSERT_EQ(0, r.status) << r.err;
  std::string raw = Test_ReadFile(dir + "/uv.raw");
  ASSERT_EQ(687904u, raw.size());
  for (size_t i = 0; i < raw.size(); i += 997) ASSERT_EQ(255 - gray[i], static_cast<uint8_t>(raw[i])) << i;
  r = Test_RunProcess({UVIMAGE, "--model", "1035", "to-png", dir + "/uv.raw", dir + "/out.png"});
  ASSERT_EQ(0, r.status) << r.err;
  TPngImage back;
  std::string error;
  ASSERT_TRUE(Png_DecodeGray(Test_ReadFile(dir + "/out.png"), &back, &error)) << error;
  EXPECT_EQ(gray, back.pixels);
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "to-raw", dir + "/out.png", dir + "/uv2.raw"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(raw, Test_ReadFile(dir + "/uv2.raw"));
}

TEST_F(UvTool, SizesAreCheckedAgainstTheModel) {
  std::vector<uint8_t> gray(W * H, 0);
  ASSERT_TRUE(Png_WriteGray(dir + "/in.png", W, H, gray.data()));
  TProcessResult r = Test_RunProcess({UVIMAGE, "--model", "1060", "to-raw", dir + "/in.png", dir + "/uv.raw"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-uvimage: " + dir +
                "/in.png: the picture is 1036 x 664 but the panel is 2072 x 1328 (--fit fit or --fit stretch scales "
                "it)\n",
            r.err);
  r = Test_RunProcess({UVIMAGE, "--model", "1060", "--fit", "stretch", "to-raw", dir + "/in.png", dir + "/uv.raw"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(std::string(2751616, '\xFF'), Test_ReadFile(dir + "/uv.raw"));

  Test_WriteFile(dir + "/short.raw", std::string(687903, '\0'));
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "check", dir + "/short.raw"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("brellian-uvimage: " + dir +
                "/short.raw: 687903 bytes, but model 1030 takes exactly 1036 x 664 = 687904 (the filter would print "
                "no UV)\n",
            r.err);
  // A longer file would print its first bytes as rows of another width.
  Test_WriteFile(dir + "/long.raw", std::string(687905, '\0'));
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "check", dir + "/long.raw"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("", r.out);
  EXPECT_EQ("brellian-uvimage: " + dir + "/long.raw: 687905 bytes, but model 1030 takes exactly 1036 x 664 = "
            "687904 (the filter would print its first bytes as a garbled UV image)\n", r.err);
  Test_WriteFile(dir + "/exact.raw", std::string(687904, '\0'));
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "check", dir + "/exact.raw"});
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(dir + "/exact.raw: usable for model 1030 (1036 x 664)\n", r.out);
  EXPECT_EQ(2, Test_RunProcess({UVIMAGE, "check", dir + "/long.raw"}).status);   // no model
}

TEST_F(UvTool, InstallWritesTheUVDirectoryAndTheSettingsName) {
  std::vector<uint8_t> gray(W * H, 255);
  gray[0] = 0;
  ASSERT_TRUE(Png_WriteGray(dir + "/in.png", W, H, gray.data()));
  const std::string serial = "UVTOOL1";
  const std::string settingsFile = BRELLIAN_SETTINGS_DIR "/brellian_br-1060_uvtool1.dat";
  Test_RemoveTree(settingsFile);
  TProcessResult r = Test_RunProcess(
      {UVIMAGE, "--model", "1030", "--serial", serial, "--preset", "3", "install", dir + "/in.png", "uvtool.uv"});
  ASSERT_EQ(0, r.status) << r.err;
  std::string path = Test_ConfDir() + "/uv/uvtool.uv";
  EXPECT_EQ("installed " + path + "\nset uv.3 = uvtool.uv in " + settingsFile + "\n", r.out);
  std::string raw = Test_ReadFile(path);
  ASSERT_EQ(687904u, raw.size());
  EXPECT_EQ('\xFF', raw[0]);
  EXPECT_EQ('\0', raw[1]);
  TBrellianSettings s;
  ASSERT_TRUE(s.Load("BR-1060", serial.c_str()));
  EXPECT_EQ("uvtool.uv", s.uvNames[2]);
  Test_RemoveTree(settingsFile);
  Test_RemoveTree(path);
  r = Test_RunProcess({UVIMAGE, "--model", "1030", "install", dir + "/in.png", "../uv"});
  EXPECT_EQ(2, r.status);
}
