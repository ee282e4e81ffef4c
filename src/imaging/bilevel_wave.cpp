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
#include <immintrin.h>

namespace {

constexpr int32_t kBlock = 32;   // dots per block: two registers of sixteen
constexpr int32_t kBand = 8;     // rows at once
constexpr int32_t kLag = 2;      // blocks each row runs behind the one above
constexpr int32_t kPad = 32;     // entries before and after each array
constexpr int32_t kMaxWidth = 4096;
constexpr int32_t kPrefetchDots = 4 * kBlock;  // how far ahead the row below is asked for
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

// 'Wave_Load()' - Sixteen entries from p.
__attribute__((target("avx2"))) inline __m256i Wave_Load(const int16_t* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// 'Wave_Div16()' - p / 16 truncated toward zero, sixteen lanes.
__attribute__((target("avx2"))) inline __m256i Wave_Div16(__m256i p) {
  return _mm256_srai_epi16(_mm256_add_epi16(p, _mm256_and_si256(_mm256_srai_epi16(p, 15),
                                                                  _mm256_set1_epi16(15))), 4);
}

// 'Wave_Shares()' - Step 2a for one block: the printed bytes of 32 sums
// into out (only the first count of them are stored) and their shares.
__attribute__((target("avx2"))) inline void Wave_Shares(const int16_t* sum, int16_t* q1, int16_t* q5,
                                                 int16_t* q3, uint8_t* out, int32_t count,
                                                 int32_t threshold) {
  // g < threshold for every level g when the threshold is limited to 0 ... 256.
  const int32_t limited = threshold < 0 ? 0 : (threshold > 256 ? 256 : threshold);
  const __m256i th = _mm256_set1_epi16(static_cast<int16_t>(limited));
  const __m256i hi = _mm256_set1_epi16(kSumHigh), top = _mm256_set1_epi16(255);
  __m256i printed[2];
  for (int h = 0; h < 2; ++h) {
    __m256i s = Wave_Load(sum + 16 * h);
    __m256i kept = _mm256_cmpgt_epi16(s, hi);
    __m256i g = _mm256_min_epi16(_mm256_max_epi16(s, _mm256_setzero_si256()), top);
    __m256i pr = _mm256_or_si256(_mm256_cmpgt_epi16(th, g), kept);
    __m256i e = _mm256_andnot_si256(kept, _mm256_sub_epi16(g, _mm256_andnot_si256(pr, top)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(q1 + 16 * h), Wave_Div16(e));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(q5 + 16 * h),
                        Wave_Div16(_mm256_mullo_epi16(e, _mm256_set1_epi16(5))));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(q3 + 16 * h),
                        Wave_Div16(_mm256_mullo_epi16(e, _mm256_set1_epi16(3))));
    printed[h] = pr;
  }
  __m256i bytes = _mm256_permute4x64_epi64(_mm256_packs_epi16(printed[0], printed[1]), 0xD8);
  if (count >= kBlock) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  } else {
    alignas(32) uint8_t tail[kBlock];
    _mm256_store_si256(reinterpret_cast<__m256i*>(tail), bytes);
    memcpy(out, tail, static_cast<size_t>(count));
  }
}

// 'Wave_Below()' - Step 2b for one block: the base of the row below, from
// its first samples next (count dots; beyond them the levels are 0),
// its mask bytes keep (or none) and the shares of the row above.
__attribute__((target("avx2"))) inline void Wave_Below(const uint8_t* next, const uint8_t* keep,
                                                const int16_t* q1, const int16_t* q5,
                                                const int16_t* q3, int16_t* base, int32_t count,
                                                const uint8_t lighten[256]) {
  // The first samples of sixteen dots are every third byte of 48; the
  // lightened level v + (255 - v) x 40 / 100 is v + 2u / 5 with u = 255 - v,
  // and 2u / 5 rounded down is (2u x 13108) >> 16 for every u up to 255
  // (tests/imaging holds the two to each other for all 256 values).  A half
  // block that reaches past the row takes the table, one dot at a time.
  const __m128i redLow = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i redMid = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
  const __m128i redHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
  // The row below's samples are read here first: ask for them a few
  // blocks ahead, so that their reading from memory overlaps the work.
  _mm_prefetch(reinterpret_cast<const char*>(next + 3 * kPrefetchDots), _MM_HINT_T0);
  _mm_prefetch(reinterpret_cast<const char*>(next + 3 * kPrefetchDots + 64), _MM_HINT_T0);
  if (keep) _mm_prefetch(reinterpret_cast<const char*>(keep + kPrefetchDots), _MM_HINT_T0);
  __m256i levels[2];
  for (int h = 0; h < 2; ++h) {
    const uint8_t* p = next + 48 * h;
    if (count - 16 * h >= 16) {
      __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
      __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 32));
      __m128i red = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, redLow), _mm_shuffle_epi8(b, redMid)),
                                 _mm_shuffle_epi8(c, redHigh));
      __m256i v = _mm256_cvtepu8_epi16(red);
      __m256i u2 = _mm256_slli_epi16(_mm256_sub_epi16(_mm256_set1_epi16(255), v), 1);
      levels[h] = _mm256_add_epi16(v, _mm256_mulhi_epu16(u2, _mm256_set1_epi16(13108)));
    } else {
      alignas(32) int16_t tail[16] = {};
      for (int32_t i = 0; i < count - 16 * h; ++i) tail[i] = static_cast<int16_t>(lighten[p[3 * i]]);
      levels[h] = _mm256_load_si256(reinterpret_cast<const __m256i*>(tail));
    }
  }
  const __m256i top = _mm256_set1_epi16(255), zero = _mm256_setzero_si256();
  for (int h = 0; h < 2; ++h) {
    const int32_t o = 16 * h;
    __m256i n = _mm256_add_epi16(levels[h], Wave_Load(q1 - 1 + o));
    n = _mm256_min_epi16(_mm256_max_epi16(n, zero), top);
    n = _mm256_min_epi16(_mm256_max_epi16(_mm256_add_epi16(n, Wave_Load(q5 + o)), zero), top);
    n = _mm256_min_epi16(_mm256_max_epi16(_mm256_add_epi16(n, Wave_Load(q3 + 1 + o)), zero), top);
    if (keep) {
      alignas(16) uint8_t k[16] = {};
      int32_t have = count - 16 * h;
      __m128i bytes;
      if (have >= 16) {
        bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(keep + 16 * h));
      } else {
        if (have > 0) memcpy(k, keep + 16 * h, static_cast<size_t>(have));
        bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(k));
      }
      __m256i m = _mm256_cvtepu8_epi16(bytes);
      n = _mm256_add_epi16(n, _mm256_slli_epi16(_mm256_and_si256(m, _mm256_set1_epi16(0x80)), 2));
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(base + 16 * h), n);
  }
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
