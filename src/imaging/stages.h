// Image stages of page imaging: conversion, resampling, black, resin.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

#include "options/area.h"

class TPrintingTask;

// One tap of an error-diffusion kernel.
struct TDiffusionTap {
  int32_t dx;
  int32_t dy;
  int32_t weight;
};

// An error-diffusion kernel: weights over a common divisor.
struct TDiffusionKernel {
  int32_t divisor;
  int32_t count;
  const TDiffusionTap* taps;
};

extern const TDiffusionKernel g_floydSteinbergKernel;

// 'Image_CUPSToPrinterRGB()' - The task's page as a W x H x 3 panel.
int32_t Image_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out);
// 'Image_BSplineResize()' - Cubic B-spline resampling of an RGB image.
int32_t Image_BSplineResize(TPrintingTask* task, const uint8_t* src, uint32_t srcWidth,
                            uint32_t srcHeight, uint32_t dstWidth, uint32_t dstHeight,
                            uint8_t** out);
// 'Image_BSplineWeight()' - The cubic B-spline kernel.
float Image_BSplineWeight(float x);
// 'Image_Bilevel()' - Lightened error diffusion into a black panel.
void Image_Bilevel(TPrintingTask* task, const uint8_t* rgb, uint8_t** out,
                   const TDiffusionKernel& kernel, int32_t threshold);
// 'Image_Halftone()' - The black panel of a side.
int32_t Image_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
// 'Image_HalftoneSolidBlack()' - The black panel with pure black kept solid.
int32_t Image_HalftoneSolidBlack(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
// 'Area_ToSpan()' - The dots x0 <= x < x1, y0 <= y < y1 an area covers.
void Area_ToSpan(const TArea* area, uint32_t width, uint32_t height, int32_t* x0, int32_t* y0,
                 int32_t* x1, int32_t* y1);
// 'Image_StripToResin()' - The resin black panel of a ColorK side.
int32_t Image_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out);
