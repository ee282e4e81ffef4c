// Reading and writing PNG images as 8-bit RGB or grey pixels.
// Copyright 2026 The rastertobrellian authors.
#include "lib/png_io.h"

#include <cerrno>
#include <cstring>

#include <png.h>

#include "lib/tool_file.h"
#include "util/safe_file.h"

// 'Png_Decode()' - Decode bytes into the given simplified-API format.
static bool Png_Decode(const std::string& bytes, uint32_t format, uint32_t channels, TPngImage* out,
                       std::string* error) {
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size())) {
    if (error) *error = image.message;
    return false;
  }
  if (static_cast<uint64_t>(image.width) * image.height > PNG_MAX_PIXELS) {
    if (error) *error = "image too large";
    png_image_free(&image);
    return false;
  }
  image.format = format;
  out->width = image.width;
  out->height = image.height;
  out->channels = channels;
  out->pixels.assign(PNG_IMAGE_SIZE(image), 0);
  png_color white = {255, 255, 255};
  if (!png_image_finish_read(&image, &white, out->pixels.data(), 0, nullptr)) {
    if (error) *error = image.message;
    png_image_free(&image);
    out->pixels.clear();
    return false;
  }
  return true;
}

// 'Png_DecodeRGB()' - Decode PNG bytes into 8-bit RGB.
bool Png_DecodeRGB(const std::string& bytes, TPngImage* out, std::string* error) {
  return Png_Decode(bytes, PNG_FORMAT_RGB, 3, out, error);
}

// 'Png_DecodeGray()' - Decode PNG bytes into 8-bit grey.
bool Png_DecodeGray(const std::string& bytes, TPngImage* out, std::string* error) {
  return Png_Decode(bytes, PNG_FORMAT_GRAY, 1, out, error);
}

// 'Png_ReadRGB()' - Read a PNG file (capped) into 8-bit RGB.
bool Png_ReadRGB(const std::string& path, TPngImage* out, std::string* error) {
  std::string bytes;
  if (File_ReadCapped(path.c_str(), PNG_MAX_FILE_BYTES, &bytes) != 0) {
    if (error) *error = std::string("cannot read ") + path + ": " + strerror(errno);
    return false;
  }
  return Png_DecodeRGB(bytes, out, error);
}

// 'Png_Encode()' - Encode pixels of the given simplified-API format.
static bool Png_Encode(uint32_t width, uint32_t height, const uint8_t* pixels, uint32_t format,
                       std::string* out) {
  if (!out || !pixels || width == 0 || height == 0) return false;
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = width;
  image.height = height;
  image.format = format;
  png_alloc_size_t size = 0;
  if (!png_image_write_to_memory(&image, nullptr, &size, 0, pixels, 0, nullptr)) return false;
  out->assign(size, '\0');
  if (!png_image_write_to_memory(&image, &(*out)[0], &size, 0, pixels, 0, nullptr)) return false;
  out->resize(size);
  return true;
}

// 'Png_EncodeRGB()' - Encode 8-bit RGB pixels as PNG bytes.
bool Png_EncodeRGB(uint32_t width, uint32_t height, const uint8_t* rgb, std::string* out) {
  return Png_Encode(width, height, rgb, PNG_FORMAT_RGB, out);
}

// 'Png_EncodeGray()' - Encode 8-bit grey pixels as PNG bytes.
bool Png_EncodeGray(uint32_t width, uint32_t height, const uint8_t* gray, std::string* out) {
  return Png_Encode(width, height, gray, PNG_FORMAT_GRAY, out);
}

// 'Png_WriteRGB()' - Encode RGB pixels into a PNG file.
bool Png_WriteRGB(const std::string& path, uint32_t width, uint32_t height, const uint8_t* rgb) {
  std::string bytes;
  return Png_EncodeRGB(width, height, rgb, &bytes) && Tool_WriteFile(path, bytes);
}

// 'Png_WriteGray()' - Encode grey pixels into a PNG file.
bool Png_WriteGray(const std::string& path, uint32_t width, uint32_t height, const uint8_t* gray) {
  std::string bytes;
  return Png_EncodeGray(width, height, gray, &bytes) && Tool_WriteFile(path, bytes);
}
