// Magnetic stripe data: track records and their character sets.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// One magnetic track as sent to the printer: byte 0 is the format code (or 0
// for "None", or a status 1-3), byte 1 the number of codes, then the codes.
struct TMagTrack {
  uint8_t format;
  uint8_t length;
  uint8_t codes[128];
};
static_assert(sizeof(TMagTrack) == 130, "TMagTrack is 130 bytes");

// Status values of byte 0.
constexpr uint8_t MAG_STATUS_FORMAT = 1;    // format not allowed on the track
constexpr uint8_t MAG_STATUS_TOO_LONG = 2;  // 128 characters or more
constexpr uint8_t MAG_STATUS_BAD_CHAR = 3;  // character outside the set

// 'Mag_BuildCharsets()' - Build the 4-, 6- and 7-bit character maps; called
// once by the start-up table builder.
void Mag_BuildCharsets();

// 'Mag_EncodeTrack()' - Check format against track (1-3) and convert data
// into track.  The result is only in the record.
void Mag_EncodeTrack(int32_t track, const char* format, const char* data, TMagTrack* record);

// 'Mag_EncodeByCode()' - The same conversion chosen by a format code.
void Mag_EncodeByCode(int32_t formatCode, const char* data, TMagTrack* record);
