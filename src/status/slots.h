// The result slots shared by the status lookups.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// 'Status_TakeSlot()' - The next result slot, cleared to zeros.  It holds
// STATUS_SLOT_BYTES bytes and is reused after STATUS_SLOTS further calls.
char* Status_TakeSlot();
