// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// 'Bilevel_FloydSteinberg()' - The diffusion of Image_Bilevel with
// g_floydSteinbergKernel on a W x H panel (W >= 3, H >= 3), giving the same
// bytes: mono[y][x] is 255 where the dot prints, else 0.  rgb is the
// W x H x 3 input (first samples only), row is W bytes of working space,
// lighten maps a first sample to its lightened level.
void Bilevel_FloydSteinberg(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                            int32_t threshold, const uint8_t lighten[256]);
