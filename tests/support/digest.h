// The one digest of the tests: 64-bit FNV-1a of bytes.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The FNV-1a offset basis: the digest of no bytes.
constexpr uint64_t TEST_FNV_START = 14695981039346656037ull;

// 'Test_Fnv()' - 64-bit FNV-1a of n bytes, continuing from hash (so that a
// digest can be taken piece by piece).
inline uint64_t Test_Fnv(const uint8_t* p, size_t n, uint64_t hash = TEST_FNV_START) {
  for (size_t i = 0; i < n; ++i) hash = (hash ^ p[i]) * 1099511628211ull;
  return hash;
}

// 'Test_Fnv()' - The same digest of a string's bytes.
inline uint64_t Test_Fnv(const std::string& bytes, uint64_t hash = TEST_FNV_START) {
  return Test_Fnv(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), hash);
}
