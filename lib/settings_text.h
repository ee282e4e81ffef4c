// The editable text form of a settings file.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

#include "options/settings.h"

// 'Settings_ToText()' - Every value of settings, one "key = value" line
// each in file order, grouped under comment lines.  Settings_FromText of
// the result gives the same settings back, and Settings_ToText of those
// the same text.
std::string Settings_ToText(const TBrellianSettings& settings);

// 'Settings_ShowText()' - Only the values that are set (non-empty strings,
// non-zero flags, numbers other than -1), one "key = value" line each; a
// line "(no presets set)" when there is none.
std::string Settings_ShowText(const TBrellianSettings& settings);

// 'Settings_FromText()' - Read the text form into *settings, which is reset
// first (its two names are kept): a key the text does not give is left
// empty (numbers -1, flags 0).  Blank lines and lines starting with "#" are
// skipped.  The first bad line (no "=", an unknown or repeated key, a value
// the filter could not use, a broken quoted value) stops the reading: false
// with "line N: ..." in *error, settings then in an unspecified state.
bool Settings_FromText(const std::string& text, TBrellianSettings* settings, std::string* error);

// 'Settings_QuoteValue()' - value as a line of the text form writes it:
// as it is, or in double quotes with \\, \" and \xNN escapes when it
// starts or ends with a blank, starts with a double quote or holds a
// control character.
std::string Settings_QuoteValue(const std::string& value);

// 'Settings_UnquoteValue()' - The reverse for a trimmed value text; false
// for a quoted value that is not closed at its end or has a bad escape.
bool Settings_UnquoteValue(const std::string& text, std::string* value);
