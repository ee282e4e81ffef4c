// Floyd-Steinberg error diffusion, specialised for its four fixed taps.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// 'Bilevel_FloydSteinberg()' - The diffusion of Image_Bilevel with
// g_floydSteinbergKernel on a W x H panel (W >= 3, H >= 3), giving the same
// bytes: mono[y][x] is 255 where the dot prints, else 0.  rgb is the
// W x H x 3 input (first samples only), row is W bytes of working space,
// lighten maps a first sample to its lightened level.
// With keep null every dot is diffused.  Otherwise keep is a W x H mask
// (it may be mono itself: each mask byte is read before the panel byte at
// the same place is written) and a dot whose mask byte is 255 prints and
// takes no part in the diffusion: it spreads no error, and the error
// pushed into it is never read.
void Bilevel_FloydSteinberg(const uint8_t* rgb, uint8_t* mono, uint8_t* row, int32_t W, int32_t H,
                            int32_t threshold, const uint8_t lighten[256], const uint8_t* keep);

// 'Bilevel_FloydSteinbergWave()' - The same diffusion and the same bytes,
// eight rows at once with AVX2 (call it only where Cpu_HaveAvx2() says the
// processor has it).  Returns false, having written nothing, when W is
// above 4096, when its working memory (about 150 KB and 48 bytes per
// column) could not be had or the processor family has no such way; the
// caller then takes Bilevel_FloydSteinberg.
bool Bilevel_FloydSteinbergWave(const uint8_t* rgb, uint8_t* mono, int32_t W, int32_t H,
                                int32_t threshold, const uint8_t lighten[256], const uint8_t* keep);
