// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/bilevel_fs.h"

#include <cstddef>

namespace {

// A dot's working level before its clamp: a level 0 ... 255 plus one share
// of a neighbour's error, at most 7 x 255 / 16 = 111 either way.  The
// tables below are indexed by that sum, so that the clamp of the dot's own
// level costs nothing on the dependency from one dot to the next.  A kept
// dot (a pure black dot of the "SolidBlack" rendering) has kKeptOffset
// added to its sum, which lands in a second range whose entries print and
// push nothing: a share of 0 leaves its target as it is.
constexpr int32_t kSumLow = -128, kSumHigh = 383;
constexpr int32_t kKeptOffset = 512;
constexpr int32_t kSums = kKeptOffset + kSumHigh - kSumLow + 1;

// Per sum s (level g = s clamped to 0 ... 255): the byte the dot prints
// and the four shares of its error e (g when it prints, g - 255 when not),
// each e x weight / 16 truncated toward zero, as the kernel divides.
// Shares fit in a signed byte, so the tables take 5 KB of cache.
struct TShares {
  int8_t right[kSums];      // (+1, 0) weight 7
  int8_t downLeft[kSums];   // (-1, +1) weight 3
  int8_t down[kSums];       // (0, +1) weight 5
  int8_t downRight[kSums];  // (+1, +1) weight 1
  uint8_t dot[kSums];
};

// 'FS_Clamp()' - A working level plus a share, limited to 0 ... 255.
inline int32_t FS_Clamp(int32_t sum) { return sum < 0 ? 0 : (sum > 255 ? 255 : sum); }

// 'FS_Fill()' - The tables for threshold.
void FS_Fill(TShares* t, int32_t threshold) {
  for (int32_t i = 0; i < kSums; ++i) {
    int32_t s = i + kSumLow;
    bool kept = s > kSumHigh;
    int32_t g = FS_Clamp(s);
    int32_t e = kept ? 0 : (g < threshold ? g : g - 255);
    t->right[i] = static_cast<int8_t>(e * 7 / 16);
    t->downLeft[i] = static_cast<int8_t>(e * 3 / 16);
    t->down[i] = static_cast<int8_t>(e * 5 / 16);
    t->downRight[i] = static_cast<int8_t>(e * 1 / 16);
    t->dot[i] = kept || g < threshold ? 255 : 0;
  }
}

// 'FS_Kept()' - kKeptOffset where the mask byte is 255, else 0 (always 0
// without a mask).
template <bool kKeep>
inline int32_t FS_Kept(const uint8_t* keep, size_t i) {
  return kKeep ? (keep[i] & 0x80) << 2 : 0;
}

// 'FS_Diffuse()' - The loop of Bilevel_FloydSteinberg, with or without a
// mask.  row holds the current row's working levels; c is the current
// dot's level as an unclamped sum (plus kKeptOffset for a kept dot).  The
// next row's levels that still wait for shares live in registers: a is the
// dot below-left (its last share comes from this dot), b the dot below.
// Rows 0 ... H - 3 push error right and down; row H - 2 pushes right only,
// since the last row takes none; row H - 1 is thresholded as lightened.
// Within a row the last two dots push nothing right, and nothing reaches
// the last column.  Each mask byte is read before the panel byte at the
// same place is written, so keep may be mono.
template <bool kKeep>
void FS_Diffuse(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                const TShares& t, const uint8_t lighten[256], const uint8_t* keep) {
  // Views indexed by the sum itself.
  const int8_t* right = t.right - kSumLow;
  const int8_t* downLeft = t.downLeft - kSumLow;
  const int8_t* down = t.down - kSumLow;
  const int8_t* downRight = t.downRight - kSumLow;
  const uint8_t* dot = t.dot - kSumLow;
  for (int32_t x = 0; x < W; ++x) row[x] = lighten[rgb[3 * x]];

  for (int32_t y = 0; y + 2 < H; ++y) {
    const uint8_t* next = rgb + static_cast<size_t>(3) * W * (y + 1);
    uint8_t* o = mono + static_cast<size_t>(W) * y;
    const uint8_t* k = kKeep ? keep + static_cast<size_t>(W) * y : nullptr;
    int32_t c = row[0] + FS_Kept<kKeep>(k, 0);
    int32_t level = row[1] + FS_Kept<kKeep>(k, 1);
    o[0] = dot[c];
    int32_t a = FS_Clamp(lighten[next[0]] + down[c]);
    int32_t b = FS_Clamp(lighten[next[3]] + downRight[c]);
    c = level + right[c];
    for (int32_t x = 1; x < W - 2; ++x) {
      level = row[x + 1] + FS_Kept<kKeep>(k, x + 1);
      o[x] = dot[c];
      row[x - 1] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
      a = FS_Clamp(b + down[c]);
      b = FS_Clamp(lighten[next[3 * (x + 1)]] + downRight[c]);
      c = level + right[c];
    }
    // x = W - 2: no share to the right or below-right (the last column).
    level = row[W - 1] + FS_Kept<kKeep>(k, W - 1);
    o[W - 2] = dot[c];
    row[W - 3] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
    a = FS_Clamp(b + down[c]);
    // x = W - 1: only the share below-left.
    c = level;
    o[W - 1] = dot[c];
    row[W - 2] = static_cast<uint8_t>(FS_Clamp(a + downLeft[c]));
    row[W - 1] = lighten[next[3 * (W - 1)]];
  }

  // Row H - 2: shares to the right only.
  uint8_t* o = mono + static_cast<size_t>(W) * (H - 2);
  const uint8_t* k = kKeep ? keep + static_cast<size_t>(W) * (H - 2) : nullptr;
  int32_t c = row[0] + FS_Kept<kKeep>(k, 0);
  for (int32_t x = 0; x < W - 2; ++x) {
    int32_t level = row[x + 1] + FS_Kept<kKeep>(k, x + 1);
    o[x] = dot[c];
    c = level + right[c];
  }
  int32_t level = row[W - 1] + FS_Kept<kKeep>(k, W - 1);
  o[W - 2] = dot[c];
  o[W - 1] = dot[level];

  // Row H - 1: no shares at all.
  const uint8_t* last = rgb + static_cast<size_t>(3) * W * (H - 1);
  o = mono + static_cast<size_t>(W) * (H - 1);
  k = kKeep ? keep + static_cast<size_t>(W) * (H - 1) : nullptr;
  for (int32_t x = 0; x < W; ++x) o[x] = dot[lighten[last[3 * x]] + FS_Kept<kKeep>(k, x)];
}

}  // namespace

void Bilevel_FloydSteinberg(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                            int32_t threshold, const uint8_t lighten[256], const uint8_t* keep) {
  TShares t;
  FS_Fill(&t, threshold);
  if (keep)
    FS_Diffuse<true>(rgb, mono, row, W, H, t, lighten, keep);
  else
    FS_Diffuse<false>(rgb, mono, row, W, H, t, lighten, nullptr);
}
