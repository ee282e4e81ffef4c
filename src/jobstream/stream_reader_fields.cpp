// Decoding the fields of the fixed records of a job command stream.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "jobstream/records.h"
#include "jobstream/stream_reader.h"

namespace {

// 'Fields_Payload()' - The payload of rec when it has the given type and
// exactly the given length, else null.
const uint8_t* Fields_Payload(const TStreamRecord& rec, uint16_t type, uint32_t length) {
  if (rec.type != type || rec.length != length || rec.payload.size() != length) return nullptr;
  return rec.payload.data();
}

// 'Fields_String()' - A zero-terminated string field of at most size bytes.
std::string Fields_String(const uint8_t* p, size_t size) {
  const void* zero = memchr(p, 0, size);
  size_t n = zero ? static_cast<size_t>(static_cast<const uint8_t*>(zero) - p) : size;
  return std::string(reinterpret_cast<const char*>(p), n);
}

}  // namespace

bool Stream_DecodeStartJob(const TStreamRecord& rec, TStartJobFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTJOB, ICMD_STARTJOB_PAYLOAD);
  if (!p) return false;
  out->formatWord = Rec_Get32(p);
  out->printer = Rec_Get32(p + 8);
  out->jobId = Rec_Get32(p + 12);
  out->copies = Rec_Get32(p + 16);
  out->title = Fields_String(p + 21, ICMD_STRING_BYTES);
  out->plugin = Fields_String(p + 149, ICMD_STRING_BYTES);
  out->queue = Fields_String(p + 277, ICMD_STRING_BYTES);
  return true;
}

bool Stream_DecodeStartCard(const TStreamRecord& rec, TStartCardFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTCARD, ICMD_STARTCARD_PAYLOAD);
  if (!p) return false;
  out->cardId = Rec_Get64(p);
  out->copies = Rec_Get32(p + 8);
  out->entryFlip = p[12];
  out->magEncodeFlip = p[13];
  out->duplex = p[14];
  out->laminate = p[15];
  out->magEncode = p[16];
  out->magPOMode = p[17];
  out->cardThickness = p[18];
  out->ejectExisting = p[19];
  return true;
}

bool Stream_DecodeStartSide(const TStreamRecord& rec, TStartSideFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTSIDE, ICMD_STARTSIDE_PAYLOAD);
  if (!p) return false;
  out->side = static_cast<int32_t>(Rec_Get32(p));
  out->ymc = p[4];
  out->k = p[5];
  out->uv = p[6];
  out->po = p[7];
  out->mac = p[8];
  out->secureErase = p[9];
  out->lut = p[10];
  return true;
}

bool Stream_DecodeStartImage(const TStreamRecord& rec, TStartImageFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTIMAGE, ICMD_STARTIMAGE_PAYLOAD);
  if (!p) return false;
  out->width = Rec_Get16(p);
  out->height = Rec_Get16(p + 2);
  out->panel = p[4];
  return true;
}

bool Stream_DecodeEndSide(const TStreamRecord& rec, int32_t* side) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDSIDE, ICMD_ENDSIDE_PAYLOAD);
  if (p) *side = static_cast<int32_t>(Rec_Get32(p));
  return p != nullptr;
}

bool Stream_DecodeEndJob(const TStreamRecord& rec, uint32_t* jobId) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDJOB, ICMD_ENDJOB_PAYLOAD);
  if (p) *jobId = Rec_Get32(p);
  return p != nullptr;
}

bool Stream_DecodeEndCard(const TStreamRecord& rec, uint64_t* cardId) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDCARD, ICMD_ENDCARD_PAYLOAD);
  if (p) *cardId = Rec_Get64(p);
  return p != nullptr;
}

bool Stream_DecodeMagEncode(const TStreamRecord& rec, TMagTrackFields tracks[3]) {
  const uint8_t* p = Fields_Payload(rec, ICMD_MAGENCODE, ICMD_MAGENCODE_PAYLOAD);
  if (!p) return false;
  for (int i = 0; i < 3; ++i) {
    const uint8_t* t = p + 130 * i;
    tracks[i].format = t[0];
    tracks[i].length = t[1];
    tracks[i].chars.assign(t + 2, t + 130);
  }
  return true;
}

bool Stream_DecodeLUTTable(const TStreamRecord& rec, uint8_t red[256], uint8_t green[256], uint8_t blue[256]) {
  const uint8_t* p = Fields_Payload(rec, ICMD_LUTTABLE, ICMD_LUTTABLE_PAYLOAD);
  if (!p) return false;
  memcpy(red, p, 256);
  memcpy(green, p + 256, 256);
  memcpy(blue, p + 512, 256);
  return true;
}
