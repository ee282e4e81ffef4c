// Reading and writing PNG images as 8-bit RGB or grey pixels.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// An 8-bit image, rows top-down, channels bytes per pixel (3 RGB, 1 grey).
struct TPngImage {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t channels = 0;
  std::vector<uint8_t> pixels;
};

// Largest PNG file the readers accept.
constexpr size_t PNG_MAX_FILE_BYTES = 256u * 1024u * 1024u;
// Largest image (width x height) the readers accept.
constexpr uint64_t PNG_MAX_PIXELS = 64u * 1024u * 1024u;

// 'Png_DecodeRGB()' - Decode a PNG held in memory into 8-bit RGB (grey,
// palette and 16-bit images are converted; alpha is laid over white).
// False with a message in *error when the bytes are not a readable PNG.
bool Png_DecodeRGB(const std::string& bytes, TPngImage* out, std::string* error);

// 'Png_DecodeGray()' - The same into 8-bit grey (colour is converted to its
// luminance by libpng).
bool Png_DecodeGray(const std::string& bytes, TPngImage* out, std::string* error);

// 'Png_ReadRGB()' - Read the PNG file at path into 8-bit RGB.
bool Png_ReadRGB(const std::string& path, TPngImage* out, std::string* error);

// 'Png_EncodeRGB()'/'Png_EncodeGray()' - Encode width x height pixels (3 or
// 1 bytes each, rows directly after each other) as an 8-bit PNG into *out.
bool Png_EncodeRGB(uint32_t width, uint32_t height, const uint8_t* rgb, std::string* out);
bool Png_EncodeGray(uint32_t width, uint32_t height, const uint8_t* gray, std::string* out);

// 'Png_WriteRGB()'/'Png_WriteGray()' - Encode and write to the file at path
// (created or replaced; a symbolic link or special file there is refused).
bool Png_WriteRGB(const std::string& path, uint32_t width, uint32_t height, const uint8_t* rgb);
bool Png_WriteGray(const std::string& path, uint32_t width, uint32_t height, const uint8_t* gray);
