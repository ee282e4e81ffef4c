// Streamed raster jobs wait for their turn instead of being refused as busy.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// 'StreamQueue_Active()' - Whether streamed PWG and Apple raster jobs
// wait for a busy printer (built against PAPPL 1.3, whose own handling
// this replaces).  main() calls it, which also keeps the replacement in
// the executable.
bool StreamQueue_Active();

// How long a streamed job waits for the printer before PAPPL's own
// answer (server-error-busy) is given.
constexpr int STREAMQUEUE_MAX_WAIT_SECONDS = 600;
