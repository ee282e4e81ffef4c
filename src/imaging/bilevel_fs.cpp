// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/bilevel_fs.h"

#include <cstddef>

namespace {

// A dot's working level before its clamp: a level 0 ... 255 plus one share
// of a neighbour's error, at most 7 x 255 / 16 = 111 either way.  The
// tables below are indexed by that sum, so that the clamp of the dot's own
// level costs nothing on the dependency from one dot to the next.
constexpr int32_t kSumLow = -128, kSumHigh = 383;
constexpr int32_t kSums = kSumHigh - kSumLow + 1;

// Per unclamped sum s (level g = s clamped to 0 ... 255): the byte the dot
// prints and the four shares of its error e (g when it prints, g - 255 when
// not), each e x weight / 16 truncated toward zero, as the kernel divides.
struct TShares {
  int32_t right[kSums];      // (+1, 0) weight 7
  int32_t downLeft[kSums];   // (-1, +1) weight 3
  int32_t down[kSums];       // (0, +1) weight 5
  int32_t downRight[kSums];  // (+1, +1) weight 1
  uint8_t dot[kSums];
};

// 'FS_Clamp()' - A working level plus a share, limited to 0 ... 255.
inline int32_t FS_Clamp(int32_t sum) { return sum < 0 ? 0 : (sum > 255 ? 255 : sum); }

}  // namespace

// 'Bilevel_FloydSteinberg()' - row holds the current row's working levels;
// c is the current dot's level as an unclamped sum.
// The next row's levels that still wait for shares live in registers: a is
// the dot below-left (its last share comes from this dot), b the dot below.
// Rows 0 ... H - 3 push error right and down; row H - 2 pushes right only,
// since the last row takes none; row H - 1 is thresholded as lightened.
// Within a row the last two dots push nothing right, and nothing reaches
// the last column.
void Bilevel_FloydSteinberg(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                            int32_t threshold, const uint8_t lighten[256]) {
  TShares t;
  for (int32_t i = 0; i < kSums; ++i) {
    int32_t g = FS_Clamp(i + kSumLow);
    int32_t e = g < threshold ? g : g - 255;
    t.right[i] = e * 7 / 16;
    t.downLeft[i] = e * 3 / 16;
    t.down[i] = e * 5 / 16;
    t.downRight[i] = e * 1 / 16;
    t.dot[i] = g < threshold ? 255 : 0;
  }
  // Views indexed by the sum itself.
  const int32_t* right = t.right - kSumLow;
  const int32_t* downLeft = t.downLeft - kSumLow;
  const int32_t* down = t.down - kSumLow;
  const int32_t* downRight = t.downRight - kSumLow;
  const uint8_t* dot = t.dot - kSumLow;
  for (int32_t x = 0; x < W; ++x) row[x] = lighten[rgb[3 * x]];

  for (int32_t y = 0; y + 2 < H; ++y) {
    const uint8_t* next = rgb + static_cast<size_t>(3) * W * (y + 1);
    uint8_t* o = mono + static_cast<size_t>(W) * y;
    int32_t c = row[0];
    o[0] = dot[c];
    int32_t a = FS_Clamp(lighten[next[0]] + down[c]);
    int32_t b = FS_Clamp(lighten[next[3]] + downRight[c]);
    c = row[1] + right[c];
    for (int32_t x = 1; x < W - 2; ++x) {
      o[x] = dot[c];
      row[x - 1] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
      a = FS_Clamp(b + down[c]);
      b = FS_Clamp(lighten[next[3 * (x + 1)]] + downRight[c]);
      c = row[x + 1] + right[c];
    }
    // x = W - 2: no share to the right or below-right (the last column).
    o[W - 2] = dot[c];
    row[W - 3] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
    a = FS_Clamp(b + down[c]);
    // x = W - 1: only the share below-left.
    c = row[W - 1];
    o[W - 1] = dot[c];
    row[W - 2] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
    row[W - 1] = lighten[next[3 * (W - 1)]];
  }

  // Row H - 2: shares to the right only.
  uint8_t* o = mono + static_cast<size_t>(W) * (H - 2);
  int32_t c = row[0];
  for (int32_t x = 0; x < W - 2; ++x) {
    o[x] = dot[c];
    c = row[x + 1] + right[c];
  }
  o[W - 2] = dot[c];
  o[W - 1] = dot[row[W - 1]];

  // Row H - 1: no shares at all.
  const uint8_t* last = rgb + static_cast<size_t>(3) * W * (H - 1);
  o = mono + static_cast<size_t>(W) * (H - 1);
  for (int32_t x = 0; x < W; ++x) o[x] = dot[lighten[last[3 * x]]];
}
