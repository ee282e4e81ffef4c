// The black panel of a pure black-and-white image, and the mask of pure black dots.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// 'Pure_MapBlack()' - For the dots RGB dots at rgb, write 255 to mono for
// every black dot (0,0,0) and 0 for every white dot (255,255,255), and
// return true; return false as soon as a dot is neither (a grey dot), with
// mono then holding no meaningful bytes.  Every way below gives the same
// answer and, for a pure image, the same bytes.  Pure_MapBlackScalar also
// takes a null mono: it then only tests the dots.
bool Pure_MapBlack(const uint8_t* rgb, uint8_t* mono, size_t dots);

// The ways Pure_MapBlack may take, for the tests that hold them to each
// other: blocks of plain loops, and sixteen dots at a time with AVX2 (only
// where Cpu_HaveAvx2() says the processor has it).
bool Pure_MapBlackScalar(const uint8_t* rgb, uint8_t* mono, size_t dots);
bool Pure_MapBlackAvx2(const uint8_t* rgb, uint8_t* mono, size_t dots);

// 'Pure_MaskBlack()' - For the dots RGB dots at rgb, write 255 to mask for
// every pure black dot (0,0,0) and 0 for every other dot, the whole image
// through; return true when every dot is pure (0,0,0 or 255,255,255).  For
// a pure image the mask is the panel Pure_MapBlack makes.  Every way gives
// the same answer and the same bytes.
bool Pure_MaskBlack(const uint8_t* rgb, uint8_t* mask, size_t dots);

// The ways Pure_MaskBlack may take: plain loops, and sixteen dots at a time
// with AVX2 (only where Cpu_HaveAvx2() says the processor has it).
bool Pure_MaskBlackScalar(const uint8_t* rgb, uint8_t* mask, size_t dots);
bool Pure_MaskBlackAvx2(const uint8_t* rgb, uint8_t* mask, size_t dots);
