// The job of one page loop fuzz input: options from its first bytes, the
// raster stream from the rest, screened against the page caps.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Bytes at the start of an input that choose the job's options.
constexpr size_t FUZZ_OPTION_BYTES = 8;

struct TFuzzJob {
  uint32_t model = 0;         // a model number of the model table
  std::string ppd;            // that model's PPD file
  bool smallPanels = true;    // panels of a sixteenth of the model's size
  std::string options;        // the options argument
  std::string rasterPath;     // the raster stream, in a file of its own
};

// 'Fuzz_PageJob()' - Decode the option bytes, write the raster stream (with
// the first page's Duplex and Tumble flags set when chosen) to the one
// scratch file, and check that every page stays within the fuzzing caps.
// False when the input is to be skipped.
bool Fuzz_PageJob(const uint8_t* data, size_t size, TFuzzJob* job);
