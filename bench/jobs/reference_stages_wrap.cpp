// The plain reference stages in place of the production ones, for the
// brellian-reffilter benchmark build only.
// Copyright 2026 The rastertobrellian authors.
//
// brellian-reffilter is the filter built without the three files that
// define the production stages page processing calls; this file defines
// those entry points instead, from their declarations in imaging/stages.h,
// and runs the straightforward versions kept with the tests.  A stage whose
// signature changes leaves the filter's call without a definition, so the
// build fails rather than timing the production stage.  The filter itself
// is never built this way.  The reference stages do not log, so the log
// differs; the job command stream is the same.
#include <cstdint>

#include "imaging/stages.h"
#include "reference/reference_stages.h"

// 'Image_CUPSToPrinterRGB()' - The reference conversion, every row computed.
int32_t Image_CUPSToPrinterRGB(TPrintingTask* task, uint8_t** out) {
  return Ref_CUPSToPrinterRGB(task, out, 1);
}

// 'Image_Halftone()' - The reference black panel.
int32_t Image_Halftone(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  return Ref_Halftone(task, rgb, out);
}

// 'Image_StripToResin()' - The reference resin panel.
int32_t Image_StripToResin(TPrintingTask* task, const uint8_t* rgb, uint8_t** out) {
  return Ref_StripToResin(task, rgb, out);
}
