// Magnetic stripe data: track formats, character sets and track records.
// Copyright 2026 The rastertobrellian authors.
#include "options/mag.h"

#include <cstring>

#include "util/str.h"

namespace {

// Character sets: the code of a character is its position in the set.
enum TMagCharset { MAG_SET_NONE, MAG_SET_4BIT, MAG_SET_6BIT, MAG_SET_7BIT };

struct TMagFormat {
  const char* name;
  uint8_t codes[3];   // per track 1-3; 0 = not allowed (except "None")
  TMagCharset charset;
};

const TMagFormat kMagFormats[] = {
    {"None", {0, 0, 0}, MAG_SET_NONE},
    {"ISO6-76", {166, 0, 0}, MAG_SET_6BIT},
    {"ISO7-69", {167, 0, 199}, MAG_SET_7BIT},
    {"ISO6-79", {168, 0, 198}, MAG_SET_6BIT},
    {"ISO4-37", {0, 180, 0}, MAG_SET_4BIT},
    {"ISO4-104", {0, 0, 196}, MAG_SET_4BIT},
};

struct TMagCodeSet {
  uint8_t code;
  TMagCharset charset;
};

const TMagCodeSet kMagCodeSets[] = {
    {166, MAG_SET_6BIT}, {168, MAG_SET_6BIT}, {198, MAG_SET_6BIT}, {180, MAG_SET_4BIT},
    {196, MAG_SET_4BIT}, {167, MAG_SET_7BIT}, {199, MAG_SET_7BIT},
};

constexpr int kMagMaxChars = 127;

// Character -> code maps, -1 for characters outside the set.  Built once by
// Mag_BuildCharsets, read-only afterwards.
int16_t g_magSet4[256];
int16_t g_magSet6[256];
int16_t g_magSet7[256];

// 'Mag_FillSet()' - Map each character of chars to its position.
void Mag_FillSet(int16_t* map, const char* chars, int count) {
  for (int i = 0; i < 256; ++i) map[i] = -1;
  for (int i = 0; i < count; ++i) map[static_cast<unsigned char>(chars[i])] = static_cast<int16_t>(i);
}

const int16_t* Mag_SetMap(TMagCharset charset) {
  switch (charset) {
    case MAG_SET_4BIT: return g_magSet4;
    case MAG_SET_6BIT: return g_magSet6;
    case MAG_SET_7BIT: return g_magSet7;
    default: return nullptr;
  }
}

// 'Mag_Convert()' - Store the codes of data in record (byte 0 already set);
// a too long text or a character outside the set leaves only a status.
void Mag_Convert(TMagCharset charset, const char* data, TMagTrack* record) {
  const int16_t* map = Mag_SetMap(charset);
  if (!map || !data) return;
  for (const char* p = data; *p; ++p) {
    uint8_t status = 0;
    int16_t code = map[static_cast<unsigned char>(*p)];
    if (record->length >= kMagMaxChars)
      status = MAG_STATUS_TOO_LONG;
    else if (code < 0)
      status = MAG_STATUS_BAD_CHAR;
    if (status) {
      memset(record, 0, sizeof *record);
      record->format = status;
      return;
    }
    record->codes[record->length++] = static_cast<uint8_t>(code);
  }
}

}  // namespace

// 'Mag_BuildCharsets()' - Build the 4-bit ("0"-"?"), 6-bit (0x20-0x5F) and
// 7-bit (0x20-0x7F) character maps.
void Mag_BuildCharsets() {
  char chars[96];
  for (int i = 0; i < 96; ++i) chars[i] = static_cast<char>(0x20 + i);
  Mag_FillSet(g_magSet4, "0123456789:;<=>?", 16);
  Mag_FillSet(g_magSet6, chars, 64);
  Mag_FillSet(g_magSet7, chars, 96);
}

// 'Mag_EncodeTrack()' - Check the format name (any case) against the track,
// then convert data.  Byte 0 holds the format code, or status 1-3.
void Mag_EncodeTrack(int32_t track, const char* format, const char* data, TMagTrack* record) {
  if (!record) return;
  memset(record, 0, sizeof *record);
  const TMagFormat* found = nullptr;
  if (track >= 1 && track <= 3) {
    for (const TMagFormat& f : kMagFormats) {
      bool allowed = f.charset == MAG_SET_NONE || f.codes[track - 1] != 0;
      if (allowed && Str_EqualNoCase(format, f.name)) found = &f;
    }
  }
  if (!found) {
    record->format = MAG_STATUS_FORMAT;
    return;
  }
  record->format = found->codes[track - 1];
  Mag_Convert(found->charset, data, record);
}

// 'Mag_EncodeByCode()' - The same conversion chosen by a format code; 0
// stores nothing, an unknown code gives status 1.
void Mag_EncodeByCode(int32_t formatCode, const char* data, TMagTrack* record) {
  if (!record) return;
  memset(record, 0, sizeof *record);
  if (formatCode == 0) return;
  for (const TMagCodeSet& c : kMagCodeSets) {
    if (c.code == formatCode) {
      record->format = c.code;
      Mag_Convert(c.charset, data, record);
      return;
    }
  }
  record->format = MAG_STATUS_FORMAT;
}
