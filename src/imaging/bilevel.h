// The error diffusion shared by the black renderings.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

struct TDiffusionKernel;

// 'Bilevel_Diffuse()' - Fill the W x H panel mono (255 = print) from the
// first sample of each dot of the W x H x 3 image rgb: every level moved
// 40 % of the way to white, then diffused with kernel in row order, left
// to right, a dot below threshold printing; the error is carried in
// working bytes clamped at every write and never pushed into the last row
// or column.  With keep not null, every dot whose keep byte is 255 prints
// and takes no part in the diffusion (it spreads no error; what is pushed
// into it is never read); keep may be mono itself.  Returns false, with
// mono not written, when its working bytes could not be allocated.  Logs
// nothing.
bool Bilevel_Diffuse(const uint8_t* rgb, uint8_t* mono, int32_t W, int32_t H,
                     const TDiffusionKernel& kernel, int32_t threshold, const uint8_t* keep);
