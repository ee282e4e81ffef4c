// The plain reference stages in place of the production ones, for the
// brellian-reffilter benchmark build only.
// Copyright 2026 The rastertobrellian authors.
//
// brellian-reffilter is the filter linked with "--wrap" for the three stage
// entry points that page processing calls.  The linker then sends those
// calls to the "__wrap_" symbols defined here, which run the straightforward
// versions kept with the tests.  The filter itself is never built this way:
// this file belongs to the benchmark build alone.  The reference stages do
// not log, so the log differs; the job command stream is the same.
#include <cstdint>

#include "reference/reference_stages.h"

class TPrintingTask;

// The wrapped symbols carry the mangled names of
//   int32_t Image_CUPSToPrinterRGB(TPrintingTask*, uint8_t**)
//   int32_t Image_Halftone(TPrintingTask*, const uint8_t*, uint8_t**)
//   int32_t Image_StripToResin(TPrintingTask*, const uint8_t*, uint8_t**)
int32_t Wrap_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out)
    __asm__("__wrap__Z22Image_CUPSToPrinterRGBP13TPrintingTaskPPh");
int32_t Wrap_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out)
    __asm__("__wrap__Z14Image_HalftoneP13TPrintingTaskPKhPPh");
int32_t Wrap_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out)
    __asm__("__wrap__Z18Image_StripToResinP13TPrintingTaskPKhPPh");

// 'Wrap_CUPSToPrinterRGB()' - The reference conversion, every row computed.
int32_t Wrap_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out) {
  return Ref_CUPSToPrinterRGB(task, out, 1);
}

// 'Wrap_Halftone()' - The reference black panel.
int32_t Wrap_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  return Ref_Halftone(task, rgb, out);
}

// 'Wrap_StripToResin()' - The reference resin panel.
int32_t Wrap_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  return Ref_StripToResin(task, rgb, out);
}
