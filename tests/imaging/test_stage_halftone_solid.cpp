// Tests of Image_HalftoneSolidBlack: pure black kept solid beside grey.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "imaging/panel.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "support/stage_helpers.h"

namespace {

constexpr uint32_t kW = 1036, kH = 664;
constexpr size_t kDots = static_cast<size_t>(kW) * kH;

// 'Solid_Badge()' - A white 1036 x 664 image with a grey gradient "photo"
// (left third), a colour band (top rows) and pure black bars beside them.
std::vector<uint8_t> Solid_Badge() {
  std::vector<uint8_t> rgb(kDots * 3, 255);
  for (uint32_t y = 0; y < kH; ++y) {
    for (uint32_t x = 0; x < kW; ++x) {
      uint8_t* p = &rgb[(static_cast<size_t>(y) * kW + x) * 3];
      if (x < 340) {
        memset(p, static_cast<int>(40 + (x + y) % 180), 3);
      } else if (y < 60) {
        p[0] = 200; p[1] = 30; p[2] = 40;
      } else if (y >= 400 && y < 560 && x >= 400 && x < 1000 && (x / 5) % 2 == 0) {
        memset(p, 0, 3);
      }
    }
  }
  return rgb;
}

// 'Solid_Run()' - One stage on rgb for a 1030 task; the panel and the log.
std::vector<uint8_t> Solid_Run(bool solid, const std::vector<uint8_t>& rgb, std::string* log) {
  auto task = Stage_MakeTask(1030);
  uint8_t* out = nullptr;
  std::string text = Stage_CaptureLog([&] {
    if (solid) Image_HalftoneSolidBlack(task.get(), rgb.data(), &out);
    else Image_Halftone(task.get(), rgb.data(), &out);
  });
  if (log) *log = text;
  TStageBuffer hold(out);
  return out ? std::vector<uint8_t>(out, out + kDots) : std::vector<uint8_t>();
}

// 'Solid_Count()' - Printed dots among the pure black dots of rgb, and
// printed dots in the rest.
void Solid_Count(const std::vector<uint8_t>& rgb, const std::vector<uint8_t>& k, size_t* black,
                 size_t* blackPrinted) {
  *black = *blackPrinted = 0;
  for (size_t i = 0; i < kDots; ++i) {
    if ((rgb[3 * i] | rgb[3 * i + 1] | rgb[3 * i + 2]) != 0) continue;
    ++*black;
    if (k[i] == 255) ++*blackPrinted;
  }
}

// 'Solid_Mixed()' - A random width x height image from seed: pure black
// dots, runs of them (bars), pure white dots and grey dots of random bytes.
std::vector<uint8_t> Solid_Mixed(uint32_t width, uint32_t height, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
  for (size_t i = 0; i < rgb.size(); i += 3) {
    uint32_t kind = rng() % 8;
    if (kind < 2 || (i >= 3 && kind < 4 && rgb[i - 3] == 0 && rgb[i - 2] == 0 && rgb[i - 1] == 0)) {
      memset(&rgb[i], 0, 3);
    } else if (kind < 5) {
      memset(&rgb[i], 255, 3);
    } else {
      for (int c = 0; c < 3; ++c) rgb[i + c] = static_cast<uint8_t>(rng());
    }
  }
  return rgb;
}

// Made-up models with tiny panels, for the edges of the diffusion.
constexpr int32_t kTinyModels[] = {9111, 9112, 9113, 9114, 9115, 9116};
constexpr TPanelGeometry kTinySizes[] = {{1, 5}, {5, 1}, {3, 3}, {2, 2}, {7, 4}, {3, 7}};

}  // namespace

// The rendering is held to its plain twin (tests/reference), byte for byte,
// on random images of pure black, white and grey dots at both panel sizes
// and on tiny panels, where the shared diffusion takes its generic way.
TEST(HalftoneSolidBlack, MatchesThePlainRenderingOnRandomImages) {
  for (size_t m = 0; m < 6; ++m) g_panelGeometry[kTinyModels[m]] = kTinySizes[m];
  std::vector<int32_t> models = {1030, 1060};
  models.insert(models.end(), std::begin(kTinyModels), std::end(kTinyModels));
  for (int32_t model : models) {
    for (uint32_t seed = 1; seed <= (model < 9000 ? 2u : 20u); ++seed) {
      auto task = Stage_MakeTask(model);
      TPanelGeometry g = Panel_Geometry(task.get());
      std::vector<uint8_t> rgb = Solid_Mixed(g.width, g.height, seed * 31 + model);
      uint8_t* fast = nullptr;
      uint8_t* plain = nullptr;
      EXPECT_EQ(0, Image_HalftoneSolidBlack(task.get(), rgb.data(), &fast));
      EXPECT_EQ(0, Ref_HalftoneSolidBlack(task.get(), rgb.data(), &plain));
      TStageBuffer hf(fast), hp(plain);
      ASSERT_NE(nullptr, fast);
      ASSERT_NE(nullptr, plain);
      ASSERT_EQ(0, memcmp(fast, plain, static_cast<size_t>(g.width) * g.height))
          << "model " << model << " seed " << seed;
    }
  }
  for (int32_t model : kTinyModels) g_panelGeometry.erase(model);
}

// Every pure black dot prints with the new rendering; the designed one
// (grey in the image) lets about 40 % of them go.
TEST(HalftoneSolidBlack, PureBlackBesideGreyPrintsSolid) {
  std::vector<uint8_t> rgb = Solid_Badge();
  std::string log;
  std::vector<uint8_t> solid = Solid_Run(true, rgb, &log);
  std::vector<uint8_t> designed = Solid_Run(false, rgb, nullptr);
  ASSERT_EQ(kDots, solid.size());
  ASSERT_EQ(kDots, designed.size());
  EXPECT_EQ(" >>>> Image_HalftoneSolidBlack\n <<<< Image_HalftoneSolidBlack[success]\n", log);
  size_t black = 0, printed = 0;
  Solid_Count(rgb, solid, &black, &printed);
  EXPECT_GT(black, 1000u);
  EXPECT_EQ(black, printed);
  Solid_Count(rgb, designed, &black, &printed);
  EXPECT_LT(printed, black * 7 / 10);
}

// The white gaps between the bars stay white: pure black spreads no error.
TEST(HalftoneSolidBlack, GapsBetweenBarsStayWhite) {
  std::vector<uint8_t> rgb = Solid_Badge();
  std::vector<uint8_t> solid = Solid_Run(true, rgb, nullptr);
  ASSERT_EQ(kDots, solid.size());
  for (uint32_t y = 400; y < 560; ++y)
    for (uint32_t x = 400; x < 1000; ++x)
      ASSERT_EQ((x / 5) % 2 == 0 ? 255 : 0, solid[static_cast<size_t>(y) * kW + x]) << x << "," << y;
}

// Where there is no pure black dot the new rendering is the designed
// diffusion, dot for dot: the photo prints as before.
TEST(HalftoneSolidBlack, WithoutPureBlackItIsTheDesignedDiffusion) {
  for (int32_t model : {1030, 1060}) {
    auto task = Stage_MakeTask(model);
    TPanelGeometry g = Panel_Geometry(task.get());
    std::vector<uint8_t> rgb = Stage_RandomImage(g.width, g.height, 7 + model);
    for (size_t i = 0; i < rgb.size(); i += 3)
      if ((rgb[i] | rgb[i + 1] | rgb[i + 2]) == 0) rgb[i] = 1;
    uint8_t* a = nullptr;
    uint8_t* b = nullptr;
    EXPECT_EQ(0, Image_HalftoneSolidBlack(task.get(), rgb.data(), &a));
    Image_Bilevel(task.get(), rgb.data(), &b, g_floydSteinbergKernel, 127);
    TStageBuffer ha(a), hb(b);
    ASSERT_NE(nullptr, a);
    ASSERT_NE(nullptr, b);
    EXPECT_EQ(0, memcmp(a, b, static_cast<size_t>(g.width) * g.height)) << model;
  }
}

// A pure black-and-white image is mapped dot for dot, as Image_Halftone
// maps it.
TEST(HalftoneSolidBlack, PureImageIsMappedAsDesigned) {
  std::vector<uint8_t> rgb(kDots * 3, 255);
  for (size_t i = 0; i < kDots; i += 3) memset(&rgb[3 * i], 0, 3);
  EXPECT_EQ(Solid_Run(false, rgb, nullptr), Solid_Run(true, rgb, nullptr));
}

TEST(HalftoneSolidBlack, NullArgumentsGive25) {
  auto task = Stage_MakeTask(1030);
  std::vector<uint8_t> rgb(kDots * 3, 255);
  uint8_t* out = nullptr;
  EXPECT_EQ(25, Image_HalftoneSolidBlack(task.get(), rgb.data(), nullptr));
  EXPECT_EQ(25, Image_HalftoneSolidBlack(task.get(), nullptr, &out));
  EXPECT_EQ(nullptr, out);
}
