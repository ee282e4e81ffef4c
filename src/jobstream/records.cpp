// Builders of the command records of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#include "jobstream/records.h"

#include <cstring>

namespace {

// 'Rec_Flag()' - One-byte flag: 1 for a non-zero option, else 0.
inline uint8_t Rec_Flag(int32_t value) { return value != 0 ? 1 : 0; }

// 'Rec_LowByte()' - The low byte of a 32-bit option.
inline uint8_t Rec_LowByte(int32_t value) { return static_cast<uint8_t>(value); }

// 'Rec_PutString()' - Copy text into a field of ICMD_STRING_BYTES bytes: at
// most 127 characters, then the terminating zero.  Null leaves the field 0.
void Rec_PutString(uint8_t* field, const char* text) {
  if (!text) return;
  size_t n = strnlen(text, ICMD_STRING_BYTES - 1);
  memcpy(field, text, n);
  field[n] = 0;
}

}  // namespace

void Rec_StartJob(uint8_t* record, int32_t printer, int32_t jobId, int32_t copies,
                  const char* title, const char* plugin, const char* queue) {
  memset(record, 0, ICMD_STARTJOB_BYTES);
  Rec_Header(record, ICMD_STARTJOB, ICMD_STARTJOB_PAYLOAD);
  Rec_Put32(record + STARTJOB_FORMAT, ICMD_FORMAT_WORD);
  Rec_Put32(record + STARTJOB_PRINTER, static_cast<uint32_t>(printer));
  Rec_Put32(record + STARTJOB_JOBID, static_cast<uint32_t>(jobId));
  Rec_Put32(record + STARTJOB_COPIES, static_cast<uint32_t>(copies));
  Rec_PutString(record + STARTJOB_TITLE, title);
  Rec_PutString(record + STARTJOB_PLUGIN, plugin);
  Rec_PutString(record + STARTJOB_QUEUE, queue);
}

void Rec_EndJob(uint8_t* record, int32_t jobId) {
  memset(record, 0, ICMD_ENDJOB_BYTES);
  Rec_Header(record, ICMD_ENDJOB, ICMD_ENDJOB_PAYLOAD);
  Rec_Put32(record + 6, static_cast<uint32_t>(jobId));
}

void Rec_StartCard(uint8_t* record, uint64_t cardId, const TCardFields& f) {
  memset(record, 0, ICMD_STARTCARD_BYTES);
  Rec_Header(record, ICMD_STARTCARD, ICMD_STARTCARD_PAYLOAD);
  Rec_Put64(record + STARTCARD_ID, cardId);
  Rec_Put32(record + STARTCARD_COPIES, static_cast<uint32_t>(f.copies));
  record[STARTCARD_ENTRY_FLIP] = Rec_LowByte(f.entryCardFlip);
  record[STARTCARD_MAG_FLIP] = Rec_LowByte(f.magEncodeCardFlip);
  record[STARTCARD_DUPLEX] = Rec_Flag(f.duplex);
  record[STARTCARD_LAMINATE] = Rec_LowByte(f.cardLaminate);
  record[STARTCARD_MAG_ENCODE] = Rec_LowByte(f.magEncode);
  record[STARTCARD_MAG_PO_MODE] = Rec_LowByte(f.magPOMode);
  record[STARTCARD_THICKNESS] = Rec_LowByte(f.cardThickness);
  record[STARTCARD_EJECT] = Rec_LowByte(f.cardEjectExisting);
}

void Rec_EndCard(uint8_t* record, uint64_t cardId) {
  memset(record, 0, ICMD_ENDCARD_BYTES);
  Rec_Header(record, ICMD_ENDCARD, ICMD_ENDCARD_PAYLOAD);
  Rec_Put64(record + 6, cardId);
}

int32_t Rec_MagEncode(uint8_t* record, const TMagTrack tracks[3]) {
  memset(record, 0, ICMD_MAGENCODE_BYTES);
  Rec_Header(record, ICMD_MAGENCODE, ICMD_MAGENCODE_PAYLOAD);
  int32_t copied = 0;
  for (int t = 0; t < 3; ++t) {
    if (tracks[t].format == 0) continue;
    memcpy(record + MAGENCODE_TRACK1 + t * sizeof(TMagTrack), &tracks[t], sizeof(TMagTrack));
    ++copied;
  }
  return copied;
}

void Rec_StartSide(uint8_t* record, const TSideFields& f) {
  memset(record, 0, ICMD_STARTSIDE_BYTES);
  Rec_Header(record, ICMD_STARTSIDE, ICMD_STARTSIDE_PAYLOAD);
  Rec_Put32(record + STARTSIDE_SIDE, static_cast<uint32_t>(f.side));
  record[STARTSIDE_YMC] = Rec_Flag(f.ribbon != 0);
  record[STARTSIDE_K] = Rec_Flag(f.ribbon == 0 || f.ribbon == 3);
  record[STARTSIDE_UV] = Rec_Flag(f.uv);
  record[STARTSIDE_PO] = Rec_Flag(f.po);
  record[STARTSIDE_MAC] = Rec_Flag(f.uvMAC == 1);
  record[STARTSIDE_SECURE_ERASE] = Rec_LowByte(f.secureErase);
  record[STARTSIDE_LUT] = Rec_LowByte(f.lutCode);
}

void Rec_EndSide(uint8_t* record, int32_t side) {
  memset(record, 0, ICMD_ENDSIDE_BYTES);
  Rec_Header(record, ICMD_ENDSIDE, ICMD_ENDSIDE_PAYLOAD);
  Rec_Put32(record + 6, static_cast<uint32_t>(side));
}

void Rec_StartImage(uint8_t* record, uint32_t width, uint32_t height, int32_t panel) {
  memset(record, 0, ICMD_STARTIMAGE_BYTES);
  Rec_Header(record, ICMD_STARTIMAGE, ICMD_STARTIMAGE_PAYLOAD);
  Rec_Put16(record + STARTIMAGE_WIDTH, static_cast<uint16_t>(width));
  Rec_Put16(record + STARTIMAGE_HEIGHT, static_cast<uint16_t>(height));
  record[STARTIMAGE_PANEL] = Rec_LowByte(panel);
}

void Rec_EndImage(uint8_t* record) {
  memset(record, 0, ICMD_ENDIMAGE_BYTES);
  Rec_Header(record, ICMD_ENDIMAGE, ICMD_ENDIMAGE_PAYLOAD);
}

void Rec_ImageHeader(uint8_t* header, uint32_t n) { Rec_Header(header, ICMD_IMAGE, n); }

void Rec_LUTTable(uint8_t* record, const uint8_t lut[3][256]) {
  memset(record, 0, ICMD_LUTTABLE_BYTES);
  Rec_Header(record, ICMD_LUTTABLE, ICMD_LUTTABLE_PAYLOAD);
  for (int c = 0; c < 3; ++c) memcpy(record + 6 + c * 256, lut[c], 256);
}
