// Plain reference versions of the image stages, written straight from their
// algorithms, against which the production stages are checked byte for byte.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include "imaging/stages.h"

class TPrintingTask;

// Each returns what its production twin returns and allocates its result
// with malloc (the caller frees it); none of them logs.
// The resampling ones compute only every rowStep-th output row (the others
// stay zero), so that tests of large pages stay quick.
int32_t Ref_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out, uint32_t rowStep = 1);
int32_t Ref_BSplineResize(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                          uint32_t dstWidth, uint32_t dstHeight, uint8_t** out,
                          uint32_t rowStep = 1);
float Ref_BSplineWeight(float x);
void Ref_Bilevel(TPrintingTask* task, const uint8_t* rgb, uint8_t** out,
                 const TDiffusionKernel& kernel, int32_t threshold);
int32_t Ref_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
int32_t Ref_HalftoneSolidBlack(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
void Ref_AreaToSpan(const TArea* area, uint32_t width, uint32_t height, int32_t* x0, int32_t* y0,
                    int32_t* x1, int32_t* y1);
int32_t Ref_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
