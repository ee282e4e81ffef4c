// Plain texts handed out in the status lookups' result slots.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstring>

#include "status/slots.h"
#include "status/tables.h"

// 'Status_CopyText()' - Copy at most length characters of text, stopping at
// its terminating zero and at the slot's last byte.  A null text or a
// negative length gives the empty string.
const char* Status_CopyText(const char* text, int32_t length) {
  char* out = Status_TakeSlot();
  if (!text || length <= 0) return out;
  size_t limit = static_cast<size_t>(length);
  if (limit > STATUS_SLOT_BYTES - 1) limit = STATUS_SLOT_BYTES - 1;
  memcpy(out, text, strnlen(text, limit));
  return out;
}

// 'Status_IntText()' - value in decimal.
const char* Status_IntText(int32_t value) {
  char* out = Status_TakeSlot();
  snprintf(out, STATUS_SLOT_BYTES, "%d", value);
  return out;
}

// 'Status_TimeText()' - units counts five minutes: units / 12 hours and
// (units mod 12) x 5 minutes, as "%d:%02d:00".  C division: a negative count
// gives a negative hour and minute, e.g. -13 gives "-1:-5:00".
const char* Status_TimeText(int32_t units) {
  char* out = Status_TakeSlot();
  snprintf(out, STATUS_SLOT_BYTES, "%d:%02d:00", units / 12, (units % 12) * 5);
  return out;
}
