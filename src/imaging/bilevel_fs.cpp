// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/bilevel_fs.h"

#include <cstddef>

#include "imaging/bilevel_tables.h"

namespace {

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
  // A table, not compares: one load in place of two compares and moves.
  const uint8_t* clamp = t.clamp - kSumLow;
  for (int32_t x = 0; x < W; ++x) row[x] = lighten[rgb[3 * x]];

  for (int32_t y = 0; y + 2 < H; ++y) {
    const uint8_t* next = rgb + static_cast<size_t>(3) * W * (y + 1);
    uint8_t* o = mono + static_cast<size_t>(W) * y;
    const uint8_t* k = kKeep ? keep + static_cast<size_t>(W) * y : nullptr;
    int32_t c = row[0] + FS_Kept<kKeep>(k, 0);
    int32_t level = row[1] + FS_Kept<kKeep>(k, 1);
    o[0] = dot[c];
    int32_t a = clamp[lighten[next[0]] + down[c]];
    int32_t b = clamp[lighten[next[3]] + downRight[c]];
    c = level + right[c];
    for (int32_t x = 1; x < W - 2; ++x) {
      level = row[x + 1] + FS_Kept<kKeep>(k, x + 1);
      o[x] = dot[c];
      row[x - 1] = clamp[a + downLeft[c]];
      a = clamp[b + down[c]];
      b = clamp[lighten[next[3 * (x + 1)]] + downRight[c]];
      c = level + right[c];
    }
    // x = W - 2: no share to the right or below-right (the last column).
    level = row[W - 1] + FS_Kept<kKeep>(k, W - 1);
    o[W - 2] = dot[c];
    row[W - 3] = clamp[a + downLeft[c]];
    a = clamp[b + down[c]];
    // x = W - 1: only the share below-left.
    c = level;
    o[W - 1] = dot[c];
    row[W - 2] = clamp[a + downLeft[c]];
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
