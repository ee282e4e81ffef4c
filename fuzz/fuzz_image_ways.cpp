// Fuzz target: the fast ways of the image stages against their portable
// ways, on sizes and dots the input chooses.  Any byte of difference, or
// a byte written outside the output, aborts.
// Copyright 2026 The rastertobrellian authors.
//
// Input: width, height, output width, output height (one byte each, so up
// to 255 dots), a byte of flags, then dots (repeated when short).  The
// resampler runs on the plain image and on the image turned a quarter
// (strided reads), clipped to part of its grid; the luminance and the
// black-panel mapping run on the same dots, the mapping also on the dots
// pushed to black and white so that pure images are reached.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_common.h"
#include "imaging/luma.h"
#include "imaging/pure_map.h"
#include "imaging/resample.h"
#include "util/cpu.h"

namespace {

constexpr uint8_t kGuard = 0xC3;

// 'Fuzz_Resample()' - Both ways into buffers with a guard byte after each
// row; abort on any difference.
void Fuzz_Resample(const TImageSource& source, uint32_t dw, uint32_t dh, uint32_t clipW, uint32_t clipH) {
  const size_t stride = static_cast<size_t>(dw) * 3 + 1;
  std::vector<uint8_t> portable(stride * dh, kGuard), fast(stride * dh, kGuard);
  if (Image_BSplineResamplePortable(source, dw, dh, clipW, clipH, portable.data(), stride) != 0) return;
  if (Image_BSplineResampleAvx2(source, dw, dh, clipW, clipH, fast.data(), stride) != 0) abort();
  if (portable != fast) abort();
  for (uint32_t y = 0; y < dh; ++y)
    if (portable[y * stride + stride - 1] != kGuard) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  if (size < 6 || !Cpu_HaveAvx2()) return 0;
  const uint32_t sw = data[0] ? data[0] : 1, sh = data[1] ? data[1] : 1;
  const uint32_t dw = data[2] ? data[2] : 1, dh = data[3] ? data[3] : 1;
  const uint8_t flags = data[4];
  const uint8_t* dots = data + 5;
  const size_t dotBytes = size - 5;
  const size_t n = static_cast<size_t>(sw) * sh;
  std::vector<uint8_t> rgb(n * 3);
  for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = dots[i % dotBytes];

  TImageSource plain = {rgb.data(), 3, static_cast<ptrdiff_t>(sw) * 3, sw, sh};
  Fuzz_Resample(plain, dw, dh, dw, dh);
  // The same dots as a page turned a quarter: read from the last column.
  TImageSource turned = {rgb.data() + (sw - 1) * 3, static_cast<ptrdiff_t>(sw) * 3, -3, sh, sw};
  Fuzz_Resample(turned, dw, dh, dw - (flags & 7) % dw, dh - ((flags >> 3) & 7) % dh);

  for (uint8_t flip : {uint8_t{0}, uint8_t{0xFF}}) {
    std::vector<uint8_t> a(n + 1, kGuard), b(n + 1, kGuard);
    Luma_PlaneScalar(rgb.data(), a.data(), n, flip);
    Luma_PlaneAvx2(rgb.data(), b.data(), n, flip);
    if (a != b) abort();
  }
  // Where the flags say so, most dots are pushed to black or white and the
  // rest become dots of only 0 and 255 with mixed channels, or stay as
  // they are: the mapping then sees pure images and images with a few grey
  // dots of every kind.
  std::vector<uint8_t> pure(rgb);
  if (flags & 0x80) {
    for (size_t i = 0; i < n; ++i) {
      uint8_t* d = &pure[3 * i];
      uint8_t choice = d[1], bits = d[2];
      if ((choice & 0x3F) != 0) {
        d[0] = d[1] = d[2] = (d[0] & 1) ? 255 : 0;
      } else if (choice & 0x40) {
        for (int k = 0; k < 3; ++k) d[k] = ((bits >> k) & 1) ? 255 : 0;
      }
    }
  }
  std::vector<uint8_t> a(n + 1, kGuard), b(n + 1, kGuard);
  bool pa = Pure_MapBlackScalar(pure.data(), a.data(), n);
  bool pb = Pure_MapBlackAvx2(pure.data(), b.data(), n);
  if (pa != pb) abort();
  if (pa && a != b) abort();
  if (a[n] != kGuard || b[n] != kGuard) abort();
  return 0;
}
