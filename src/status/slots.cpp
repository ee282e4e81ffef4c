// The ring of result slots used by the status lookups.
// Copyright 2026 The rastertobrellian authors.
#include "status/slots.h"

#include <cstring>
#include <mutex>

#include "status/tables.h"

namespace {

char g_statusSlots[STATUS_SLOTS][STATUS_SLOT_BYTES];
int32_t g_statusSlotCounter = 0;
std::mutex g_statusSlotMutex;

}  // namespace

// 'Status_NextSlot()' - Return the slot counter and advance it, from
// STATUS_SLOTS - 1 back to 0.  Only the counter is locked: a slot's text is
// not protected once handed out.
int32_t Status_NextSlot() {
  std::lock_guard<std::mutex> lock(g_statusSlotMutex);
  int32_t slot = g_statusSlotCounter;
  g_statusSlotCounter = (g_statusSlotCounter + 1) % STATUS_SLOTS;
  return slot;
}

// 'Status_TakeSlot()' - The next slot, cleared to zeros.
char* Status_TakeSlot() {
  char* slot = g_statusSlots[Status_NextSlot()];
  memset(slot, 0, STATUS_SLOT_BYTES);
  return slot;
}
