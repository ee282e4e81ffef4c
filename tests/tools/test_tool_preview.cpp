// Tests of brellian-preview: the composite picture of each card side, pixel by pixel.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "lib/png_io.h"
#include "support/process.h"
#include "support/scratch_dir.h"
#include "support/stream_reader_builder.h"

namespace {

const std::string PREVIEW = BRELLIAN_TOOLS_DIR "/brellian-preview";
constexpr uint16_t W = 6, H = 5;

class PreviewTool : public TScratchDirTest {
 protected:
  PreviewTool() : TScratchDirTest("test-preview-tool") {}

  TPngImage Picture(const std::string& name) {
    TPngImage img;
    std::string error;
    EXPECT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/" + name), &img, &error)) << name << ": " << error;
    return img;
  }
  static std::vector<uint8_t> At(const TPngImage& img, uint32_t x, uint32_t y) {
    const uint8_t* p = &img.pixels[(y * img.width + x) * 3];
    return {p[0], p[1], p[2]};
  }
};

// Front: colour (200, 100, 50) with (10, 20, 30) at (0, 0); black 255 at
// (1, 0) and 128 at (2, 0); UV 255 at (3, 0) and 100 at (0, 1); overlay
// 255 on the 4 x 3 block x 1-4, y 1-3.  The panels come in the order
// overlay, UV, black, colour: the composite does not depend on it.  Back:
// an all-black black panel and a UV panel of another size.
TStreamBuilder PreviewJob() {
  std::vector<uint8_t> color;
  for (int i = 0; i < W * H; ++i) color.insert(color.end(), {200, 100, 50});
  color[0] = 10, color[1] = 20, color[2] = 30;
  std::vector<uint8_t> k(W * H, 0), uv(W * H, 0), po(W * H, 0);
  k[1] = 255;
  k[2] = 128;
  uv[3] = 255;
  uv[W] = 100;
  for (int y = 1; y <= 3; ++y)
    for (int x = 1; x <= 4; ++x) po[y * W + x] = 255;
  TStreamBuilder b;
  b.StartJob(3).StartCard(9, 1).StartSide(0).Lut();
  b.Panel(W, H, 3, po, 2).Panel(W, H, 2, uv, 5).Panel(W, H, 1, k, 1).Panel(W, H, 0, color, 3).EndSide(0);
  b.StartSide(1, 0, 1).Lut().Panel(W, H, 1, std::vector<uint8_t>(W * H, 255), 5);
  b.Panel(3, 3, 2, std::vector<uint8_t>(9, 255), 3).EndSide(1).EndCard(9).EndJob(3);
  return b;
}

}  // namespace

TEST_F(PreviewTool, TheCompositeFollowsTheDocumentedFormulas) {
  Test_WriteFile(dir + "/job.bin", PreviewJob().bytes);
  TProcessResult r = Test_RunProcess({PREVIEW, "-o", dir + "/out", dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  // The front has UV and overlay: a legend band of 33 rows below the card.
  EXPECT_EQ("OK: complete job, 35 records, 6 panels\nwrote " + dir + "/out/side0-card.png (6 x 38)\nwrote " + dir +
                "/out/side1-card.png (6 x 5)\n",
            r.out);
  EXPECT_EQ("brellian-preview: side 1: left out panel 1 (uv): 3 x 3, not 6 x 5\n", r.err);
  dir += "/out";
  TPngImage front = Picture("side0-card.png");
  ASSERT_EQ(6u, front.width);
  ASSERT_EQ(38u, front.height);
  using P = std::vector<uint8_t>;
  EXPECT_EQ(P({10, 20, 30}), At(front, 0, 0));       // colour as sent
  EXPECT_EQ(P({0, 0, 0}), At(front, 1, 0));          // black 255
  EXPECT_EQ(P({100, 50, 25}), At(front, 2, 0));      // black 128: (c x 127 + 127) / 255
  EXPECT_EQ(P({255, 255, 255}), At(front, 3, 0));    // UV 255: its own edge, in a white block
  EXPECT_EQ(P({200, 100, 50}), At(front, 0, 1));     // UV 100 is outside the UV region
  EXPECT_EQ(P({200, 100, 50}), At(front, 5, 0));     // nothing over the colour
  EXPECT_EQ(P({200, 100, 50}), At(front, 0, 4));
  // The overlay block's edge is outlined, green in the blocks of 3 x 3 dots
  // whose column and row numbers add up to an even number, white in the
  // others; its inside keeps the colour off the hatch lines.
  for (uint32_t x = 1; x <= 4; ++x) {
    P mark = x < 3 ? P({0, 160, 0}) : P({255, 255, 255});
    EXPECT_EQ(mark, At(front, x, 1)) << x;
    EXPECT_EQ(x < 3 ? P({255, 255, 255}) : P({0, 160, 0}), At(front, x, 3)) << x;
  }
  EXPECT_EQ(P({0, 160, 0}), At(front, 1, 2));
  EXPECT_EQ(P({255, 255, 255}), At(front, 4, 2));
  EXPECT_EQ(P({200, 100, 50}), At(front, 2, 2));
  EXPECT_EQ(P({200, 100, 50}), At(front, 3, 2));
  EXPECT_EQ(P({200, 100, 50}), At(front, 5, 2));
  // The back: white card, all black, no legend.
  TPngImage back = Picture("side1-card.png");
  EXPECT_EQ(std::vector<uint8_t>(W * H * 3, 0), back.pixels);
}

TEST_F(PreviewTool, ARegionToThePanelEdgeIsOutlinedAndHatchedAndPanelPicturesCanBeAdded) {
  std::vector<uint8_t> po(W * H, 255);
  TStreamBuilder b;
  b.StartJob(1).StartCard(2).StartSide(0).Lut().Panel(W, H, 3, po, 5).EndSide(0).EndCard(2).EndJob(1);
  Test_WriteFile(dir + "/job.bin", b.bytes);
  TProcessResult r = Test_RunProcess({PREVIEW, "-q", "--panels", "-o", dir, dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.out);
  TPngImage front = Picture("side0-card.png");
  ASSERT_EQ(5u + 33u, front.height);
  const std::vector<uint8_t> white = {255, 255, 255}, green = {0, 160, 0};
  for (uint32_t y = 0; y < H; ++y)
    for (uint32_t x = 0; x < W; ++x) {
      bool edge = x == 0 || y == 0 || x == W - 1 || y == H - 1;
      bool hatch = (x + y) % 6 < 2;            // lines running up to the right, 2 dots wide
      bool colour = (x / 3 + y / 3) % 2 == 0;  // green and white blocks of 3 x 3 dots
      EXPECT_EQ((edge || hatch) && colour ? green : white, At(front, x, y)) << x << "," << y;
    }
  EXPECT_EQ(green, At(front, 3, 3));  // a hatch dot inside the region, in a green block
  TPngImage panel = Picture("side0-panel0-po.png");
  EXPECT_EQ(std::vector<uint8_t>(W * H * 3, 0), panel.pixels);   // the inspector's picture: applied shows black
}

TEST_F(PreviewTool, ACutOrBrokenStreamStillShowsWhatWasRead) {
  std::string bytes = PreviewJob().bytes;
  Test_WriteFile(dir + "/cut.bin", bytes.substr(0, bytes.size() - 10));   // without ICMD_ENDJOB
  TProcessResult r = Test_RunProcess({PREVIEW, "-q", "-o", dir, dir + "/cut.bin"});
  EXPECT_EQ(3, r.status);
  EXPECT_EQ(std::vector<uint8_t>({10, 20, 30}), At(Picture("side0-card.png"), 0, 0));
  Test_WriteFile(dir + "/bad.bin", bytes + "x");
  r = Test_RunProcess({PREVIEW, "-q", "-o", dir, dir + "/bad.bin"});
  EXPECT_EQ(1, r.status);
  EXPECT_EQ(0u, r.err.find("brellian-preview: ERROR at offset ")) << r.err;
  EXPECT_EQ(2, Test_RunProcess({PREVIEW, "-o", dir, dir + "/missing.bin"}).status);
}
