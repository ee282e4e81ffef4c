// Writing one command record whole, whatever signal arrives meanwhile.
// Copyright 2026 The rastertobrellian authors.
#include "jobstream/record_out.h"

#include "util/signal_block.h"

// 'Rec_WriteWhole()' - Header and payload under one signal block.  A write
// to a pipe whose reader is slow blocks inside the block; the signal that
// arrives meanwhile is delivered once the record is out of the way.
void Rec_WriteWhole(FILE* out,              // I - Job command stream
                    const uint8_t* header,  // I - Record header (or whole record)
                    size_t headerBytes,     // I - Its size
                    const uint8_t* payload, // I - Payload written after it, or null
                    size_t payloadBytes,    // I - Its size
                    bool flush) {           // I - Flush out afterwards
  if (!out) return;
  TSignalBlock hold;
  size_t unused = fwrite(header, 1, headerBytes, out);
  if (payload && payloadBytes) unused = fwrite(payload, 1, payloadBytes, out);
  (void)unused;
  if (flush) fflush(out);
}

void Rec_FlushWhole(FILE* out) {
  if (!out) return;
  TSignalBlock hold;
  fflush(out);
}
