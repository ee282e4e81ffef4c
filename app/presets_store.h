// Changes to a printer's presets under the configuration root, checked and written atomically.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

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

// 'Presets_ListUv()' - The names of the UV files installed (regular
// files of the uv folder, not hidden), sorted.
std::vector<std::string> Presets_ListUv();

// 'Presets_ListLut()' - The names of the colour tables installed (NAME of
// each regular file NAME.csv of the lut folder), sorted.
std::vector<std::string> Presets_ListLut();

// 'Presets_UvPreviewPng()' - A PNG picture of the installed UV file name
// for model: UV dots dark, the rest white.  False with *error for a name
// that is not an installed UV file or one made for another panel size.
bool Presets_UvPreviewPng(const std::string& name, uint32_t model, std::string* png, std::string* error);

// 'Presets_CheckName()' - name can be a preset file name: a plain name of
// at most PRESETS_MAX_NAME bytes (the name, its temporary file and the
// ".csv" of a table must fit the system's limit of 255 bytes).  False
// with *error saying what is wrong.
bool Presets_CheckName(const std::string& name, std::string* error);

// Largest uploads taken: a UV picture of exactly 2 MiB is taken.
constexpr size_t PRESETS_MAX_PNG_BYTES = 2u * 1024u * 1024u;
// Longest UV or table name, in bytes.
constexpr size_t PRESETS_MAX_NAME = 128;
// Most UV files kept: each is a whole panel (2.75 MB at 600 dpi), so
// the configuration folder holds at most about 140 MB of them.  Replacing
// an installed file is always allowed.
constexpr size_t PRESETS_MAX_UV_FILES = 50;
