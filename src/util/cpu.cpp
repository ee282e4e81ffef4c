// What the processor offers beyond the baseline the filter is built for.
// Copyright 2026 The rastertobrellian authors.
#include "util/cpu.h"

#if defined(__x86_64__) || defined(__i386__)
bool Cpu_HaveAvx2() {
  static const bool have = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return have;
}
#else
bool Cpu_HaveAvx2() { return false; }
#endif
