// Magnetic stripe data (not yet implemented).
// Copyright 2026 The rastertobrellian authors.
#include "options/mag.h"

void Mag_BuildCharsets() {}
