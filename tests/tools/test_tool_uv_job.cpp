// A UV preset made by brellian-uvimage, printed by the filter and shown by brellian-preview.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "brellian_paths.h"
#include "jobstream/stream_reader.h"
#include "lib/png_io.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

const std::string TOOLS = BRELLIAN_TOOLS_DIR;
constexpr uint32_t W = 1036, H = 664;   // model 1030

// 'InRect()' - The black rectangle of the test picture: x 100-199, y 50-99.
bool InRect(uint32_t x, uint32_t y) { return x >= 100 && x < 200 && y >= 50 && y < 100; }

class UvJob : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = BRELLIAN_BINARY_DIR "/test-uv-job";
    Test_RemoveTree(dir);
    Test_MakeDirs(dir);
  }
  void TearDown() override {
    Test_RemoveTree(dir);
    Test_RemoveTree(BRELLIAN_SETTINGS_DIR "/brellian_br-1060_uvjob1.dat");
    Test_RemoveTree(BRELLIAN_CONF_DIR "/uv/uvjob.uv");
  }
  std::string dir;
};

}  // namespace

TEST_F(UvJob, TheFilterPrintsTheConvertedPictureAsTheUVPanel) {
  std::vector<uint8_t> gray(W * H, 255);
  for (uint32_t y = 0; y < H; ++y)
    for (uint32_t x = 0; x < W; ++x)
      if (InRect(x, y)) gray[y * W + x] = 0;
  ASSERT_TRUE(Png_WriteGray(dir + "/logo.png", W, H, gray.data()));
  TProcessResult r = Test_RunProcess({TOOLS + "/brellian-uvimage", "--model", "1030", "--serial", "UVJOB1",
                                      "--preset", "2", "install", dir + "/logo.png", "uvjob.uv"});
  ASSERT_EQ(0, r.status) << r.err;
  std::string raw = Test_ReadFile(BRELLIAN_CONF_DIR "/uv/uvjob.uv");
  ASSERT_EQ(static_cast<size_t>(W * H), raw.size());

  std::string raster;
  ASSERT_TRUE(Raster_WriteStream({Raster_MakeRGBPage(W, H, 300, 255, 255, 255)}, false, &raster));
  TProcessOptions o;
  o.input = raster;
  o.env["PPD"] = Test_GeneratedPPD(1030);
  o.env["DEVICE_URI"] = "brellian://printer?serial=UVJOB1";
  r = Test_RunFilter({"8", "user", "uv", "1", "ribbonType=YMCK-UV frontUV=Preset2"}, o);
  ASSERT_EQ(0, r.status) << r.err;
  TStreamCheck check;
  ASSERT_EQ(0, Stream_Read(r.out, &check)) << check.error;
  ASSERT_TRUE(check.complete);
  const TStreamPanel* uv = nullptr;
  const TStreamPanel* color = nullptr;
  for (const TStreamPanel& p : check.panels) {
    if (p.side == 0 && p.panelType == 2) uv = &p;
    if (p.side == 0 && p.panelType == 0) color = &p;
  }
  ASSERT_NE(nullptr, uv);
  ASSERT_NE(nullptr, color);
  EXPECT_EQ(std::vector<uint8_t>(raw.begin(), raw.end()), uv->pixels);
  EXPECT_EQ(255, uv->pixels[50 * W + 100]);
  EXPECT_EQ(0, uv->pixels[50 * W + 99]);

  // The preview: a white card, the UV region outlined and hatched in violet
  // and white blocks of 3 x 3 dots, and a legend band below.
  Test_WriteFile(dir + "/job.bin", r.out);
  r = Test_RunProcess({TOOLS + "/brellian-preview", "-q", "-o", dir, dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  TPngImage card;
  std::string error;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/side0-card.png"), &card, &error)) << error;
  ASSERT_EQ(W, card.width);
  ASSERT_GT(card.height, H);
  const std::vector<uint8_t> white = {255, 255, 255}, violet = {128, 0, 255};
  for (uint32_t y : {49u, 50u, 51u, 75u, 99u, 100u}) {
    for (uint32_t x : {99u, 100u, 101u, 150u, 154u, 199u, 200u}) {
      const uint8_t* c = &color->pixels[(y * W + x) * 3];
      ASSERT_EQ(white, std::vector<uint8_t>(c, c + 3));
      const uint8_t* p = &card.pixels[(y * W + x) * 3];
      bool edge = x == 100 || x == 199 || y == 50 || y == 99;
      bool hatch = (x + 6 - y % 6) % 6 < 2;   // UV lines run down to the right
      bool marked = InRect(x, y) && (edge || hatch);
      bool colourBlock = (x / 3 + y / 3) % 2 == 0;
      EXPECT_EQ(marked && colourBlock ? violet : white, std::vector<uint8_t>(p, p + 3)) << x << "," << y;
    }
  }
  const uint8_t* hatchDot = &card.pixels[(75 * W + 154) * 3];   // inside, on a line, in a violet block
  EXPECT_EQ(violet, std::vector<uint8_t>(hatchDot, hatchDot + 3));
}
