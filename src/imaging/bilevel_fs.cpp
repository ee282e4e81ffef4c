// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/bilevel_fs.h"

#include <cstddef>

namespace {

// Per level g of a dot: the byte it prints and the four shares of its error
// e (g when it prints, g - 255 when not), each e x weight / 16 truncated
// toward zero, as the kernel divides.
struct TShares {
  int32_t right[256];      // (+1, 0) weight 7
  int32_t downLeft[256];   // (-1, +1) weight 3
  int32_t down[256];       // (0, +1) weight 5
  int32_t downRight[256];  // (+1, +1) weight 1
  uint8_t dot[256];
};

// 'FS_Clamp()' - A working level plus a share, limited to 0 ... 255.
inline int32_t FS_Clamp(int32_t sum) { return sum < 0 ? 0 : (sum > 255 ? 255 : sum); }

}  // namespace

// 'Bilevel_FloydSteinberg()' - row holds the current row's working levels.
// The next row's levels that still wait for shares live in registers: a is
// the dot below-left (its last share comes from this dot), b the dot below.
// Rows 0 ... H - 3 push error right and down; row H - 2 pushes right only,
// since the last row takes none; row H - 1 is thresholded as lightened.
// Within a row the last two dots push nothing right, and nothing reaches
// the last column.
void Bilevel_FloydSteinberg(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                            int32_t threshold, const uint8_t lighten[256]) {
  TShares s;
  for (int32_t g = 0; g < 256; ++g) {
    int32_t e = g < threshold ? g : g - 255;
    s.right[g] = e * 7 / 16;
    s.downLeft[g] = e * 3 / 16;
    s.down[g] = e * 5 / 16;
    s.downRight[g] = e * 1 / 16;
    s.dot[g] = g < threshold ? 255 : 0;
  }
  for (int32_t x = 0; x < W; ++x) row[x] = lighten[rgb[3 * x]];

  for (int32_t y = 0; y + 2 < H; ++y) {
    const uint8_t* next = rgb + static_cast<size_t>(3) * W * (y + 1);
    uint8_t* o = mono + static_cast<size_t>(W) * y;
    int32_t c = row[0];
    o[0] = s.dot[c];
    int32_t a = FS_Clamp(lighten[next[0]] + s.down[c]);
    int32_t b = FS_Clamp(lighten[next[3]] + s.downRight[c]);
    c = FS_Clamp(row[1] + s.right[c]);
    for (int32_t x = 1; x < W - 2; ++x) {
      o[x] = s.dot[c];
      row[x - 1] = static_cast<uint8_t>(FS_Clamp(a + s.downLeft[c]));
      a = FS_Clamp(b + s.down[c]);
      b = FS_Clamp(lighten[next[3 * (x + 1)]] + s.downRight[c]);
      c = FS_Clamp(row[x + 1] + s.right[c]);
    }
    // x = W - 2: no share to the right or below-right (the last column).
    o[W - 2] = s.dot[c];
    row[W - 3] = static_cast<uint8_t>(FS_Clamp(a + s.downLeft[c]));
    a = FS_Clamp(b + s.down[c]);
    // x = W - 1: only the share below-left.
    c = row[W - 1];
    o[W - 1] = s.dot[c];
    row[W - 2] = static_cast<uint8_t>(FS_Clamp(a + s.downLeft[c]));
    row[W - 1] = lighten[next[3 * (W - 1)]];
  }

  // Row H - 2: shares to the right only.
  uint8_t* o = mono + static_cast<size_t>(W) * (H - 2);
  int32_t c = row[0];
  for (int32_t x = 0; x < W - 2; ++x) {
    o[x] = s.dot[c];
    c = FS_Clamp(row[x + 1] + s.right[c]);
  }
  o[W - 2] = s.dot[c];
  o[W - 1] = s.dot[row[W - 1]];

  // Row H - 1: no shares at all.
  const uint8_t* last = rgb + static_cast<size_t>(3) * W * (H - 1);
  o = mono + static_cast<size_t>(W) * (H - 1);
  for (int32_t x = 0; x < W; ++x) o[x] = s.dot[lighten[last[3 * x]]];
}
