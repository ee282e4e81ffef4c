// In-place string helpers shared by every subsystem.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// 'Str_ToLower()' - Lower-case an ASCII string in place.  Null is ignored.
void Str_ToLower(char* s);
void Str_ToLower(std::string& s);

// 'Str_TrimSpaces()' - Remove leading and trailing space characters (0x20
// only; tabs stay) in place.  Null is ignored.
void Str_TrimSpaces(char* s);

// 'Str_StripEOL()' - Remove trailing carriage returns and line feeds in
// place.  Null is ignored.
void Str_StripEOL(char* s);

// 'Str_EqualNoCase()' - True when a and b are equal ignoring ASCII case.
// Null equals nothing.
bool Str_EqualNoCase(const char* a, const char* b);

// 'Str_CopyBounded()' - Copy at most size - 1 bytes of src into dst and
// terminate it; a null src gives an empty string.  size 0 does nothing.
void Str_CopyBounded(char* dst, const char* src, size_t size);
