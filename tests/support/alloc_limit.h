// An allocation budget for the out-of-memory tests of the image stages.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>

// 'Test_LimitAllocations()' - From now on, every malloc, calloc, realloc and
// aligned allocation of this process fails (null, ENOMEM) once the bytes
// asked for since this call would exceed budget; freed bytes are not given
// back.  Meant for a forked child.  Returns false where the process's
// allocator cannot be replaced (sanitizer builds).
bool Test_LimitAllocations(size_t budget);
