// Luminance of whole rows of printer-RGB dots.
// Copyright 2026 The rastertobrellian authors.
//
// The luminance is the double-precision sum 0.299 R + 0.587 G + 0.114 B
// truncated, and every rounding step of that sum shows in the printed byte
// (0.299 + 0.587 + 0.114 falls a hair below 1, so a grey dot may come out
// one lower than its level).  The ways below compute it exactly with
// integers instead:
//
// - With n = 299 R + 587 G + 114 B, the exact sum is n / 1000, and the
//   double sum differs from it by less than 1e-12.  When n is not a multiple
//   of 1000, n / 1000 lies at least 0.001 away from an integer, so the
//   double sum truncates to n / 1000 rounded down.
// - When n is a multiple of 1000 the double sum may land just below the
//   integer n / 1000 and truncate one lower.  For a given G and B at most
//   one R in 0..255 makes n a multiple of 1000 (299 is invertible modulo
//   1000, its inverse being 699), so one bit per (G, B) pair, 8 KB in all,
//   records whether that dot comes out one lower.  The table is filled once
//   from the formula itself, evaluated in double precision.
//
// The tests hold every way to the formula on all 2^24 colours.
#include "imaging/luma.h"

#include "util/cpu.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include "imaging/rgb_avx2.h"
#define BRELLIAN_LUMA_X86 1
#endif

namespace {

// Weights of the integer sum, and the inverse of 299 modulo 1000.
constexpr uint32_t WEIGHT_R = 299, WEIGHT_G = 587, WEIGHT_B = 114;
constexpr uint32_t INVERSE_R = 699;
constexpr uint32_t R_STEP = 314;
// n / 1000 == ((n >> 3) * 33555) >> 22 for every n up to 255000: n >> 3 is
// below 31876 and 33555 * 125 exceeds 2^22 by 71, so the error stays below
// one step; the product fits in 31 bits, its high 16 bits in 15.
constexpr uint32_t DIV125_MUL = 33555, DIV125_SHIFT = 22;

// One bit per (G, B): set when the dot with the R that makes n a multiple
// of 1000 truncates one below n / 1000 in double precision.
struct TLumaLower {
  uint32_t bits[65536 / 32] = {};
  TLumaLower() {
    for (uint32_t g = 0; g < 256; ++g) {
      // The R that makes n a multiple of 1000 for B = 0; each step of B adds
      // 114 to the sum, so R moves on by -114 * 699 = 314 modulo 1000.
      uint32_t r = (1000 - WEIGHT_G * g % 1000) % 1000 * INVERSE_R % 1000;
      for (uint32_t b = 0; b < 256; ++b, r = (r + R_STEP) % 1000) {
        if (r > 255) continue;
        uint32_t n = WEIGHT_R * r + WEIGHT_G * g + WEIGHT_B * b;
        double y = 0.299 * r + 0.587 * g + 0.114 * b;  // the formula, in its order
        if (static_cast<uint32_t>(y) != n / 1000) bits[(g << 8 | b) >> 5] |= 1u << (b & 31);
      }
    }
  }
};

const TLumaLower& Luma_Lower() {
  static const TLumaLower lower;
  return lower;
}

inline uint8_t Luma_FromSum(const TLumaLower& t, uint32_t r, uint32_t g, uint32_t b) {
  uint32_t n = WEIGHT_R * r + WEIGHT_G * g + WEIGHT_B * b;
  uint32_t q = n / 1000;
  if (q * 1000 == n) q -= (t.bits[(g << 8 | b) >> 5] >> (b & 31)) & 1;
  return static_cast<uint8_t>(q);
}

}  // namespace

uint8_t Luma_Dot(uint8_t r, uint8_t g, uint8_t b) { return Luma_FromSum(Luma_Lower(), r, g, b); }

void Luma_PlaneScalar(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip) {
  const TLumaLower& t = Luma_Lower();
  for (size_t i = 0; i < count; ++i, rgb += 3)
    out[i] = static_cast<uint8_t>(Luma_FromSum(t, rgb[0], rgb[1], rgb[2]) ^ flip);
}

#ifdef BRELLIAN_LUMA_X86
// 'Luma_GreyBits()' - The table's bits for the grey dots, one per level, in
// one register: a grey dot's sum is always a multiple of 1000, and greys
// (white above all) are the common case, so they are looked up with a
// permutation instead of a gather.
__attribute__((target("avx2"))) __m256i Luma_GreyBits(const TLumaLower& t) {
  alignas(32) uint32_t words[8] = {};
  for (uint32_t v = 0; v < 256; ++v)
    if ((t.bits[(v << 8 | v) >> 5] >> (v & 31)) & 1) words[v >> 5] |= 1u << (v & 31);
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(words));
}

// 'Luma_SameAsBefore()' - Whether the 32 dots at p equal the 32 before them.
__attribute__((target("avx2"))) inline bool Luma_SameAsBefore(const uint8_t* p) {
  __m256i eq = _mm256_set1_epi8(-1);
  for (int k = 0; k < 96; k += 32) {
    __m256i now = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + k));
    __m256i then = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + k - 96));
    eq = _mm256_and_si256(eq, _mm256_cmpeq_epi8(now, then));
  }
  return _mm256_movemask_epi8(eq) == -1;
}

// Eight dots at a time.  Eight dots equal to the eight before them take
// their bytes again.  Otherwise their channels are gathered by Rgb_SplitEight, the
// integer sum made with 16-bit multiply-adds in 32-bit lanes, its quotient
// by 1000 with a 16-bit multiply-high (n / 8 fits in 15 bits), and the
// table's bit fetched only when some lane's sum is a multiple of 1000: from
// the grey register when those lanes are all grey, else with one gather.
__attribute__((target("avx2"))) void Luma_PlaneAvx2(const uint8_t* rgb, uint8_t* out, size_t count,
                                                    uint8_t flip) {
  const TLumaLower& t = Luma_Lower();
  const int* table = reinterpret_cast<const int*>(t.bits);
  const __m256i greyBits = Luma_GreyBits(t);
  const __m256i weightsRG = _mm256_set1_epi32(static_cast<int>(WEIGHT_G << 16 | WEIGHT_R));
  const __m256i weightB = _mm256_set1_epi32(WEIGHT_B);
  const __m256i div = _mm256_set1_epi32(DIV125_MUL), thousand = _mm256_set1_epi32(1000);
  const __m256i low5 = _mm256_set1_epi32(31), one = _mm256_set1_epi32(1);
  const __m128i flipBytes = _mm_set1_epi8(static_cast<char>(flip));
  // The last eight dots computed and their bytes: a run of the same eight
  // dots (a plain area, a white margin) takes the same bytes again.
  __m128i lastLow = _mm_setzero_si128(), lastHigh = _mm_setzero_si128(), lastBytes = _mm_setzero_si128();
  bool haveLast = false;
  size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    const uint8_t* p = rgb + 3 * i;
    __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));
    __m128i same = _mm_and_si128(_mm_cmpeq_epi8(low, lastLow), _mm_cmpeq_epi8(high, lastHigh));
    if (haveLast && _mm_movemask_epi8(same) == 0xFFFF) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), lastBytes);
      // In a plain area, each further span of 32 dots equal to the 32
      // dots before it takes their bytes again, 96 input bytes compared
      // at a time.
      while (i + 8 >= 32 && i + 8 + 32 <= count && Luma_SameAsBefore(rgb + 3 * (i + 8))) {
        __m256i before = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(out + i + 8 - 32));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i + 8), before);
        i += 32;
      }
      continue;
    }
    __m128i redGreen, blue;
    Rgb_SplitEight(p, &redGreen, &blue);
    // Words r0 g0 r1 g1 ...: one multiply-add gives 299 r + 587 g per lane.
    __m256i rg = _mm256_cvtepu8_epi16(_mm_unpacklo_epi8(redGreen, _mm_srli_si128(redGreen, 8)));
    __m256i b = _mm256_cvtepu8_epi32(blue);
    __m256i n = _mm256_add_epi32(_mm256_madd_epi16(rg, weightsRG), _mm256_madd_epi16(b, weightB));
    __m256i q = _mm256_srli_epi32(_mm256_mulhi_epu16(_mm256_srli_epi32(n, 3), div), DIV125_SHIFT - 16);
    __m256i exact = _mm256_cmpeq_epi32(n, _mm256_madd_epi16(q, thousand));
    if (!_mm256_testz_si256(exact, exact)) {
      __m256i r = _mm256_cvtepu8_epi32(redGreen);
      __m256i g = _mm256_cvtepu8_epi32(_mm_srli_si128(redGreen, 8));
      __m256i grey = _mm256_and_si256(_mm256_cmpeq_epi32(r, g), _mm256_cmpeq_epi32(g, b));
      __m256i word;
      __m256i shift = _mm256_and_si256(b, low5);
      if (_mm256_testc_si256(grey, exact)) {   // every exact lane is grey
        word = _mm256_permutevar8x32_epi32(greyBits, _mm256_srli_epi32(b, 5));
      } else {
        __m256i index = _mm256_or_si256(_mm256_slli_epi32(g, 8), b);
        word = _mm256_i32gather_epi32(table, _mm256_srli_epi32(index, 5), 4);
      }
      __m256i bit = _mm256_and_si256(_mm256_srlv_epi32(word, shift), one);
      q = _mm256_sub_epi32(q, _mm256_and_si256(bit, exact));
    }
    __m128i words = _mm_packus_epi32(_mm256_castsi256_si128(q), _mm256_extracti128_si256(q, 1));
    __m128i bytes = _mm_xor_si128(_mm_packus_epi16(words, words), flipBytes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), bytes);
    lastLow = low;
    lastHigh = high;
    lastBytes = bytes;
    haveLast = true;
  }
  Luma_PlaneScalar(rgb + 3 * i, out + i, count - i, flip);
}
#else
void Luma_PlaneAvx2(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip) {
  Luma_PlaneScalar(rgb, out, count, flip);
}
#endif

void Luma_Plane(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip) {
  if (Cpu_HaveAvx2())
    Luma_PlaneAvx2(rgb, out, count, flip);
  else
    Luma_PlaneScalar(rgb, out, count, flip);
}
