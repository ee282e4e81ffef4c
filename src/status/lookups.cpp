// Text lookups of the printer status vocabulary.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstring>

#include "status/slots.h"
#include "status/tables.h"

namespace {

// 'Status_Find()' - The message of key in map, or null.
template <typename TKey>
const char* Status_Find(const std::map<TKey, std::string>& map, TKey key) {
  auto it = map.find(key);
  return it == map.end() ? nullptr : it->second.c_str();
}

// 'Status_Append()' - Append text to a slot's string, cut at the slot's end.
void Status_Append(char* out, const char* text) {
  size_t used = strnlen(out, STATUS_SLOT_BYTES - 1);
  size_t n = strnlen(text, STATUS_SLOT_BYTES - 1 - used);
  memcpy(out + used, text, n);
  out[used + n] = '\0';
}

// The formatters below write into a buffer of STATUS_SLOT_BYTES bytes, so
// that a lookup made of others still takes one slot only.

void Status_FormatLaminator(char* out, uint8_t status, uint8_t error) {
  const char* text;
  if (status < 0xFF) {
    if ((text = Status_Find(g_laminatorStatusMessages, status)))
      snprintf(out, STATUS_SLOT_BYTES, "%s", text);
    else
      snprintf(out, STATUS_SLOT_BYTES, "Undefined laminator status (%02X)", status);
  } else if ((text = Status_Find(g_laminatorErrorMessages, error))) {
    snprintf(out, STATUS_SLOT_BYTES, "%s", text);
  } else {
    snprintf(out, STATUS_SLOT_BYTES, "Undefined laminator error (%02X)", error);
  }
}

void Status_FormatSense(char* out, uint8_t key, uint8_t code) {
  const char* text;
  if (key == 0xFD) {
    // A laminator status reported as a sense pair carries no error byte.
    Status_FormatLaminator(out, code, 0);
  } else if (key == 0xFE) {
    Status_FormatLaminator(out, 0xFF, code);
  } else if (key == 0xFF) {
    snprintf(out, STATUS_SLOT_BYTES, "Hardware mismatch (%02X)", code);
  } else if ((text = Status_Find(g_senseMessages, static_cast<uint16_t>(key * 256 + code)))) {
    snprintf(out, STATUS_SLOT_BYTES, "%s", text);
  } else {
    snprintf(out, STATUS_SLOT_BYTES, "Undefined sense key (%02X,%02X)", key, code);
  }
}

}  // namespace

// 'Status_SenseKeyWithCodes()' - The sense message followed by both bytes.
const char* Status_SenseKeyWithCodes(uint8_t key, uint8_t code) {
  char* out = Status_TakeSlot();
  const char* text = Status_Find(g_senseMessages, static_cast<uint16_t>(key * 256 + code));
  if (text)
    snprintf(out, STATUS_SLOT_BYTES, "%s (%02X,%02X)", text, key, code);
  else
    snprintf(out, STATUS_SLOT_BYTES, "Undefined sense key (%02X,%02X)", key, code);
  return out;
}

// 'Status_LaminatorText()' - Status below 0xFF: its message; 0xFF: the
// message of the error byte.
const char* Status_LaminatorText(uint8_t status, uint8_t error) {
  char* out = Status_TakeSlot();
  Status_FormatLaminator(out, status, error);
  return out;
}

// 'Status_SenseText()' - Key 0xFD: laminator status of code (as
// Status_LaminatorText(code, 0)); 0xFE: laminator error of code; 0xFF:
// hardware mismatch; any other key: the sense message.
const char* Status_SenseText(uint8_t key, uint8_t code) {
  char* out = Status_TakeSlot();
  Status_FormatSense(out, key, code);
  return out;
}

// 'Status_SenseTextPacked()' - Sense key in bits 8-15, code in bits 0-7.
const char* Status_SenseTextPacked(uint16_t value) {
  return Status_SenseText(static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value & 0xFF));
}

// 'Status_PrinterText()' - The printer status message; for status 0xFF the
// sense text follows after "<br>" (the text is shown in a page).
const char* Status_PrinterText(uint8_t status, uint8_t key, uint8_t code) {
  char* out = Status_TakeSlot();
  const char* text = Status_Find(g_printerStatusMessages, status);
  if (text)
    snprintf(out, STATUS_SLOT_BYTES, "%s", text);
  else
    snprintf(out, STATUS_SLOT_BYTES, "Undefined printer status (%02X)", status);
  if (status == 0xFF) {
    char sense[STATUS_SLOT_BYTES];
    Status_FormatSense(sense, key, code);
    Status_Append(out, "<br>");
    Status_Append(out, sense);
  }
  return out;
}

// 'Status_RibbonText()' - The ribbon type name, or "UNDEFINED[CC]".
const char* Status_RibbonText(uint8_t code) {
  char* out = Status_TakeSlot();
  const char* text = Status_Find(g_ribbonTypeNames, code);
  if (text)
    snprintf(out, STATUS_SLOT_BYTES, "%s", text);
  else
    snprintf(out, STATUS_SLOT_BYTES, "UNDEFINED[%02X]", code);
  return out;
}
