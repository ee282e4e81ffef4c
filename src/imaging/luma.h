// Luminance of whole rows of printer-RGB dots.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// 'Luma_Plane()' - For each of count RGB dots at rgb write one byte to out:
// the luminance 0.299 R + 0.587 G + 0.114 B in double precision, summed in
// that order and truncated toward zero (255 when above 255.0), XORed with
// flip.  A flip of 0xFF gives 255 minus the luminance.  Every way of
// computing it below gives the same bytes.
void Luma_Plane(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip);

// The two ways Luma_Plane may take, for the tests that hold them to each
// other and to the formula: one dot at a time with the exact integer sum,
// and eight dots at a time with AVX2 (only where Cpu_HaveAvx2() says the
// processor has it).  Both first fill an 8 KB table from the formula, once
// per process.
void Luma_PlaneScalar(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip);
void Luma_PlaneAvx2(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip);

// 'Luma_Dot()' - The luminance of one dot, as Luma_Plane computes it.
uint8_t Luma_Dot(uint8_t r, uint8_t g, uint8_t b);
