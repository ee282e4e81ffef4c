// The black panel of a pure black-and-white image, and the mask of pure black dots.
// Copyright 2026 The rastertobrellian authors.
//
// A dot is pure when its three bytes sum to 0 or 765, that is when they
// are all 0 or all 255.  For a pure dot the panel byte is 255 when the dot
// is black, which is its red byte inverted.  The scan for a grey dot and
// the mapping share one pass over the image; a grey dot ends the pass, and
// the caller then diffuses the whole image instead.  The mask of pure
// black dots, which the "SolidBlack" rendering keeps out of the diffusion,
// is made the same way but always over the whole image; a grey dot only
// marks the image as not pure.
#include "imaging/pure_map.h"

#include "util/cpu.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define BRELLIAN_PURE_X86 1
#endif

namespace {

// Dots mapped together before the block is tested for a grey dot.
constexpr size_t kPureBlock = 256;

}  // namespace

bool Pure_MapBlackScalar(const uint8_t* rgb, uint8_t* mono, size_t dots) {
  for (size_t start = 0; start < dots; start += kPureBlock) {
    size_t end = dots - start < kPureBlock ? dots : start + kPureBlock;
    uint32_t grey = 0;
    for (size_t i = start; i < end; ++i) {
      uint32_t sum = static_cast<uint32_t>(rgb[3 * i]) + rgb[3 * i + 1] + rgb[3 * i + 2];
      grey |= (sum != 0) & (sum != 765);
      if (mono) mono[i] = sum == 0 ? 255 : 0;
    }
    if (grey) return false;
  }
  return true;
}

bool Pure_MaskBlackScalar(const uint8_t* rgb, uint8_t* mask, size_t dots) {
  uint32_t grey = 0;
  for (size_t i = 0; i < dots; ++i) {
    uint32_t sum = static_cast<uint32_t>(rgb[3 * i]) + rgb[3 * i + 1] + rgb[3 * i + 2];
    grey |= (sum != 0) & (sum != 765);
    mask[i] = sum == 0 ? 255 : 0;
  }
  return grey == 0;
}

#ifdef BRELLIAN_PURE_X86
// 'Pure_White32()' - Whether the 32 dots (96 bytes) at p are all white,
// the common case of a black page's margins and the space around text.
__attribute__((target("avx2"))) inline bool Pure_White32(const uint8_t* p) {
  __m256i all = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  all = _mm256_and_si256(all, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32)));
  all = _mm256_and_si256(all, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64)));
  return _mm256_movemask_epi8(_mm256_cmpeq_epi8(all, _mm256_set1_epi8(-1))) == -1;
}

// Sixteen dots are 48 bytes in three registers.  They are pure when every
// byte is 0 or 255 and each dot's red byte equals its green byte and its
// green byte its blue byte: each register is compared with the same bytes
// one place further on, and only the comparisons of a red with a green or
// a green with a blue byte count.  Which byte positions those are depends
// on where the register starts, modulo 3.  Reading one place further on
// takes the byte after the sixteen dots, so the last block of the image is
// left to the plain loop.  Runs of white are taken 32 dots at a time.
__attribute__((target("avx2"))) bool Pure_MapBlackAvx2(const uint8_t* rgb, uint8_t* mono, size_t dots) {
  // Bit k set where byte k of a register starting at 0, 16 or 32 is a red
  // or a green byte (k + start not 2 modulo 3).
  constexpr int kWithin0 = 0xB6DB;  // k % 3 != 2
  constexpr int kWithin1 = 0xDB6D;  // k % 3 != 1
  constexpr int kWithin2 = 0x6DB6;  // k % 3 != 0
  const __m128i one = _mm_set1_epi8(1);
  const __m128i redLow = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i redMid = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
  const __m128i redHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
  const __m128i allOnes = _mm_set1_epi8(-1);
  size_t i = 0;
  for (; dots - i > 16; i += 16) {
    const uint8_t* p = rgb + 3 * i;
    // Thirty-two white dots at once map to 0.
    while (dots - i >= 32 && Pure_White32(p)) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(mono + i), _mm256_setzero_si256());
      i += 32;
      p += 96;
    }
    if (dots - i <= 16) break;
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
    __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 32));
    // Every byte 0 or 255: byte + 1 is then 1 or 0, at most 1.
    __m128i a1 = _mm_add_epi8(a, one), b1 = _mm_add_epi8(b, one), c1 = _mm_add_epi8(c, one);
    __m128i small = _mm_max_epu8(_mm_max_epu8(a1, b1), c1);
    int extreme = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(small, one), one));
    int same0 = _mm_movemask_epi8(_mm_cmpeq_epi8(a, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1))));
    int same1 = _mm_movemask_epi8(_mm_cmpeq_epi8(b, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 17))));
    int same2 = _mm_movemask_epi8(_mm_cmpeq_epi8(c, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 33))));
    if (extreme != 0xFFFF || (same0 & kWithin0) != kWithin0 || (same1 & kWithin1) != kWithin1 ||
        (same2 & kWithin2) != kWithin2)
      return false;
    __m128i red = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, redLow), _mm_shuffle_epi8(b, redMid)),
                               _mm_shuffle_epi8(c, redHigh));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(mono + i), _mm_xor_si128(red, allOnes));
  }
  return Pure_MapBlackScalar(rgb + 3 * i, mono + i, dots - i);
}

// The same purity test, and the mask: the bytes at p, p + 1 and p + 2 ORed
// together hold, at each red byte's place, the OR of that dot's three
// bytes, which is 0 exactly for a black dot.  The red places are gathered
// as in Pure_MapBlackAvx2.  Reading two places further on takes two bytes
// after the sixteen dots, so again the last block is the plain loop's.
__attribute__((target("avx2"))) bool Pure_MaskBlackAvx2(const uint8_t* rgb, uint8_t* mask, size_t dots) {
  constexpr int kWithin0 = 0xB6DB, kWithin1 = 0xDB6D, kWithin2 = 0x6DB6;
  const __m128i one = _mm_set1_epi8(1);
  const __m128i zero = _mm_setzero_si128();
  const __m128i allOnes = _mm_set1_epi8(-1);
  const __m128i redLow = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i redMid = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
  const __m128i redHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
  bool grey = false;
  size_t i = 0;
  for (; dots - i > 16; i += 16) {
    const uint8_t* p = rgb + 3 * i;
    while (dots - i >= 32 && Pure_White32(p)) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(mask + i), _mm256_setzero_si256());
      i += 32;
      p += 96;
    }
    if (dots - i <= 16) break;
    auto at = [p](int k) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + k)); };
    __m128i a = at(0), b = at(16), c = at(32);
    __m128i a1 = at(1), b1 = at(17), c1 = at(33);
    __m128i small = _mm_max_epu8(_mm_max_epu8(_mm_add_epi8(a, one), _mm_add_epi8(b, one)),
                                 _mm_add_epi8(c, one));
    int extreme = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(small, one), one));
    int same0 = _mm_movemask_epi8(_mm_cmpeq_epi8(a, a1));
    int same1 = _mm_movemask_epi8(_mm_cmpeq_epi8(b, b1));
    int same2 = _mm_movemask_epi8(_mm_cmpeq_epi8(c, c1));
    if (extreme == 0xFFFF && (same0 & kWithin0) == kWithin0 && (same1 & kWithin1) == kWithin1 &&
        (same2 & kWithin2) == kWithin2) {
      // Sixteen pure dots: the mask is the red bytes inverted.
      __m128i red = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, redLow), _mm_shuffle_epi8(b, redMid)),
                                 _mm_shuffle_epi8(c, redHigh));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(mask + i), _mm_xor_si128(red, allOnes));
      continue;
    }
    grey = true;
    __m128i oa = _mm_or_si128(_mm_or_si128(a, a1), at(2));
    __m128i ob = _mm_or_si128(_mm_or_si128(b, b1), at(18));
    __m128i oc = _mm_or_si128(_mm_or_si128(c, c1), at(34));
    __m128i any = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(oa, redLow), _mm_shuffle_epi8(ob, redMid)),
                               _mm_shuffle_epi8(oc, redHigh));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(mask + i), _mm_cmpeq_epi8(any, zero));
  }
  bool restPure = Pure_MaskBlackScalar(rgb + 3 * i, mask + i, dots - i);
  return !grey && restPure;
}
#else
bool Pure_MapBlackAvx2(const uint8_t* rgb, uint8_t* mono, size_t dots) {
  return Pure_MapBlackScalar(rgb, mono, dots);
}
bool Pure_MaskBlackAvx2(const uint8_t* rgb, uint8_t* mask, size_t dots) {
  return Pure_MaskBlackScalar(rgb, mask, dots);
}
#endif

bool Pure_MapBlack(const uint8_t* rgb, uint8_t* mono, size_t dots) {
  return Cpu_HaveAvx2() ? Pure_MapBlackAvx2(rgb, mono, dots) : Pure_MapBlackScalar(rgb, mono, dots);
}

bool Pure_MaskBlack(const uint8_t* rgb, uint8_t* mask, size_t dots) {
  return Cpu_HaveAvx2() ? Pure_MaskBlackAvx2(rgb, mask, dots) : Pure_MaskBlackScalar(rgb, mask, dots);
}
