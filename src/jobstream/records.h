// Command records of the job command stream: codes, sizes and builders.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

class TPrintingTask;

// Command codes.
constexpr uint16_t ICMD_STARTJOB = 1;
constexpr uint16_t ICMD_ENDJOB = 2;
constexpr uint16_t ICMD_STARTCARD = 3;
constexpr uint16_t ICMD_ENDCARD = 4;
constexpr uint16_t ICMD_MAGENCODE = 5;
constexpr uint16_t ICMD_STARTSIDE = 6;
constexpr uint16_t ICMD_ENDSIDE = 7;
constexpr uint16_t ICMD_STARTIMAGE = 8;
constexpr uint16_t ICMD_ENDIMAGE = 9;
constexpr uint16_t ICMD_IMAGE = 10;
constexpr uint16_t ICMD_LUTTABLE = 11;

// Record header: uint16 type, uint32 payload length.
constexpr size_t ICMD_HEADER_BYTES = 6;

// Payload lengths.
constexpr uint32_t ICMD_STARTJOB_PAYLOAD = 405;
constexpr uint32_t ICMD_ENDJOB_PAYLOAD = 4;
constexpr uint32_t ICMD_STARTCARD_PAYLOAD = 20;
constexpr uint32_t ICMD_ENDCARD_PAYLOAD = 8;
constexpr uint32_t ICMD_MAGENCODE_PAYLOAD = 390;
constexpr uint32_t ICMD_STARTSIDE_PAYLOAD = 11;
constexpr uint32_t ICMD_ENDSIDE_PAYLOAD = 4;
constexpr uint32_t ICMD_STARTIMAGE_PAYLOAD = 5;
constexpr uint32_t ICMD_ENDIMAGE_PAYLOAD = 0;
constexpr uint32_t ICMD_LUTTABLE_PAYLOAD = 768;

// Largest pixel payload of one ICMD_IMAGE record.
constexpr uint32_t IMAGE_CHUNK_BYTES = 61440;

// Format word of ICMD_STARTJOB.
constexpr uint32_t ICMD_FORMAT_WORD = 0x00010001;
// Size of each string field of ICMD_STARTJOB, terminating zero included.
constexpr size_t ICMD_STRING_BYTES = 128;

// Little-endian writers into a record buffer.
inline void Rec_Put16(uint8_t* p, uint16_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}
inline void Rec_Put32(uint8_t* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}
inline void Rec_Put64(uint8_t* p, uint64_t v) {
  for (int i = 0; i < 8; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}
inline uint16_t Rec_Get16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
inline uint32_t Rec_Get32(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
         (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}
inline uint64_t Rec_Get64(const uint8_t* p) {
  return static_cast<uint64_t>(Rec_Get32(p)) | (static_cast<uint64_t>(Rec_Get32(p + 4)) << 32);
}

// 'Rec_Header()' - Write the 6-byte header of a record.
inline void Rec_Header(uint8_t* record, uint16_t type, uint32_t length) {
  Rec_Put16(record, type);
  Rec_Put32(record + 2, length);
}

// 'Job_WriteCommand()' - Log a complete record (header and payload in one
// buffer) and write its 6 + length bytes to the task's output with one
// write, then flush.  Returns 0.
int32_t Job_WriteCommand(TPrintingTask* task, const uint8_t* record);
