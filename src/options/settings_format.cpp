// TBrellianSettings file format on a memory image: pure byte parsing.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "options/settings.h"

namespace {

constexpr char kMagic[8] = {'E', 'R', 'A', 'W', 'T', 'F', 'O', 'S'};
constexpr uint32_t kVersionWithPlugin = 0x00010000;    // plugin above this
constexpr uint32_t kVersionWithNumbers = 0x00010001;   // numbers above this

// A cursor over the file image that never reads past its end.  Once a
// length can't be trusted (it runs past the end of the data) the reader
// stops: every later entry is left as it is (empty, numbers -1).
struct TSettingsReader {
  const uint8_t* data;
  size_t size;
  size_t pos;
  bool stopped;

  bool Take(size_t n, const uint8_t** out) {
    if (stopped || n > size - pos) {
      stopped = true;
      return false;
    }
    *out = data + pos;
    pos += n;
    return true;
  }

  bool U32(uint32_t* value) {
    const uint8_t* p;
    if (!Take(4, &p)) return false;
    *value = static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
             static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
    return true;
  }

  // 'String()' - One entry: a length L and L bytes holding the text and its
  // zero.  An entry longer than SETTINGS_STRING_MAX or without a zero byte
  // is skipped and left empty; the next entry is read after it.
  void String(std::string* out) {
    uint32_t length;
    const uint8_t* p;
    if (!U32(&length) || !Take(length, &p)) return;
    if (length == 0 || length > SETTINGS_STRING_MAX) return;
    const void* zero = memchr(p, 0, length);
    if (!zero) return;
    out->assign(reinterpret_cast<const char*>(p), static_cast<const uint8_t*>(zero) - p);
  }
};

void Store_PutU32(std::string* out, uint32_t value) {
  for (int i = 0; i < 4; ++i) out->push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

void Store_PutString(std::string* out, const std::string& text) {
  size_t n = strnlen(text.c_str(), text.size());
  Store_PutU32(out, static_cast<uint32_t>(n + 1));
  out->append(text.c_str(), n);
  out->push_back('\0');
}

}  // namespace

// 'LoadFromBytes()' - Reset, then read the header, the flags and every
// entry of the image.  Whatever the image can't supply is left empty.  The
// names are not touched.
void TBrellianSettings::LoadFromBytes(const uint8_t* data, size_t size) {
  std::string model = modelName, serial = serialNumber;
  Reset();
  modelName = model;
  serialNumber = serial;
  if (!data) return;
  TSettingsReader r{data, size, 0, false};
  const uint8_t* p;
  uint32_t version = 0;
  if (!r.Take(sizeof kMagic, &p) || !r.U32(&version)) return;
  if (!r.Take(SETTINGS_FLAGS, &p)) return;
  memcpy(flags, p, SETTINGS_FLAGS);
  for (auto& preset : resinAreas)
    for (auto& group : preset)
      for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) r.String(&group[k]);
  for (auto& preset : poAreas)
    for (auto& group : preset)
      for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) r.String(&group[k]);
  for (auto& name : lutNames) r.String(&name);
  for (auto& name : uvNames) r.String(&name);
  if (version > kVersionWithPlugin) r.String(&plugin);
  if (version > kVersionWithNumbers) {
    uint32_t thickness, mode;
    if (r.U32(&thickness) && r.U32(&mode)) {
      cardThickness = static_cast<int32_t>(thickness);
      magPOMode = static_cast<int32_t>(mode);
    }
  }
}

// 'SaveToBytes()' - The file image of the current settings, version
// SETTINGS_VERSION.  Only the first SETTINGS_FILE_AREAS areas of a group
// are kept.  A text is written up to its first zero byte.
std::string TBrellianSettings::SaveToBytes() const {
  std::string out(kMagic, sizeof kMagic);
  Store_PutU32(&out, SETTINGS_VERSION);
  out.append(reinterpret_cast<const char*>(flags), SETTINGS_FLAGS);
  for (const auto& preset : resinAreas)
    for (const auto& group : preset)
      for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) Store_PutString(&out, group[k]);
  for (const auto& preset : poAreas)
    for (const auto& group : preset)
      for (int k = 0; k < SETTINGS_FILE_AREAS; ++k) Store_PutString(&out, group[k]);
  for (const auto& name : lutNames) Store_PutString(&out, name);
  for (const auto& name : uvNames) Store_PutString(&out, name);
  Store_PutString(&out, plugin);
  Store_PutU32(&out, static_cast<uint32_t>(cardThickness));
  Store_PutU32(&out, static_cast<uint32_t>(magPOMode));
  return out;
}
