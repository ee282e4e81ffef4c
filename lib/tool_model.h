// Printer models and settings files as the preset tools name them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>

#include "options/settings.h"
#include "lib/settings_keys.h"

// 'Tool_Init()' - What every preset tool does first: build the start-up
// tables (model names, panel geometry, resolutions) and silence the
// filter's trace log, which the library's readers would otherwise feed.
void Tool_Init();

// 'Tool_ParseModel()' - A model number of the model table ("NNNN") or a
// model's display name (any case), into *model; false for anything else.
bool Tool_ParseModel(const std::string& text, uint32_t* model);

// 'Tool_ParsePreset()' - The value of a tool's --preset option: one digit
// from 1 to most (at most 9) into *preset; false with *error
// ("--preset "TEXT" is not 1 to MOST") for anything else.
bool Tool_ParsePreset(const char* text, int most, int* preset, std::string* error);

// 'Tool_SettingsModelName()' - The model name of the settings file the
// filter reads: the filter looks its settings up before it has settled the
// queue's model, always under the name of the default model.
std::string Tool_SettingsModelName();

// 'Tool_LoadSettingsFile()' - Read the settings file at path into
// *settings (names untouched).  0 when read, 1 when there is no such file,
// -1 when it exists but can't be read (*error says why).
int32_t Tool_LoadSettingsFile(const std::string& path, TBrellianSettings* settings, std::string* error);

// 'Tool_LoadPrinterSettings()' - Read the file of a printer with
// TBrellianSettings::Load (names lower-cased as the filter does).  Same
// results as Tool_LoadSettingsFile; a name that can't stand in a file name
// gives -1.
int32_t Tool_LoadPrinterSettings(const std::string& model, const std::string& serial,
                                 TBrellianSettings* settings, std::string* error);

// 'Tool_SetPresetName()' - For the tools that install a preset file: read
// the settings file of the printer with serial (the file the filter reads;
// a missing one gives empty settings) and set key (uv.N or lut.N) to name
// with the usual checks.  0 done, 1 the name was refused, 3 the file can't
// be read; *error says why.  Nothing is written: Tool_SavePrinterSettings
// does that once the preset file itself is in place.
int Tool_SetPresetName(const std::string& serial, const TSettingsKey& key, const std::string& name,
                       TBrellianSettings* settings, std::string* error);

// 'Tool_SavePrinterSettings()' - Write settings to their printer's file
// (making the settings directories first) and print "set KEY = VALUE in
// PATH".  False with *error on failure.
bool Tool_SavePrinterSettings(const TBrellianSettings& settings, const TSettingsKey& key, std::string* error);

// 'Tool_SaveSettingsFile()' - Write the settings in the file format to
// path through Tool_ReplaceFile (mode 0644).  False with *error on failure.
bool Tool_SaveSettingsFile(const std::string& path, const TBrellianSettings& settings, std::string* error);
