// What the processor offers beyond the baseline the filter is built for.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// 'Cpu_HaveAvx2()' - True when the processor (and the system) can run AVX2
// code.  The imaging stages that have an AVX2 way take it only then; both
// ways give the same bytes.
bool Cpu_HaveAvx2();
