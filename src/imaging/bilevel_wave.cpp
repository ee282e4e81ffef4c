// Floyd-Steinberg error diffusion over bands of rows at once, with AVX2.
// Copyright 2026 The rastertobrellian authors.
//
// Each dot's level depends on the dot before it (the share to the right),
// a chain of one table load and one add per dot, which one row cannot
// shorten.  A row's dot x, though, needs of the row above only its dots up
// to x + 1, so eight rows can run at once, each two blocks behind the one
// above (a wavefront), and their eight chains overlap.  Per row and block:
//   1. the chain: sum[x] = base[x] + right share of sum[x - 1], where base
//      is the dot's level with every share from the row above in it (plus
//      kKeptOffset for a kept dot), in plain code, eight rows interleaved;
//   2. sixteen dots at a time: the printed byte and the error of each sum,
//      its three shares into the row below (e x w / 16 truncated toward
//      zero, as the kernel divides), and then the row below's base: its
//      lightened level plus the shares from below-left, below and
//      below-right in that order, clamped to 0 ... 255 after each, as the
//      single-row loop adds them.
// The arithmetic is that of Bilevel_FloydSteinberg, operation for
// operation; only the order in which independent dots are computed
// differs, so the bytes are the same.
#include <cstdlib>
#include <cstring>

#include "imaging/bilevel_fs.h"
#include "imaging/bilevel_tables.h"

#if defined(__x86_64__) || defined(__i386__)
#include "imaging/bilevel_wave_steps.h"

namespace {

constexpr int32_t kBlock = kWaveBlock;
constexpr int32_t kBand = 8;     // rows at once
constexpr int32_t kLag = 2;      // blocks each row runs behind the one above
constexpr int32_t kPad = 32;     // entries before and after each array
constexpr int32_t kMaxWidth = 4096;
constexpr int32_t kSpan = kMaxWidth + 2 * kPad;
// From a row's block to the next row's block of the same step.
constexpr int32_t kStep = 2 * kSpan - kLag * kBlock;

// Working arrays of one call, zero where nothing is written (so that the
// share from before the first dot is 0).  For row r of a band (and the
// row after the band) its base and then its sums, kSpan entries each, at
// fixed distances, so that the chains of all rows are addressed from one
// pointer.  Per row of the band its three shares.
struct TWave {
  int16_t* rows = nullptr;
  int16_t* q1[kBand];
  int16_t* q5[kBand];
  int16_t* q3[kBand];
  int16_t* base(int32_t r) const { return rows + 2 * r * kSpan + kPad; }
  int16_t* sum(int32_t r) const { return rows + (2 * r + 1) * kSpan + kPad; }
};

// 'Wave_Chains()' - Step 1 for N rows at once over one block: p is the
// first row's block of bases (each further row kStep entries on, its sums
// kSpan entries after its bases), c[n] the sum of the dot before the block
// in row n, updated to the block's last.  The sums are added in 64 bits,
// so that nothing but a load and an add lies between two dots of a row.
template <int N>
inline void Wave_Chains(int16_t* p, intptr_t* c, const int8_t* right) {
  intptr_t v[N];
  for (int n = 0; n < N; ++n) v[n] = c[n];
  for (int32_t i = 0; i < kBlock; ++i) {
    for (int n = 0; n < N; ++n) {
      v[n] = static_cast<intptr_t>(p[n * kStep + i]) + static_cast<intptr_t>(right[v[n]]);
      p[n * kStep + kSpan + i] = static_cast<int16_t>(v[n]);
    }
  }
  for (int n = 0; n < N; ++n) c[n] = v[n];
}

// 'Wave_Kept()' - kKeptOffset where the mask byte at keep[i] is 255 (keep
// not null), else 0.
inline int32_t Wave_Kept(const uint8_t* keep, size_t i) { return keep ? (keep[i] & 0x80) << 2 : 0; }

// 'Wave_Band()' - Rows y0 ... y0 + K - 1 (all of them rows that push error
// down), each kLag blocks behind the one above.  At each step a row takes
// the chain of its block j, the shares of block j and the row below's base
// of block j - 1, which needs the shares of block j's first dot.
__attribute__((target("avx2"))) void Wave_Band(const TWave& w, const TShares& t, const uint8_t* rgb,
                                                uint8_t* mono, int32_t W, int32_t y0, int32_t K,
                                                int32_t threshold, const uint8_t lighten[256],
                                                const uint8_t* keep) {
  const int8_t* right = t.right - kSumLow;
  const int32_t blocks = (W + kBlock - 1) / kBlock;
  intptr_t chain[kBand];
  for (int32_t r = 0; r < K; ++r) chain[r] = kKeptOffset;  // before the first dot: no share
  for (int32_t step = 0; step <= blocks + kLag * (K - 1); ++step) {
    // The rows whose block is in the row, a run first ... first + n - 1.
    int32_t first = -1, n = 0;
    for (int32_t r = 0; r < K; ++r) {
      int32_t j = step - kLag * r;
      if (j < 0 || j >= blocks) continue;
      if (first < 0) first = r;
      ++n;
    }
    if (n > 0) {
      int16_t* p = w.base(first) + (step - kLag * first) * kBlock;
      intptr_t* c = chain + first;
      switch (n) {
        case 1: Wave_Chains<1>(p, c, right); break;
        case 2: Wave_Chains<2>(p, c, right); break;
        case 3: Wave_Chains<3>(p, c, right); break;
        case 4: Wave_Chains<4>(p, c, right); break;
        case 5: Wave_Chains<5>(p, c, right); break;
        case 6: Wave_Chains<6>(p, c, right); break;
        case 7: Wave_Chains<7>(p, c, right); break;
        default: Wave_Chains<8>(p, c, right); break;
      }
    }
    for (int32_t r = 0; r < K; ++r) {
      int32_t j = step - kLag * r, y = y0 + r;
      if (j < 0 || j > blocks) continue;
      if (j < blocks) {
        int32_t x = j * kBlock;
        // The last dot takes no share from the left.
        if (j == blocks - 1) w.sum(r)[W - 1] = w.base(r)[W - 1];
        Wave_Shares(w.sum(r) + x, w.q1[r] + kPad + x, w.q5[r] + kPad + x, w.q3[r] + kPad + x,
                    mono + static_cast<size_t>(y) * W + x, W - x, threshold);
      }
      if (j >= 1) {
        int32_t x = (j - 1) * kBlock;
        size_t at = static_cast<size_t>(y + 1) * W + x;
        int16_t* below = w.base(r + 1);
        Wave_Below(rgb + 3 * at, keep ? keep + at : nullptr, w.q1[r] + kPad + x, w.q5[r] + kPad + x,
                   w.q3[r] + kPad + x, below + x, W - x, lighten);
        // The last column takes no share from the row above.
        if (j == blocks) {
          size_t end = static_cast<size_t>(y + 1) * W + (W - 1);
          below[W - 1] = static_cast<int16_t>(lighten[rgb[3 * end]] + Wave_Kept(keep, end));
        }
      }
    }
  }
}

}  // namespace

bool Bilevel_FloydSteinbergWave(const uint8_t* rgb, uint8_t* mono, int32_t W, int32_t H,
                                int32_t threshold, const uint8_t lighten[256], const uint8_t* keep) {
  if (W > kMaxWidth) return false;
  const int32_t blocks = (W + kBlock - 1) / kBlock;
  const size_t rows = 2 * static_cast<size_t>(kBand + 1) * kSpan;
  const size_t span = static_cast<size_t>(blocks) * kBlock + 2 * kPad;
  int16_t* all = static_cast<int16_t*>(calloc(rows + 3 * kBand * span, sizeof(int16_t)));
  if (!all) return false;
  TWave w;
  w.rows = all;
  for (int32_t r = 0; r < kBand; ++r) {
    w.q1[r] = all + rows + (3 * r) * span;
    w.q5[r] = all + rows + (3 * r + 1) * span;
    w.q3[r] = all + rows + (3 * r + 2) * span;
  }
  TShares t;
  FS_Fill(&t, threshold);
  for (int32_t x = 0; x < W; ++x)
    w.base(0)[x] = static_cast<int16_t>(lighten[rgb[3 * x]] + Wave_Kept(keep, x));
  int32_t K = 0;
  for (int32_t y0 = 0; y0 < H - 2; y0 += kBand) {
    // The base the last band left for the row after it is this band's first.
    if (y0 > 0) memcpy(w.base(0), w.base(kBand), sizeof(int16_t) * static_cast<size_t>(blocks) * kBlock);
    K = H - 2 - y0 < kBand ? H - 2 - y0 : kBand;
    Wave_Band(w, t, rgb, mono, W, y0, K, threshold, lighten, keep);
  }

  // Row H - 2, whose base the last band made: shares to the right only.
  // Row H - 1: none.
  const int8_t* right = t.right - kSumLow;
  const uint8_t* dot = t.dot - kSumLow;
  const int16_t* base = w.base(K);
  uint8_t* o = mono + static_cast<size_t>(W) * (H - 2);
  int32_t c = base[0];
  for (int32_t x = 0; x < W - 2; ++x) {
    o[x] = dot[c];
    c = base[x + 1] + right[c];
  }
  o[W - 2] = dot[c];
  o[W - 1] = dot[base[W - 1]];
  const size_t last = static_cast<size_t>(W) * (H - 1);
  for (int32_t x = 0; x < W; ++x)
    mono[last + x] = dot[lighten[rgb[3 * (last + x)]] + Wave_Kept(keep, last + x)];
  free(all);
  return true;
}

#else
bool Bilevel_FloydSteinbergWave(const uint8_t*, uint8_t*, int32_t, int32_t, int32_t, const uint8_t*,
                                const uint8_t*) {
  return false;
}
#endif
