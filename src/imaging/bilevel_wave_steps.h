// The sixteen-dot steps of the eight-rows Floyd-Steinberg diffusion (AVX2).
// Copyright 2026 The rastertobrellian authors.
//
// Included by bilevel_wave.cpp alone, on x86 processors; each function is
// compiled for AVX2 and may run only where Cpu_HaveAvx2() says so.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "imaging/bilevel_tables.h"

constexpr int32_t kWaveBlock = 32;                 // dots per block: two registers of sixteen
constexpr int32_t kPrefetchDots = 4 * kWaveBlock;  // how far ahead the row below is asked for

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
__attribute__((target("avx2"))) inline void Wave_Shares(const int16_t* sum, int16_t* q1,
                                                        int16_t* q5, int16_t* q3, uint8_t* out,
                                                        int32_t count, int32_t threshold) {
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
  if (count >= kWaveBlock) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  } else {
    alignas(32) uint8_t tail[kWaveBlock];
    _mm256_store_si256(reinterpret_cast<__m256i*>(tail), bytes);
    memcpy(out, tail, static_cast<size_t>(count));
  }
}

// 'Wave_Below()' - Step 2b for one block: the base of the row below, from
// its first samples next (count dots; beyond them the levels are 0),
// its mask bytes keep (or none) and the shares of the row above.
__attribute__((target("avx2"))) inline void Wave_Below(const uint8_t* next, const uint8_t* keep,
                                                       const int16_t* q1, const int16_t* q5,
                                                       const int16_t* q3, int16_t* base,
                                                       int32_t count, const uint8_t lighten[256]) {
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
