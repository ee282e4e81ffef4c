// Reading and checking a job command stream: records, framing and panels.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One record of the stream.
struct TStreamRecord {
  uint64_t offset = 0;           // offset of the record's 6-byte header in the stream
  uint16_t type = 0;             // command code (ICMD_*)
  uint32_t length = 0;           // payload length from the header
  std::vector<uint8_t> payload;  // the payload; left empty for ICMD_IMAGE (see TStreamPanel)
};

// One image of the stream (ICMD_STARTIMAGE, its ICMD_IMAGE rows, ICMD_ENDIMAGE).
struct TStreamPanel {
  int32_t side = 0;              // side of the enclosing ICMD_STARTSIDE
  uint32_t index = 0;            // position among the images of its side, from 0
  uint32_t panelType = 0;        // PANEL_COLOR, PANEL_K, PANEL_UV or PANEL_PO
  uint32_t width = 0;            // pixels per row
  uint32_t height = 0;           // rows
  uint32_t bytesPerPixel = 0;    // 3 for a colour panel, else 1
  uint64_t offset = 0;           // offset of its ICMD_STARTIMAGE
  uint32_t chunks = 0;           // ICMD_IMAGE records read
  uint32_t rows = 0;             // rows read so far
  bool complete = false;         // ICMD_ENDIMAGE read
  std::vector<uint8_t> pixels;   // rows * width * bytesPerPixel bytes, top row first
};

// The result of reading a stream.
struct TStreamCheck {
  std::vector<TStreamRecord> records;  // every record read before the first violation
  std::vector<TStreamPanel> panels;    // every image begun before the first violation
  bool ok = true;           // no violation found (a stream that simply stops is ok)
  bool complete = false;    // ok, and the stream ends with ICMD_ENDJOB
  uint64_t errorOffset = 0; // offset of the offending record, when not ok
  std::string error;        // what is wrong with it, when not ok
  std::string openLevel;    // when ok but not complete: what the stream leaves open
};

// 'Stream_Read()' - Parse and check a job command stream held in memory.
// Every record must have a known type and the exact payload length of its
// type; ICMD_IMAGE payloads must be whole rows of the open image and at
// most IMAGE_CHUNK_BYTES; the rows of an image must add up to its height by
// ICMD_ENDIMAGE; job, card, side and image records must nest in the framing
// order.  Reading stops at the first violation, which is described in
// error with the offset of the record it concerns.  A stream that stops at
// a record boundary before ICMD_ENDJOB (a cancelled job) is ok but not
// complete.  Returns 0 when ok, 1 on a violation.
int32_t Stream_Read(const uint8_t* data, size_t size, TStreamCheck* out);
int32_t Stream_Read(const std::string& bytes, TStreamCheck* out);

// 'Stream_ReadPart()' - Stream_Read on a part of a job, as the framing and
// page operations write it on their own: the levels that its first record
// lies in are taken as open (a first ICMD_STARTCARD lies in a job, a first
// ICMD_STARTSIDE or ICMD_ENDCARD in a card, a first ICMD_STARTIMAGE or
// ICMD_ENDSIDE in a side), and the job id, card id and side number sent
// before the part are not compared.  Everything else is checked as
// Stream_Read checks it.
int32_t Stream_ReadPart(const uint8_t* data, size_t size, TStreamCheck* out);
int32_t Stream_ReadPart(const std::string& bytes, TStreamCheck* out);

// 'Stream_RecordName()' - "ICMD_STARTJOB" ... "ICMD_LUTTABLE", or null for an
// unknown type.
const char* Stream_RecordName(uint16_t type);

// 'Stream_PayloadLength()' - The exact payload length of a type: -1 for
// ICMD_IMAGE (any length up to IMAGE_CHUNK_BYTES), -2 for an unknown type.
int64_t Stream_PayloadLength(uint16_t type);

// Decoded fields of the fixed records.
struct TStartJobFields {
  uint32_t formatWord = 0, printer = 0, jobId = 0, copies = 0;
  std::string title, plugin, queue;  // up to the first zero byte, at most 128 bytes
};
struct TStartCardFields {
  uint64_t cardId = 0;
  uint32_t copies = 0;
  uint8_t entryFlip = 0, magEncodeFlip = 0, duplex = 0, laminate = 0, magEncode = 0;
  uint8_t magPOMode = 0, cardThickness = 0, ejectExisting = 0;
};
struct TStartSideFields {
  int32_t side = 0;
  uint8_t ymc = 0, k = 0, uv = 0, po = 0, mac = 0, secureErase = 0, lut = 0;
};
struct TStartImageFields {
  uint16_t width = 0, height = 0;
  uint8_t panel = 0;
};
struct TMagTrackFields {
  uint8_t format = 0;   // format or status byte; 0 for a track left empty
  uint8_t length = 0;   // character count
  std::vector<uint8_t> chars;  // the 128 character bytes
};

// 'Stream_Decode*()' - Decode a record of the named type; false when the
// record has another type or a payload of the wrong length.
bool Stream_DecodeStartJob(const TStreamRecord& rec, TStartJobFields* out);
bool Stream_DecodeStartCard(const TStreamRecord& rec, TStartCardFields* out);
bool Stream_DecodeStartSide(const TStreamRecord& rec, TStartSideFields* out);
bool Stream_DecodeStartImage(const TStreamRecord& rec, TStartImageFields* out);
// Side of ICMD_ENDSIDE, job id of ICMD_ENDJOB, card id of ICMD_ENDCARD.
bool Stream_DecodeEndSide(const TStreamRecord& rec, int32_t* side);
bool Stream_DecodeEndJob(const TStreamRecord& rec, uint32_t* jobId);
bool Stream_DecodeEndCard(const TStreamRecord& rec, uint64_t* cardId);
// The three tracks of ICMD_MAGENCODE (track 1 first).
bool Stream_DecodeMagEncode(const TStreamRecord& rec, TMagTrackFields tracks[3]);
// The red, green and blue arrays of ICMD_LUTTABLE.
bool Stream_DecodeLUTTable(const TStreamRecord& rec, uint8_t red[256], uint8_t green[256],
                           uint8_t blue[256]);
