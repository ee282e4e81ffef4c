// Writing one command record whole, whatever signal arrives meanwhile.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

// 'Rec_WriteWhole()' - Write one record to out: its header bytes, then its
// payload bytes (payload may be null when payloadBytes is 0), then, when
// flush is set, push out everything buffered.  The signals whose handlers
// end the process are held back until the last byte has been handed to
// out, so a termination request can only end the process between two
// records: the output buffer then always ends on a record boundary, and
// the exit handler's flush (Rec_FlushWhole) completes the stream with
// whole records only.  Write errors are not reported: the job goes on.
void Rec_WriteWhole(FILE* out, const uint8_t* header, size_t headerBytes, const uint8_t* payload,
                    size_t payloadBytes, bool flush);

// 'Rec_FlushWhole()' - Push out what out still buffers, with the same
// signals held back; called on the way out of the process.
void Rec_FlushWhole(FILE* out);
