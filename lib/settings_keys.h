// Named values of a settings file: keys, reading, checking and setting them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "options/settings.h"

// What a key names.
enum TSettingsKind {
  SETKEY_RESIN_AREA,     // resin.P.include.K / resin.P.exclude.K
  SETKEY_PO_AREA,        // po.P.peel-off.K / po.P.keep.K
  SETKEY_LUT_NAME,       // lut.N
  SETKEY_UV_NAME,        // uv.N
  SETKEY_FLAG,           // flag.N
  SETKEY_PLUGIN,         // plugin
  SETKEY_CARD_THICKNESS, // card-thickness
  SETKEY_MAG_PO_MODE,    // mag-po-mode
};

// One key, its numbers counted from 0.
struct TSettingsKey {
  TSettingsKind kind;
  int preset;   // areas: 0-9
  int group;    // areas: 0 include / peel-off, 1 exclude / keep
  int index;    // areas: 0-2; names: 0-4; flags: 0-9
};

// Longest plug-in name: the job header keeps 127 bytes of it.
constexpr size_t SETTINGS_PLUGIN_MAX = 127;

// 'Settings_AllKeys()' - Every key of a settings file, in file order.
const std::vector<TSettingsKey>& Settings_AllKeys();

// 'Settings_KeyName()' - The text of a key, e.g. "resin.1.include.2".
std::string Settings_KeyName(const TSettingsKey& key);

// 'Settings_FindKey()' - The key named by text (compared exactly); false
// when no key has that name.
bool Settings_FindKey(const std::string& text, TSettingsKey* key);

// 'Settings_GetValue()' - The value of a key as the text form writes it:
// strings as they are, numbers in decimal, card-thickness and mag-po-mode
// as a word when one names the number.
std::string Settings_GetValue(const TBrellianSettings& settings, const TSettingsKey& key);

// 'Settings_SetValue()' - Check value for key and store it.  A value the
// filter could not use is refused, settings untouched, and *error names
// the key and the value and says why.
bool Settings_SetValue(TBrellianSettings* settings, const TSettingsKey& key, const std::string& value,
                       std::string* error);

// 'Settings_SetCheckModel()' - Check areas at the resolution of model
// (a model number of the model table) only; 0, the default, checks them at every model's.
void Settings_SetCheckModel(uint32_t model);

// 'Settings_CheckArea()' - Empty when text is an area string the filter
// reads as a non-empty area at the checked resolutions (or text is
// empty); else why not.
std::string Settings_CheckArea(const std::string& text);

// 'Settings_AreaNote()' - Empty, or a note on an area string the filter
// takes but probably not as meant: its last value has no unit and so reads
// as inches, while a value without a unit before it reads as dots.
std::string Settings_AreaNote(const std::string& text);
