// UV preset images: raw UV panel files made from pictures and shown as pictures.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lib/png_io.h"

// How a picture of another size than the panel becomes the panel.
enum TUvFit {
  UVFIT_EXACT,     // refuse any other size
  UVFIT_FIT,       // scale keeping the aspect ratio, centred; the margins get no UV
  UVFIT_STRETCH,   // scale each direction to the panel
};

// 'Uv_ParseFit()' - "exact", "fit" or "stretch" into *fit.
bool Uv_ParseFit(const std::string& text, TUvFit* fit);

// 'Uv_DotFromRGB()' - The UV byte of one picture pixel, as the filter makes
// a UV panel from a page: 255 minus the pixel's luminance, so black gives
// 255 (UV applied) and white 0.  A grey pixel (r = g = b) gives 255 - r
// exactly; another pixel 255 minus the filter's luminance (Image_Luminance,
// whose double arithmetic gives some greys one level lower), so that a
// grey picture and its UV file convert into each other without loss.
uint8_t Uv_DotFromRGB(uint8_t r, uint8_t g, uint8_t b);

// 'Uv_FromImage()' - The raw UV panel (width x height bytes, rows top to
// bottom) of an RGB picture (3 channels).  Scaling picks, for panel dot
// (x, y) of a w x h target, the picture pixel ((2x + 1) * sw / (2w), (2y
// + 1) * sh / (2h)) in integer arithmetic (nearest neighbour).  False with
// *error when the fit is exact and the sizes differ.
bool Uv_FromImage(const TPngImage& rgb, uint32_t width, uint32_t height, TUvFit fit, std::vector<uint8_t>* out,
                  std::string* error);

// 'Uv_ToGray()' - The picture of a raw UV panel: grey 255 minus each byte,
// so that UV dots show dark (the reverse of Uv_DotFromRGB on grey).
std::vector<uint8_t> Uv_ToGray(const uint8_t* raw, size_t size);
