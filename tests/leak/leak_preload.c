/* A library that leaks on purpose once it is loaded: preloaded into the
 * sanitized filter, it shows whether the filter's own leak check runs.
 * Copyright 2026 The rastertobrellian authors. */
#include <stdlib.h>
#include <string.h>

/* Where each block passes through before its last pointer is dropped. */
void* volatile g_leakSink;

/* 'Leak_AtLoad()' - Allocate eight blocks and forget them. */
__attribute__((constructor)) static void Leak_AtLoad(void) {
  for (int i = 0; i < 8; ++i) {
    char* block = malloc(4096 + (size_t)i);
    if (block) memset(block, 0x5A, 4096 + (size_t)i);
    g_leakSink = block;
  }
  g_leakSink = NULL;
}
