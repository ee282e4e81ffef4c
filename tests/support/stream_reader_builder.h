// Building job command streams record by record for the stream reader tests.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobstream/records.h"

// Appends records in their wire form; every payload is zero-filled before
// its fields are set, as the filter does.
class TStreamBuilder {
 public:
  std::string bytes;

  size_t Size() const { return bytes.size(); }

  // 'Record()' - A record with the given header and payload bytes.
  TStreamBuilder& Record(uint16_t type, uint32_t length, const std::vector<uint8_t>& payload) {
    uint8_t h[ICMD_HEADER_BYTES];
    Rec_Header(h, type, length);
    bytes.append(reinterpret_cast<const char*>(h), sizeof h);
    bytes.append(payload.begin(), payload.end());
    return *this;
  }
  TStreamBuilder& Record(uint16_t type, const std::vector<uint8_t>& payload) {
    return Record(type, static_cast<uint32_t>(payload.size()), payload);
  }

  TStreamBuilder& StartJob(uint32_t jobId, uint32_t printer = 1030, const std::string& title = "") {
    std::vector<uint8_t> p(ICMD_STARTJOB_PAYLOAD, 0);
    Rec_Put32(&p[0], ICMD_FORMAT_WORD);
    Rec_Put32(&p[8], printer);
    Rec_Put32(&p[12], jobId);
    Rec_Put32(&p[16], 1);
    for (size_t i = 0; i < title.size() && i < 127; ++i) p[21 + i] = static_cast<uint8_t>(title[i]);
    return Record(ICMD_STARTJOB, p);
  }
  TStreamBuilder& EndJob(uint32_t jobId) {
    std::vector<uint8_t> p(4, 0);
    Rec_Put32(&p[0], jobId);
    return Record(ICMD_ENDJOB, p);
  }
  TStreamBuilder& StartCard(uint64_t cardId, uint8_t duplex = 0) {
    std::vector<uint8_t> p(ICMD_STARTCARD_PAYLOAD, 0);
    Rec_Put64(&p[0], cardId);
    Rec_Put32(&p[8], 1);
    p[14] = duplex;
    return Record(ICMD_STARTCARD, p);
  }
  TStreamBuilder& EndCard(uint64_t cardId) {
    std::vector<uint8_t> p(8, 0);
    Rec_Put64(&p[0], cardId);
    return Record(ICMD_ENDCARD, p);
  }
  TStreamBuilder& MagEncode() { return Record(ICMD_MAGENCODE, std::vector<uint8_t>(ICMD_MAGENCODE_PAYLOAD, 0)); }
  TStreamBuilder& StartSide(int32_t side, uint8_t ymc = 1, uint8_t k = 0) {
    std::vector<uint8_t> p(ICMD_STARTSIDE_PAYLOAD, 0);
    Rec_Put32(&p[0], static_cast<uint32_t>(side));
    p[4] = ymc;
    p[5] = k;
    return Record(ICMD_STARTSIDE, p);
  }
  TStreamBuilder& Lut() {
    std::vector<uint8_t> p(ICMD_LUTTABLE_PAYLOAD);
    for (size_t i = 0; i < p.size(); ++i) p[i] = static_cast<uint8_t>(i % 256);
    return Record(ICMD_LUTTABLE, p);
  }
  TStreamBuilder& EndSide(int32_t side) {
    std::vector<uint8_t> p(4, 0);
    Rec_Put32(&p[0], static_cast<uint32_t>(side));
    return Record(ICMD_ENDSIDE, p);
  }
  TStreamBuilder& StartImage(uint16_t width, uint16_t height, uint8_t panel) {
    std::vector<uint8_t> p(ICMD_STARTIMAGE_PAYLOAD, 0);
    Rec_Put16(&p[0], width);
    Rec_Put16(&p[2], height);
    p[4] = panel;
    return Record(ICMD_STARTIMAGE, p);
  }
  TStreamBuilder& Image(const std::vector<uint8_t>& data) { return Record(ICMD_IMAGE, data); }
  TStreamBuilder& EndImage() { return Record(ICMD_ENDIMAGE, {}); }

  // 'Panel()' - A whole image: start, pixels in chunks of rowsPerChunk rows, end.
  TStreamBuilder& Panel(uint16_t width, uint16_t height, uint8_t panel, const std::vector<uint8_t>& pixels,
                        uint32_t rowsPerChunk) {
    StartImage(width, height, panel);
    size_t rowBytes = static_cast<size_t>(width) * (panel == 0 ? 3 : 1);
    for (size_t row = 0; row < height; row += rowsPerChunk) {
      size_t end = std::min<size_t>(height, row + rowsPerChunk);
      Image(std::vector<uint8_t>(pixels.begin() + row * rowBytes, pixels.begin() + end * rowBytes));
    }
    return EndImage();
  }
};

// 'Test_Pixels()' - n bytes of a recognisable pattern.
inline std::vector<uint8_t> Test_Pixels(size_t n, uint32_t seed) {
  std::vector<uint8_t> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = static_cast<uint8_t>((i * 31 + seed * 7) % 251);
  return v;
}
