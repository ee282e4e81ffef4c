// A photo badge through the built filter: its Code 128 bar code, read back
// with zbarimg from the black panel, in each black rendering and in
// "Colour + Resin Black" with the shipped PPD's defaults.  Prints the
// figures the user guide quotes.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "lib/png_io.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

constexpr uint32_t kW = 2072, kH = 1328;              // the 1060's panel at 600 dpi
constexpr uint32_t kPhotoX = 80, kPhotoY = 240, kPhotoW = 600, kPhotoH = 800;
constexpr uint32_t kCodeX = 800, kCodeY = 820;
const char* const kNumber = "EMP-004711";

// 'Badge_Program()' - Full path of a program on $PATH (or /usr/bin).
std::string Badge_Program(const std::string& name) {
  const char* env = getenv("PATH");
  std::istringstream in(std::string(env ? env : "") + ":/usr/bin:/bin");
  std::string dir;
  while (std::getline(in, dir, ':')) {
    std::string candidate = dir + "/" + name;
    if (!dir.empty() && access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return name;
}

std::string Badge_Dir() { return std::string(BRELLIAN_BINARY_DIR) + "/test-black-mode"; }

// The badge: a colour band, a photo-like area (smooth shading and noise,
// never pure black), lines of black "text" and the bar code, as a page and
// as the box the bar code takes.
struct TBadge {
  TRasterPage page;
  uint32_t codeW = 0, codeH = 0;
};

// 'Badge_Make()' - Build the badge; the bar code comes from zint.
bool Badge_Make(TBadge* badge) {
  std::string png = Badge_Dir() + "/code128.png";
  TProcessResult zint = Test_RunProcess({Badge_Program("zint"), "-b", "20", "--scale=2", "--height=50", "--notext", "-d", kNumber,
                                         "-o", png});
  EXPECT_EQ(0, zint.status) << zint.err;
  TPngImage code;
  std::string error;
  if (zint.status != 0 || !Png_ReadRGB(png, &code, &error)) return false;
  badge->page = Raster_MakeRGBPage(kW, kH, 600, 255, 255, 255);
  TRasterPage* page = &badge->page;
  Raster_FillRect(page, 0, 0, kW, 160, 30, 80, 200);
  uint32_t seed = 12345;
  for (uint32_t y = 0; y < kPhotoH; ++y) {
    for (uint32_t x = 0; x < kPhotoW; ++x) {
      seed = seed * 1103515245u + 12345u;
      int noise = static_cast<int>((seed >> 16) % 41) - 20;
      int level = 40 + static_cast<int>((x + y) * 180 / (kPhotoW + kPhotoH)) + noise;
      auto clip = [](int v) { return static_cast<uint8_t>(v < 20 ? 20 : v > 250 ? 250 : v); };
      Raster_SetPixel(page, kPhotoX + x, kPhotoY + y, clip(level + 30), clip(level), clip(level - 20));
    }
  }
  for (uint32_t line = 0; line < 3; ++line)
    for (uint32_t letter = 0; letter < 40; ++letter)
      Raster_FillRect(page, 800 + letter * 28, 300 + line * 120, 18, 60, 0, 0, 0);
  badge->codeW = code.width;
  badge->codeH = code.height;
  for (uint32_t y = 0; y < code.height; ++y)
    for (uint32_t x = 0; x < code.width; ++x) {
      const uint8_t* p = &code.pixels[(static_cast<size_t>(y) * code.width + x) * 3];
      uint8_t v = p[0] < 128 ? 0 : 255;
      Raster_SetPixel(page, kCodeX + x, kCodeY + y, v, v, v);
    }
  return true;
}

// What one run gives: the black panel, what zbarimg reads from it, and the
// count of black panels.
struct TBadgeRun {
  std::vector<uint8_t> k;
  std::string decoded;
  size_t blackPanels = 0;
  size_t pages = 0;
};

// 'Badge_Run()' - Print the badge on the 1060's PPD with options; decode
// the first black panel with zbarimg.
TBadgeRun Badge_Run(const TBadge& badge, const std::string& options, const std::string& name) {
  TBadgeRun run;
  std::string raster = Badge_Dir() + "/badge.ras";
  EXPECT_TRUE(Raster_WriteFile({badge.page}, false, raster));
  TProcessOptions env;
  env.env["PPD"] = Test_GeneratedPPD(1060);
  env.env["DEVICE_URI"] = "usbbr://Brellian/BR-1060?serial=badge";
  env.env["PRINTER"] = "badge";
  TProcessResult p = Test_RunFilter({"5", "user", "badge", "1", options, raster}, env);
  EXPECT_EQ(0, p.status) << p.err;
  TStreamCheck check;
  Stream_Read(p.out, &check);
  EXPECT_TRUE(check.complete) << options;
  for (const TStreamPanel& panel : check.panels) {
    if (panel.panelType != 1) continue;
    if (run.blackPanels++ == 0) run.k = panel.pixels;
  }
  if (run.k.size() != static_cast<size_t>(kW) * kH) return run;
  std::vector<uint8_t> gray(run.k.size());
  for (size_t i = 0; i < gray.size(); ++i) gray[i] = static_cast<uint8_t>(255 - run.k[i]);
  std::string png = Badge_Dir() + "/" + name + "-k.png";
  EXPECT_TRUE(Png_WriteGray(png, kW, kH, gray.data()));
  TProcessResult z = Test_RunProcess({Badge_Program("zbarimg"), "--raw", "-q", png});
  run.decoded = z.out;
  while (!run.decoded.empty() && run.decoded.back() == '\n') run.decoded.pop_back();
  return run;
}

// 'Badge_Share()' - Printed share (per mille) of the box's dots, counting
// only dots whose page dot is pure black when blackOnly is set.
long Badge_Share(const TBadge& badge, const std::vector<uint8_t>& k, uint32_t x0, uint32_t y0, uint32_t w,
                 uint32_t h, bool blackOnly) {
  size_t dots = 0, printed = 0;
  for (uint32_t y = y0; y < y0 + h; ++y)
    for (uint32_t x = x0; x < x0 + w; ++x) {
      size_t i = static_cast<size_t>(y) * kW + x;
      const uint8_t* p = &badge.page.data[i * 3];
      if (blackOnly && (p[0] | p[1] | p[2]) != 0) continue;
      ++dots;
      printed += k[i] == 255;
    }
  return dots ? static_cast<long>(printed * 1000 / dots) : -1;
}

}  // namespace

// Monochrome: the designed rendering diffuses the bar code with the photo
// and zbarimg reads nothing; "SolidBlack" keeps its bars whole and it
// reads, while the photo stays halftoned, dot for dot as designed.
TEST(BlackModeBadge, BarCodeBesidePhotoDecodesWithSolidBlackOnly) {
  Test_MakeDirs(Badge_Dir());
  TBadge badge;
  ASSERT_TRUE(Badge_Make(&badge));
  TBadgeRun diffuse = Badge_Run(badge, "frontRibbon=Monochrome frontBlackMode=Diffuse", "mono-diffuse");
  TBadgeRun solid = Badge_Run(badge, "frontRibbon=Monochrome frontBlackMode=SolidBlack", "mono-solid");
  TBadgeRun shipped = Badge_Run(badge, "frontRibbon=Monochrome", "mono-default");
  ASSERT_EQ(static_cast<size_t>(kW) * kH, diffuse.k.size());
  ASSERT_EQ(static_cast<size_t>(kW) * kH, solid.k.size());
  EXPECT_EQ(solid.k, shipped.k) << "the shipped PPD renders SolidBlack";
  EXPECT_EQ(std::string(kNumber), solid.decoded);
  EXPECT_EQ("", diffuse.decoded);

  long codeDiffuse = Badge_Share(badge, diffuse.k, kCodeX, kCodeY, badge.codeW, badge.codeH, true);
  long codeSolid = Badge_Share(badge, solid.k, kCodeX, kCodeY, badge.codeW, badge.codeH, true);
  long photoDiffuse = Badge_Share(badge, diffuse.k, kPhotoX, kPhotoY, kPhotoW, kPhotoH, false);
  long photoSolid = Badge_Share(badge, solid.k, kPhotoX, kPhotoY, kPhotoW, kPhotoH, false);
  size_t same = 0;
  for (uint32_t y = kPhotoY; y < kPhotoY + kPhotoH; ++y)
    for (uint32_t x = kPhotoX; x < kPhotoX + kPhotoW; ++x)
      same += diffuse.k[static_cast<size_t>(y) * kW + x] == solid.k[static_cast<size_t>(y) * kW + x];
  printf("black rendering | bar-code black dots printed | photo dots printed | zbarimg\n");
  printf("Diffuse         | %ld.%ld %%                     | %ld.%ld %%            | \"%s\"\n", codeDiffuse / 10,
         codeDiffuse % 10, photoDiffuse / 10, photoDiffuse % 10, diffuse.decoded.c_str());
  printf("SolidBlack      | %ld.%ld %%                    | %ld.%ld %%            | \"%s\"\n", codeSolid / 10,
         codeSolid % 10, photoSolid / 10, photoSolid % 10, solid.decoded.c_str());
  printf("photo dots the same in both: %zu of %u\n", same, kPhotoW * kPhotoH);
  EXPECT_EQ(1000, codeSolid);
  EXPECT_LT(codeDiffuse, 700);
  // The diffusion carries error from the black dots into the white beside
  // them in the designed rendering; far from them the photo is the same.
  EXPECT_GE(same * 1000, static_cast<size_t>(kPhotoW) * kPhotoH * 999);
  EXPECT_GT(photoSolid, 100);
  EXPECT_LT(photoSolid, 900);
}

// "Colour + Resin Black" with nothing else asked: one page makes the card,
// and the resin panel carries the badge's pure black, bar code included.
TEST(BlackModeBadge, ColourAndResinDefaultsPrintTheBarCodeInResin) {
  Test_MakeDirs(Badge_Dir());
  TBadge badge;
  ASSERT_TRUE(Badge_Make(&badge));
  TBadgeRun colourK = Badge_Run(badge, "frontRibbon=ColorK", "colork-default");
  EXPECT_EQ(1u, colourK.blackPanels);
  ASSERT_EQ(static_cast<size_t>(kW) * kH, colourK.k.size());
  EXPECT_EQ(std::string(kNumber), colourK.decoded);
  EXPECT_EQ(1000, Badge_Share(badge, colourK.k, kCodeX, kCodeY, badge.codeW, badge.codeH, true));
  // Only pure black takes resin: the photo and the colour band take none.
  EXPECT_EQ(0, Badge_Share(badge, colourK.k, kPhotoX, kPhotoY, kPhotoW, kPhotoH, false));
  EXPECT_EQ(0, Badge_Share(badge, colourK.k, 0, 0, kW, 160, false));
}

// A front/back duplex card in "Colour + Resin Black" with the shipped
// defaults: each page is one side, and each side's resin panel carries that
// side's own pure black (the back design is not printed in resin over the
// front).
TEST(BlackModeBadge, DuplexColourAndResinPrintsEachSideWithItsOwnBlack) {
  Test_MakeDirs(Badge_Dir());
  TBadge badge;
  ASSERT_TRUE(Badge_Make(&badge));
  TRasterPage front = badge.page;
  TRasterPage back = Raster_MakeRGBPage(kW, kH, 600, 240, 230, 200);
  Raster_FillRect(&back, 300, 500, 900, 120, 0, 0, 0);
  front.header.Duplex = CUPS_TRUE;
  back.header.Duplex = CUPS_TRUE;
  std::string raster = Badge_Dir() + "/duplex.ras";
  ASSERT_TRUE(Raster_WriteFile({front, back}, false, raster));
  TProcessOptions env;
  env.env["PPD"] = Test_GeneratedPPD(1060);
  env.env["DEVICE_URI"] = "usbbr://Brellian/BR-1060?serial=badge";
  TProcessResult p = Test_RunFilter({"6", "user", "duplex", "1", "frontRibbon=ColorK backRibbon=ColorK", raster}, env);
  ASSERT_EQ(0, p.status) << p.err;
  TStreamCheck check;
  Stream_Read(p.out, &check);
  EXPECT_TRUE(check.complete);
  ASSERT_EQ(4u, check.panels.size());
  const uint32_t expected[4][2] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(expected[i][0], static_cast<uint32_t>(check.panels[i].side)) << i;
    EXPECT_EQ(expected[i][1], check.panels[i].panelType) << i;
  }
  const std::vector<uint8_t>& backK = check.panels[3].pixels;
  ASSERT_EQ(static_cast<size_t>(kW) * kH, backK.size());
  for (size_t i = 0; i < backK.size(); ++i) {
    const uint8_t* d = &back.data[i * 3];
    ASSERT_EQ((d[0] | d[1] | d[2]) == 0 ? 255 : 0, backK[i]) << i;
  }
  EXPECT_EQ(1000, Badge_Share(badge, check.panels[1].pixels, kCodeX, kCodeY, badge.codeW, badge.codeH, true));
}
