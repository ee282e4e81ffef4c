// Reading raster header fields whose C type is an enumeration.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <cstring>

// 'Header_Word()' - The 32-bit value a raster header field holds, read as
// bytes.  Fields such as Duplex, Tumble or cupsColorSpace are declared as
// enumerations, but the raster library copies them from the stream
// unchecked; reading an out-of-range value through the enumeration type is
// undefined in C++, so the filter reads them as plain words.
template <typename T>
inline uint32_t Header_Word(const T& field) {
  static_assert(sizeof(T) == sizeof(uint32_t), "raster header fields are 32-bit");
  uint32_t value;
  memcpy(&value, &field, sizeof value);
  return value;
}
