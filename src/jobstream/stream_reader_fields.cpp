// Names, payload lengths and field decoding of the records of a job command stream.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>

#include "jobstream/records.h"
#include "jobstream/stream_reader.h"

namespace {

// Record types: name and exact payload length (-1: ICMD_IMAGE, variable).
struct TRecordKind {
  uint16_t type;
  const char* name;
  int64_t payload;
};

const TRecordKind RECORD_KINDS[] = {
    {ICMD_STARTJOB, "ICMD_STARTJOB", ICMD_STARTJOB_PAYLOAD},
    {ICMD_ENDJOB, "ICMD_ENDJOB", ICMD_ENDJOB_PAYLOAD},
    {ICMD_STARTCARD, "ICMD_STARTCARD", ICMD_STARTCARD_PAYLOAD},
    {ICMD_ENDCARD, "ICMD_ENDCARD", ICMD_ENDCARD_PAYLOAD},
    {ICMD_MAGENCODE, "ICMD_MAGENCODE", ICMD_MAGENCODE_PAYLOAD},
    {ICMD_STARTSIDE, "ICMD_STARTSIDE", ICMD_STARTSIDE_PAYLOAD},
    {ICMD_ENDSIDE, "ICMD_ENDSIDE", ICMD_ENDSIDE_PAYLOAD},
    {ICMD_STARTIMAGE, "ICMD_STARTIMAGE", ICMD_STARTIMAGE_PAYLOAD},
    {ICMD_ENDIMAGE, "ICMD_ENDIMAGE", ICMD_ENDIMAGE_PAYLOAD},
    {ICMD_IMAGE, "ICMD_IMAGE", -1},
    {ICMD_LUTTABLE, "ICMD_LUTTABLE", ICMD_LUTTABLE_PAYLOAD},
};

// 'Stream_FindKind()' - The table entry of a type, or null.
const TRecordKind* Stream_FindKind(uint16_t type) {
  for (const TRecordKind& k : RECORD_KINDS)
    if (k.type == type) return &k;
  return nullptr;
}

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

// 'At()' - A field of a record, given by its offset from the record's first
// byte, inside the payload p.
const uint8_t* At(const uint8_t* p, size_t recordOffset) { return p + recordOffset - ICMD_HEADER_BYTES; }

}  // namespace

// 'Stream_RecordName()' - The name of a type, or null when unknown.
const char* Stream_RecordName(uint16_t type) {
  const TRecordKind* k = Stream_FindKind(type);
  return k ? k->name : nullptr;
}

// 'Stream_PayloadLength()' - Exact payload length of a type; -1 for
// ICMD_IMAGE, -2 for an unknown type.
int64_t Stream_PayloadLength(uint16_t type) {
  const TRecordKind* k = Stream_FindKind(type);
  return k ? k->payload : -2;
}

// 'Stream_DecodeStartJob()' - Model, job id, copies and strings.
bool Stream_DecodeStartJob(const TStreamRecord& rec, TStartJobFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTJOB, ICMD_STARTJOB_PAYLOAD);
  if (!p) return false;
  out->formatWord = Rec_Get32(At(p, STARTJOB_FORMAT));
  out->printer = Rec_Get32(At(p, STARTJOB_PRINTER));
  out->jobId = Rec_Get32(At(p, STARTJOB_JOBID));
  out->copies = Rec_Get32(At(p, STARTJOB_COPIES));
  out->title = Fields_String(At(p, STARTJOB_TITLE), ICMD_STRING_BYTES);
  out->plugin = Fields_String(At(p, STARTJOB_PLUGIN), ICMD_STRING_BYTES);
  out->queue = Fields_String(At(p, STARTJOB_QUEUE), ICMD_STRING_BYTES);
  return true;
}

// 'Stream_DecodeStartCard()' - Card id, copies and card flags.
bool Stream_DecodeStartCard(const TStreamRecord& rec, TStartCardFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTCARD, ICMD_STARTCARD_PAYLOAD);
  if (!p) return false;
  out->cardId = Rec_Get64(At(p, STARTCARD_ID));
  out->copies = Rec_Get32(At(p, STARTCARD_COPIES));
  out->entryFlip = *At(p, STARTCARD_ENTRY_FLIP);
  out->magEncodeFlip = *At(p, STARTCARD_MAG_FLIP);
  out->duplex = *At(p, STARTCARD_DUPLEX);
  out->laminate = *At(p, STARTCARD_LAMINATE);
  out->magEncode = *At(p, STARTCARD_MAG_ENCODE);
  out->magPOMode = *At(p, STARTCARD_MAG_PO_MODE);
  out->cardThickness = *At(p, STARTCARD_THICKNESS);
  out->ejectExisting = *At(p, STARTCARD_EJECT);
  return true;
}

// 'Stream_DecodeStartSide()' - Side number and side flags.
bool Stream_DecodeStartSide(const TStreamRecord& rec, TStartSideFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTSIDE, ICMD_STARTSIDE_PAYLOAD);
  if (!p) return false;
  out->side = static_cast<int32_t>(Rec_Get32(At(p, STARTSIDE_SIDE)));
  out->ymc = *At(p, STARTSIDE_YMC);
  out->k = *At(p, STARTSIDE_K);
  out->uv = *At(p, STARTSIDE_UV);
  out->po = *At(p, STARTSIDE_PO);
  out->mac = *At(p, STARTSIDE_MAC);
  out->secureErase = *At(p, STARTSIDE_SECURE_ERASE);
  out->lut = *At(p, STARTSIDE_LUT);
  return true;
}

// 'Stream_DecodeStartImage()' - Width, height and panel type.
bool Stream_DecodeStartImage(const TStreamRecord& rec, TStartImageFields* out) {
  const uint8_t* p = Fields_Payload(rec, ICMD_STARTIMAGE, ICMD_STARTIMAGE_PAYLOAD);
  if (!p) return false;
  out->width = Rec_Get16(At(p, STARTIMAGE_WIDTH));
  out->height = Rec_Get16(At(p, STARTIMAGE_HEIGHT));
  out->panel = *At(p, STARTIMAGE_PANEL);
  return true;
}

// 'Stream_DecodeEndSide()' - The side that ICMD_ENDSIDE closes.
bool Stream_DecodeEndSide(const TStreamRecord& rec, int32_t* side) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDSIDE, ICMD_ENDSIDE_PAYLOAD);
  if (p) *side = static_cast<int32_t>(Rec_Get32(p));
  return p != nullptr;
}

// 'Stream_DecodeEndJob()' - The job id of ICMD_ENDJOB.
bool Stream_DecodeEndJob(const TStreamRecord& rec, uint32_t* jobId) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDJOB, ICMD_ENDJOB_PAYLOAD);
  if (p) *jobId = Rec_Get32(p);
  return p != nullptr;
}

// 'Stream_DecodeEndCard()' - The card id of ICMD_ENDCARD.
bool Stream_DecodeEndCard(const TStreamRecord& rec, uint64_t* cardId) {
  const uint8_t* p = Fields_Payload(rec, ICMD_ENDCARD, ICMD_ENDCARD_PAYLOAD);
  if (p) *cardId = Rec_Get64(p);
  return p != nullptr;
}

// 'Stream_DecodeMagEncode()' - The three track records.
bool Stream_DecodeMagEncode(const TStreamRecord& rec, TMagTrackFields tracks[3]) {
  const uint8_t* p = Fields_Payload(rec, ICMD_MAGENCODE, ICMD_MAGENCODE_PAYLOAD);
  if (!p) return false;
  for (int i = 0; i < 3; ++i) {
    const uint8_t* t = At(p, MAGENCODE_TRACK1) + 130 * i;
    tracks[i].format = t[0];
    tracks[i].length = t[1];
    tracks[i].chars.assign(t + 2, t + 130);
  }
  return true;
}

// 'Stream_DecodeLUTTable()' - The red, green and blue tables.
bool Stream_DecodeLUTTable(const TStreamRecord& rec, uint8_t red[256], uint8_t green[256], uint8_t blue[256]) {
  const uint8_t* p = Fields_Payload(rec, ICMD_LUTTABLE, ICMD_LUTTABLE_PAYLOAD);
  if (!p) return false;
  memcpy(red, p, 256);
  memcpy(green, p + 256, 256);
  memcpy(blue, p + 512, 256);
  return true;
}
