// Luminance of whole rows of printer-RGB dots.
// Copyright 2026 The rastertobrellian authors.
//
// The luminance is a double-precision sum whose every rounding step shows
// in the printed byte (0.299 + 0.587 + 0.114 falls a hair below 1, so a grey
// dot may come out one lower than its level).  Both ways below therefore do
// exactly the formula's IEEE operations: three products rounded once each,
// the red and green products added first, then the blue one, and the sum
// truncated.  The AVX2 way does them four dots per instruction; it uses no
// fused multiply-add (the build forbids contraction) and no reassociation.
#include "imaging/luma.h"

#include "util/cpu.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>

#include "imaging/rgb_avx2.h"
#define BRELLIAN_LUMA_X86 1
#endif

namespace {

// The three products, one table per channel: each entry is the very double
// the formula computes (c * v, rounded once).
struct TLumaProducts {
  double r[256];
  double g[256];
  double b[256];
  TLumaProducts() {
    for (int v = 0; v < 256; ++v) {
      double d = static_cast<double>(v);
      r[v] = 0.299 * d;
      g[v] = 0.587 * d;
      b[v] = 0.114 * d;
    }
  }
};

const TLumaProducts& Luma_Products() {
  static const TLumaProducts products;
  return products;
}

inline uint8_t Luma_FromTables(const TLumaProducts& t, uint8_t r, uint8_t g, uint8_t b) {
  double y = t.r[r] + t.g[g] + t.b[b];
  return y > 255.0 ? 0xFF : static_cast<uint8_t>(static_cast<int>(y));
}

#ifdef BRELLIAN_LUMA_X86
// 'Luma_Four()' - Truncated luminance of four dots given as 32-bit levels.
// A sum above 255.0 truncates to 255 or saturates there when packed, which
// is the formula's 0xFF.
__attribute__((target("avx2"))) inline __m128i Luma_Four(__m128i r, __m128i g, __m128i b) {
  const __m256d kr = _mm256_set1_pd(0.299);
  const __m256d kg = _mm256_set1_pd(0.587);
  const __m256d kb = _mm256_set1_pd(0.114);
  __m256d rg = _mm256_add_pd(_mm256_mul_pd(_mm256_cvtepi32_pd(r), kr),
                             _mm256_mul_pd(_mm256_cvtepi32_pd(g), kg));
  __m256d y = _mm256_add_pd(rg, _mm256_mul_pd(_mm256_cvtepi32_pd(b), kb));
  return _mm256_cvttpd_epi32(y);
}
#endif

}  // namespace

uint8_t Luma_Dot(uint8_t r, uint8_t g, uint8_t b) {
  return Luma_FromTables(Luma_Products(), r, g, b);
}

void Luma_PlaneScalar(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip) {
  const TLumaProducts& t = Luma_Products();
  for (size_t i = 0; i < count; ++i, rgb += 3)
    out[i] = static_cast<uint8_t>(Luma_FromTables(t, rgb[0], rgb[1], rgb[2]) ^ flip);
}

#ifdef BRELLIAN_LUMA_X86
// Eight dots at a time: their channels gathered by Rgb_SplitEight, widened
// to 32-bit levels and summed as doubles, four dots per instruction.
__attribute__((target("avx2"))) void Luma_PlaneAvx2(const uint8_t* rgb, uint8_t* out, size_t count,
                                                    uint8_t flip) {
  const __m128i flipBytes = _mm_set1_epi8(static_cast<char>(flip));
  size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    __m128i redGreen, blue;
    Rgb_SplitEight(rgb + 3 * i, &redGreen, &blue);
    __m256i r = _mm256_cvtepu8_epi32(redGreen);
    __m256i g = _mm256_cvtepu8_epi32(_mm_srli_si128(redGreen, 8));
    __m256i b = _mm256_cvtepu8_epi32(blue);
    __m128i y0 = Luma_Four(_mm256_castsi256_si128(r), _mm256_castsi256_si128(g), _mm256_castsi256_si128(b));
    __m128i y1 = Luma_Four(_mm256_extracti128_si256(r, 1), _mm256_extracti128_si256(g, 1),
                           _mm256_extracti128_si256(b, 1));
    __m128i words = _mm_packs_epi32(y0, y1);
    __m128i bytes = _mm_xor_si128(_mm_packus_epi16(words, words), flipBytes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), bytes);
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
