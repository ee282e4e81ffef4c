// Tests of brellian-preview: lookup tables, portrait cards, the legend band and captures.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "jobstream/records.h"
#include "lib/png_io.h"
#include "support/process.h"
#include "support/scratch_dir.h"
#include "support/stream_reader_builder.h"

namespace {

const std::string PREVIEW = BRELLIAN_TOOLS_DIR "/brellian-preview";
using P = std::vector<uint8_t>;

class PreviewViews : public TScratchDirTest {
 protected:
  PreviewViews() : TScratchDirTest("test-preview-views") {}

  // Run the preview on bytes; the exit status.
  int Run(const std::string& bytes, const std::vector<std::string>& options = {}) {
    Test_WriteFile(dir + "/job.bin", bytes);
    std::vector<std::string> argv = {PREVIEW, "-q", "-o", dir};
    argv.insert(argv.end(), options.begin(), options.end());
    argv.push_back(dir + "/job.bin");
    TProcessResult r = Test_RunProcess(argv);
    EXPECT_EQ("", r.err);
    return r.status;
  }
  TPngImage Picture(const std::string& name) {
    TPngImage img;
    std::string error;
    EXPECT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/" + name), &img, &error)) << name << ": " << error;
    return img;
  }
  static P At(const TPngImage& img, uint32_t x, uint32_t y) {
    const uint8_t* p = &img.pixels[(y * img.width + x) * 3];
    return {p[0], p[1], p[2]};
  }
  // Whether a row range of the picture holds the colour c.
  static bool Holds(const TPngImage& img, uint32_t fromRow, const P& c) {
    for (uint32_t y = fromRow; y < img.height; ++y)
      for (uint32_t x = 0; x < img.width; ++x)
        if (At(img, x, y) == c) return true;
    return false;
  }
};

// A simplex job whose front is one panel of the given type.
std::string OnePanelJob(uint16_t w, uint16_t h, uint8_t type, const P& pixels) {
  TStreamBuilder b;
  b.StartJob(1).StartCard(1).StartSide(0).Lut().Panel(w, h, type, pixels, h).EndSide(0).EndCard(1).EndJob(1);
  return b.bytes;
}

}  // namespace

TEST_F(PreviewViews, TheColourPanelGoesThroughTheSidesLookupTable) {
  // Red inverted, green halved, blue as sent.
  P lut(ICMD_LUTTABLE_PAYLOAD);
  for (int v = 0; v < 256; ++v) {
    lut[v] = static_cast<uint8_t>(255 - v);
    lut[256 + v] = static_cast<uint8_t>(v / 2);
    lut[512 + v] = static_cast<uint8_t>(v);
  }
  P color = {200, 100, 50, 0, 255, 7};
  TStreamBuilder b;
  b.StartJob(1).StartCard(1, 1).StartSide(0).Record(ICMD_LUTTABLE, lut).Panel(2, 1, 0, color, 1).EndSide(0);
  b.StartSide(1).Lut().Panel(2, 1, 0, color, 1).EndSide(1).EndCard(1).EndJob(1);
  ASSERT_EQ(0, Run(b.bytes));
  TPngImage front = Picture("side0-card.png");
  EXPECT_EQ(P({55, 50, 50}), At(front, 0, 0));
  EXPECT_EQ(P({255, 127, 7}), At(front, 1, 0));
  TPngImage back = Picture("side1-card.png");   // the back's own table: the identity
  EXPECT_EQ(color, back.pixels);
}

TEST_F(PreviewViews, PortraitTurnsTheCardUpright) {
  // The filter lays a portrait page 2 dots wide and 3 high on its side:
  // a panel 3 x 2 whose top-left dot is the page's top-right one and
  // whose bottom-right dot is the page's bottom-left one.
  P color(3 * 2 * 3, 255);
  color[0] = 255, color[1] = 0, color[2] = 0;          // (0, 0) red
  color[15] = 0, color[16] = 0, color[17] = 255;       // (2, 1) blue
  std::string bytes = OnePanelJob(3, 2, 0, color);
  ASSERT_EQ(0, Run(bytes));
  TPngImage lying = Picture("side0-card.png");
  EXPECT_EQ(3u, lying.width);
  EXPECT_EQ(P({255, 0, 0}), At(lying, 0, 0));
  ASSERT_EQ(0, Run(bytes, {"--portrait"}));
  TPngImage upright = Picture("side0-card.png");
  ASSERT_EQ(2u, upright.width);
  ASSERT_EQ(3u, upright.height);
  EXPECT_EQ(P({255, 0, 0}), At(upright, 1, 0));   // top right
  EXPECT_EQ(P({0, 0, 255}), At(upright, 0, 2));   // bottom left
  EXPECT_EQ(P({255, 255, 255}), At(upright, 0, 0));
}

TEST_F(PreviewViews, TheLegendNamesOnlyTheMarksOfTheSide) {
  // 60 x 20 dots: wide enough for both names in the band.
  P full(60 * 20, 255);
  ASSERT_EQ(0, Run(OnePanelJob(60, 20, 3, full)));
  TPngImage po = Picture("side0-card.png");
  ASSERT_EQ(20u + 33u, po.height);
  EXPECT_EQ(P({128, 128, 128}), At(po, 0, 20));        // the band's top line
  EXPECT_TRUE(Holds(po, 21, P({0, 160, 0})));          // the overlay swatch
  EXPECT_TRUE(Holds(po, 21, P({0, 0, 0})));            // its name
  EXPECT_FALSE(Holds(po, 21, P({128, 0, 255})));       // no UV in the legend
  ASSERT_EQ(0, Run(OnePanelJob(60, 20, 2, full)));
  TPngImage uv = Picture("side0-card.png");
  EXPECT_TRUE(Holds(uv, 21, P({128, 0, 255})));
  EXPECT_FALSE(Holds(uv, 21, P({0, 160, 0})));
  EXPECT_TRUE(Holds(uv, 0, P({128, 0, 255})));         // and on the card
  // A UV panel with nothing applied marks nothing and adds no legend.
  ASSERT_EQ(0, Run(OnePanelJob(60, 20, 2, P(60 * 20, 0))));
  EXPECT_EQ(20u, Picture("side0-card.png").height);
}

TEST_F(PreviewViews, ACaptureOfTwoJobsGivesPicturesForEach) {
  std::string one = OnePanelJob(2, 1, 0, {1, 2, 3, 4, 5, 6});
  std::string two = OnePanelJob(2, 1, 0, {9, 9, 9, 8, 8, 8});
  ASSERT_EQ(0, Run(one + two));
  EXPECT_EQ(P({1, 2, 3, 4, 5, 6}), Picture("job1-side0-card.png").pixels);
  EXPECT_EQ(P({9, 9, 9, 8, 8, 8}), Picture("job2-side0-card.png").pixels);
}
