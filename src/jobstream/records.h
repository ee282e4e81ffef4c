// Command records of the job command stream: codes, sizes and builders.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

#include "options/mag.h"

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

// Whole record sizes: header and payload.
constexpr size_t ICMD_STARTJOB_BYTES = ICMD_HEADER_BYTES + ICMD_STARTJOB_PAYLOAD;
constexpr size_t ICMD_ENDJOB_BYTES = ICMD_HEADER_BYTES + ICMD_ENDJOB_PAYLOAD;
constexpr size_t ICMD_STARTCARD_BYTES = ICMD_HEADER_BYTES + ICMD_STARTCARD_PAYLOAD;
constexpr size_t ICMD_ENDCARD_BYTES = ICMD_HEADER_BYTES + ICMD_ENDCARD_PAYLOAD;
constexpr size_t ICMD_MAGENCODE_BYTES = ICMD_HEADER_BYTES + ICMD_MAGENCODE_PAYLOAD;
constexpr size_t ICMD_STARTSIDE_BYTES = ICMD_HEADER_BYTES + ICMD_STARTSIDE_PAYLOAD;
constexpr size_t ICMD_ENDSIDE_BYTES = ICMD_HEADER_BYTES + ICMD_ENDSIDE_PAYLOAD;
constexpr size_t ICMD_STARTIMAGE_BYTES = ICMD_HEADER_BYTES + ICMD_STARTIMAGE_PAYLOAD;
constexpr size_t ICMD_ENDIMAGE_BYTES = ICMD_HEADER_BYTES + ICMD_ENDIMAGE_PAYLOAD;
constexpr size_t ICMD_LUTTABLE_BYTES = ICMD_HEADER_BYTES + ICMD_LUTTABLE_PAYLOAD;

// Field offsets from the first byte of a record.
constexpr size_t STARTJOB_FORMAT = 6;
constexpr size_t STARTJOB_PRINTER = 14;
constexpr size_t STARTJOB_JOBID = 18;
constexpr size_t STARTJOB_COPIES = 22;
constexpr size_t STARTJOB_TITLE = 27;
constexpr size_t STARTJOB_PLUGIN = 155;
constexpr size_t STARTJOB_QUEUE = 283;
constexpr size_t STARTCARD_ID = 6;
constexpr size_t STARTCARD_COPIES = 14;
constexpr size_t STARTCARD_ENTRY_FLIP = 18;
constexpr size_t STARTCARD_MAG_FLIP = 19;
constexpr size_t STARTCARD_DUPLEX = 20;
constexpr size_t STARTCARD_LAMINATE = 21;
constexpr size_t STARTCARD_MAG_ENCODE = 22;
constexpr size_t STARTCARD_MAG_PO_MODE = 23;
constexpr size_t STARTCARD_THICKNESS = 24;
constexpr size_t STARTCARD_EJECT = 25;
constexpr size_t MAGENCODE_TRACK1 = 6;           // tracks follow every 130 bytes
constexpr size_t STARTSIDE_SIDE = 6;
constexpr size_t STARTSIDE_YMC = 10;
constexpr size_t STARTSIDE_K = 11;
constexpr size_t STARTSIDE_UV = 12;
constexpr size_t STARTSIDE_PO = 13;
constexpr size_t STARTSIDE_MAC = 14;
constexpr size_t STARTSIDE_SECURE_ERASE = 15;
constexpr size_t STARTSIDE_LUT = 16;
constexpr size_t STARTIMAGE_WIDTH = 6;
constexpr size_t STARTIMAGE_HEIGHT = 8;
constexpr size_t STARTIMAGE_PANEL = 10;

// The options ICMD_STARTCARD carries; each one-byte field is the low byte of
// its 32-bit option.
struct TCardFields {
  int32_t copies;
  int32_t entryCardFlip;
  int32_t magEncodeCardFlip;
  int32_t duplex;
  int32_t cardLaminate;
  int32_t magEncode;
  int32_t magPOMode;
  int32_t cardThickness;
  int32_t cardEjectExisting;
};

// The options of one side that ICMD_STARTSIDE carries.
struct TSideFields {
  int32_t side;         // 0 front, 1 back
  int32_t ribbon;       // 0 Monochrome, 1 Grayscale, 2 colour, 3 ColorK
  int32_t uv;           // UV code, 0 none
  int32_t po;           // overlay code, 0 none
  int32_t uvMAC;        // UV mark corner, 1 LowerLeft
  int32_t secureErase;  // low byte sent
  int32_t lutCode;      // low byte sent
};

// Record builders.  Each fills a zero-filled buffer of the record's whole
// size (ICMD_..._BYTES) with the header and payload; bytes not named by the
// record layout stay 0.

// 'Rec_StartJob()' - ICMD_STARTJOB.  Null or empty strings leave their field
// zero; strings of 128 characters or more are cut to 127 plus the zero.
void Rec_StartJob(uint8_t* record, int32_t printer, int32_t jobId, int32_t copies,
                  const char* title, const char* plugin, const char* queue);
// 'Rec_EndJob()' - ICMD_ENDJOB.
void Rec_EndJob(uint8_t* record, int32_t jobId);
// 'Rec_StartCard()' - ICMD_STARTCARD.
void Rec_StartCard(uint8_t* record, uint64_t cardId, const TCardFields& fields);
// 'Rec_EndCard()' - ICMD_ENDCARD.
void Rec_EndCard(uint8_t* record, uint64_t cardId);
// 'Rec_MagEncode()' - ICMD_MAGENCODE from three tracks; a track whose first
// byte is 0 stays all zero.  Returns the number of tracks copied.
int32_t Rec_MagEncode(uint8_t* record, const TMagTrack tracks[3]);
// 'Rec_StartSide()' - ICMD_STARTSIDE.
void Rec_StartSide(uint8_t* record, const TSideFields& fields);
// 'Rec_EndSide()' - ICMD_ENDSIDE.
void Rec_EndSide(uint8_t* record, int32_t side);
// 'Rec_StartImage()' - ICMD_STARTIMAGE (width and height keep their low 16
// bits).
void Rec_StartImage(uint8_t* record, uint32_t width, uint32_t height, int32_t panel);
// 'Rec_EndImage()' - ICMD_ENDIMAGE.
void Rec_EndImage(uint8_t* record);
// 'Rec_ImageHeader()' - The 6-byte header of an ICMD_IMAGE of n data bytes.
void Rec_ImageHeader(uint8_t* header, uint32_t n);
// 'Rec_LUTTable()' - ICMD_LUTTABLE from three 256-entry tables (red, green,
// blue).
void Rec_LUTTable(uint8_t* record, const uint8_t lut[3][256]);

// 'Job_WriteCommand()' - Log a complete record (header and payload in one
// buffer) and write its 6 + length bytes to the task's output with one
// write, then flush.  Returns 0.
int32_t Job_WriteCommand(TPrintingTask* task, const uint8_t* record);

// 'Job_ImageRowsPerRecord()' - Whole rows of rowBytes that fit in one
// ICMD_IMAGE record (0 when not even one does).
uint32_t Job_ImageRowsPerRecord(uint64_t rowBytes);

// 'Job_WriteImageRecord()' - Write one ICMD_IMAGE record of n data bytes to
// the task's output: the 6-byte header, then data; no log line, no flush.
void Job_WriteImageRecord(TPrintingTask* task, const uint8_t* data, uint32_t n);

// 'Job_WriteImage()' - Write one image of height rows of width dots of
// bytesPerDot bytes: ICMD_STARTIMAGE, ICMD_IMAGE records of whole rows (at
// most IMAGE_CHUNK_BYTES of data each), "CMD: ICMD_IMAGE [total]" logged,
// ICMD_ENDIMAGE.  Returns the data bytes written; a row wider than one
// record writes nothing and returns 0.
uint32_t Job_WriteImage(TPrintingTask* task, uint32_t width, uint32_t height, int32_t panelType,
                        uint32_t bytesPerDot, const uint8_t* rows);
