// Changes to a printer's presets under the configuration root, checked and written atomically.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "options/settings.h"

// 'Presets_Load()' - The settings file of a serial number as the filter
// reads it (an absent file gives empty settings).  False with *error when
// it exists but can't be read.
bool Presets_Load(const std::string& serial, TBrellianSettings* settings, std::string* error);

// 'Presets_ApplyValues()' - Set every key of values ("resin.1.include.1"
// = "...") whose value differs from the current one, each checked as the
// settings tool checks it, then write the file.  On the first bad value
// nothing is written: false with *error naming the key and the reason.
bool Presets_ApplyValues(const std::string& serial, const std::map<std::string, std::string>& values,
                         std::string* error);

// 'Presets_InstallUv()' - Convert the PNG bytes png into the UV file of
// model (fit: exact, fit or stretch), write it as uv/NAME and set uv.N =
// NAME.  False with *error (nothing changed) for a file that is not a PNG, of the wrong size for "exact", or a bad name or preset.
bool Presets_InstallUv(const std::string& serial, uint32_t model, int preset, const std::string& name,
                       const std::string& fit, const std::string& png, std::string* error);

// 'Presets_InstallLut()' - Check the CSV bytes as the filter reads a
// lookup table, write it as lut/NAME.csv and set lut.N = NAME.  False with
// *error (nothing changed) for a file the filter could not use.
bool Presets_InstallLut(const std::string& serial, int table, const std::string& name, const std::string& bytes,
                        std::string* error);

// Largest uploads taken.
constexpr size_t PRESETS_MAX_PNG_BYTES = 2u * 1024u * 1024u;
