// The share tables of the Floyd-Steinberg diffusion, shared by its ways.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

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
  uint8_t clamp[kSumHigh - kSumLow + 1];  // a level plus a share, limited to 0 ... 255
};

// 'FS_Clamp()' - A working level plus a share, limited to 0 ... 255.
inline int32_t FS_Clamp(int32_t sum) { return sum < 0 ? 0 : (sum > 255 ? 255 : sum); }

// 'FS_Fill()' - The tables for threshold.
inline void FS_Fill(TShares* t, int32_t threshold) {
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
    if (!kept) t->clamp[i] = static_cast<uint8_t>(g);
  }
}

