// Time and sleep helpers shared by every subsystem.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// 'Sys_NowMs()' - Wall-clock time in milliseconds: seconds * 1000 plus
// microseconds / 1000.
uint64_t Sys_NowMs();

// 'Sys_SleepMs()' - Sleep for the given milliseconds; an interrupted sleep
// goes on for the time that remains.
void Sys_SleepMs(uint32_t ms);
