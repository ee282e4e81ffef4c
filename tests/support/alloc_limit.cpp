// An allocation budget for the out-of-memory tests of the image stages: the
// test binary's allocation functions forward to the C library's own and
// refuse requests past the budget.  Unlike an address-space limit, the
// budget does not depend on what earlier tests left in the allocator's
// free lists, so the tests give the same result in any order.
// Copyright 2026 The rastertobrellian authors.
#include "support/alloc_limit.h"

#if defined(__SANITIZE_ADDRESS__)

bool Test_LimitAllocations(size_t) { return false; }

#else

#include <cerrno>
#include <cstdint>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* p, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

bool g_limitOn = false;
size_t g_budget = 0;

// 'Limit_Take()' - True when size bytes fit in what is left of the budget
// (and takes them), or when no budget is set.
bool Limit_Take(size_t size) {
  if (!g_limitOn) return true;
  if (size > g_budget) {
    errno = ENOMEM;
    return false;
  }
  g_budget -= size;
  return true;
}

}  // namespace

bool Test_LimitAllocations(size_t budget) {
  g_budget = budget;
  g_limitOn = true;
  return true;
}

extern "C" {

void* malloc(size_t size) { return Limit_Take(size) ? __libc_malloc(size) : nullptr; }

void* calloc(size_t count, size_t size) {
  if (size != 0 && count > SIZE_MAX / size) return __libc_calloc(count, size);
  return Limit_Take(count * size) ? __libc_calloc(count, size) : nullptr;
}

void* realloc(void* p, size_t size) { return Limit_Take(size) ? __libc_realloc(p, size) : nullptr; }

void* aligned_alloc(size_t alignment, size_t size) {
  return Limit_Take(size) ? __libc_memalign(alignment, size) : nullptr;
}

void* memalign(size_t alignment, size_t size) {
  return Limit_Take(size) ? __libc_memalign(alignment, size) : nullptr;
}

int posix_memalign(void** out, size_t alignment, size_t size) {
  if (!Limit_Take(size)) return ENOMEM;
  void* p = __libc_memalign(alignment, size);
  if (!p) return ENOMEM;
  *out = p;
  return 0;
}

}  // extern "C"

#endif
