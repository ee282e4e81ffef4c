// Splitting packed RGB dots into their channels with AVX2-era byte shuffles.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include <cstdint>

// 'Rgb_SplitEight()' - Eight RGB dots (the 24 bytes at p, nothing read
// beyond them): the eight red levels in bytes 0-7 and the eight green
// levels in bytes 8-15 of *redGreen, the eight blue levels in bytes 0-7 of
// *blue.  Only for functions built with target "avx2".
__attribute__((target("avx2"))) inline void Rgb_SplitEight(const uint8_t* p, __m128i* redGreen, __m128i* blue) {
  const __m128i redGreenLow = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, 1, 4, 7, 10, 13, -1, -1, -1);
  const __m128i redGreenHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, -1, -1, -1, -1, -1, 0, 3, 6);
  const __m128i blueLow = _mm_setr_epi8(2, 5, 8, 11, 14, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i blueHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, 1, 4, 7, -1, -1, -1, -1, -1, -1, -1, -1);
  __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));
  *redGreen = _mm_or_si128(_mm_shuffle_epi8(low, redGreenLow), _mm_shuffle_epi8(high, redGreenHigh));
  *blue = _mm_or_si128(_mm_shuffle_epi8(low, blueLow), _mm_shuffle_epi8(high, blueHigh));
}
#endif
