// UV preset images: raw UV panel files made from pictures and shown as pictures.
// Copyright 2026 The rastertobrellian authors.
#include "lib/uv_image.h"

#include "imaging/panel.h"

namespace {

// 'Uv_Sample()' - Fill a w x h block of out (row stride width) at (ox, oy)
// from the picture by nearest-neighbour sampling.
void Uv_Sample(const TPngImage& rgb, uint32_t width, uint32_t ox, uint32_t oy, uint32_t w, uint32_t h,
               std::vector<uint8_t>* out) {
  for (uint32_t y = 0; y < h; ++y) {
    uint64_t sy = (2ull * y + 1) * rgb.height / (2ull * h);
    for (uint32_t x = 0; x < w; ++x) {
      uint64_t sx = (2ull * x + 1) * rgb.width / (2ull * w);
      const uint8_t* p = &rgb.pixels[(sy * rgb.width + sx) * 3];
      (*out)[static_cast<size_t>(oy + y) * width + ox + x] = Uv_DotFromRGB(p[0], p[1], p[2]);
    }
  }
}

}  // namespace

// 'Uv_ParseFit()' - The fit named by text.
bool Uv_ParseFit(const std::string& text, TUvFit* fit) {
  static const struct {
    const char* name;
    TUvFit fit;
  } kFits[] = {{"exact", UVFIT_EXACT}, {"fit", UVFIT_FIT}, {"stretch", UVFIT_STRETCH}};
  for (const auto& f : kFits)
    if (text == f.name) return *fit = f.fit, true;
  return false;
}

// 'Uv_DotFromRGB()' - 255 minus the grey value or the luminance.
uint8_t Uv_DotFromRGB(uint8_t r, uint8_t g, uint8_t b) {
  if (r == g && g == b) return static_cast<uint8_t>(255 - r);
  return static_cast<uint8_t>(255 - Image_Luminance(r, g, b));
}

// 'Uv_FromImage()' - Size check or scaling, then one UV byte per dot.
bool Uv_FromImage(const TPngImage& rgb, uint32_t width, uint32_t height, TUvFit fit, std::vector<uint8_t>* out,
                  std::string* error) {
  if (rgb.channels != 3 || rgb.width == 0 || rgb.height == 0) {
    *error = "the picture holds no pixels";
    return false;
  }
  bool same = rgb.width == width && rgb.height == height;
  if (!same && fit == UVFIT_EXACT) {
    *error = "the picture is " + std::to_string(rgb.width) + " x " + std::to_string(rgb.height) +
             " but the panel is " + std::to_string(width) + " x " + std::to_string(height) +
             " (--fit fit or --fit stretch scales it)";
    return false;
  }
  out->assign(static_cast<size_t>(width) * height, 0);
  uint32_t w = width, h = height;
  if (fit == UVFIT_FIT && !same) {
    w = rgb.width;
    h = rgb.height;
    Image_FitSize(nullptr, width, height, &w, &h);
    if (w == 0) w = 1;
    if (h == 0) h = 1;
  }
  Uv_Sample(rgb, width, (width - w) / 2, (height - h) / 2, w, h, out);
  return true;
}

// 'Uv_ToGray()' - 255 minus each byte.
std::vector<uint8_t> Uv_ToGray(const uint8_t* raw, size_t size) {
  std::vector<uint8_t> gray(size);
  for (size_t i = 0; i < size; ++i) gray[i] = static_cast<uint8_t>(255 - raw[i]);
  return gray;
}
