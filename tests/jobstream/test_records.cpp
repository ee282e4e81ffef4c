// Byte-exact tests of every command record and of Job_WriteCommand.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "driver/printing_task.h"
#include "jobstream/records.h"
#include "log/log.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Bytes from "01 00 ff" text.
Bytes Hex(const char* text) {
  Bytes out;
  for (const char* p = text; *p;) {
    if (*p == ' ') { ++p; continue; }
    char pair[3] = {p[0], p[1], 0};
    out.push_back(static_cast<uint8_t>(strtoul(pair, nullptr, 16)));
    p += 2;
  }
  return out;
}

// A record that is all zero but for the given (offset, bytes) runs.
struct TRun {
  size_t offset;
  const char* hex;
};
Bytes Sparse(size_t size, std::initializer_list<TRun> runs) {
  Bytes out(size, 0);
  for (const TRun& r : runs) {
    Bytes b = Hex(r.hex);
    for (size_t i = 0; i < b.size(); ++i) out.at(r.offset + i) = b[i];
  }
  return out;
}

TMagTrack Track(uint8_t format, std::initializer_list<uint8_t> codes) {
  TMagTrack t;
  memset(&t, 0, sizeof t);
  t.format = format;
  t.length = static_cast<uint8_t>(codes.size());
  size_t i = 0;
  for (uint8_t c : codes) t.codes[i++] = c;
  return t;
}

struct TRecordCase {
  const char* name;
  size_t size;
  std::function<void(uint8_t*)> build;
  Bytes expected;
};

std::vector<TRecordCase> RecordCases() {
  std::vector<TRecordCase> cases;
  cases.push_back({"startjob", ICMD_STARTJOB_BYTES,
                   [](uint8_t* r) { Rec_StartJob(r, 1060, 123, 2, "Card", "plug", "Q1"); },
                   Sparse(411, {{0, "01 00 95 01 00 00"}, {6, "01 00 01 00"}, {14, "24 04 00 00"},
                                {18, "7b 00 00 00"}, {22, "02 00 00 00"}, {27, "43 61 72 64"},
                                {155, "70 6c 75 67"}, {283, "51 31"}})});
  cases.push_back({"startjob negative id, no strings", ICMD_STARTJOB_BYTES,
                   [](uint8_t* r) { Rec_StartJob(r, 1030, -1, 1, nullptr, "", nullptr); },
                   Sparse(411, {{0, "01 00 95 01 00 00"}, {6, "01 00 01 00"}, {14, "06 04 00 00"},
                                {18, "ff ff ff ff"}, {22, "01 00 00 00"}})});
  cases.push_back({"endjob", ICMD_ENDJOB_BYTES, [](uint8_t* r) { Rec_EndJob(r, 123); },
                   Hex("02 00 04 00 00 00 7b 00 00 00")});
  cases.push_back({"startcard", ICMD_STARTCARD_BYTES,
                   [](uint8_t* r) {
                     TCardFields f = {3, 0x101, 0, 1, 1, 1, 3, 2, 1};
                     Rec_StartCard(r, 0x12345678u, f);
                   },
                   Hex("03 00 14 00 00 00 78 56 34 12 00 00 00 00 03 00 00 00 01 00 01 01 01 03 02 01")});
  cases.push_back({"startcard all zero", ICMD_STARTCARD_BYTES,
                   [](uint8_t* r) {
                     TCardFields f = {0, 0, 1, 0, 0, 0, 0, 0, 0};
                     Rec_StartCard(r, 0x7FFFFFFFu, f);
                   },
                   Hex("03 00 14 00 00 00 ff ff ff 7f 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00")});
  cases.push_back({"endcard", ICMD_ENDCARD_BYTES, [](uint8_t* r) { Rec_EndCard(r, 0x7FFFFFFFu); },
                   Hex("04 00 08 00 00 00 ff ff ff 7f 00 00 00 00")});
  cases.push_back({"magencode track 2 only", ICMD_MAGENCODE_BYTES,
                   [](uint8_t* r) {
                     TMagTrack t[3] = {Track(0, {9, 9}), Track(0x42, {1, 2, 3}), Track(0, {})};
                     Rec_MagEncode(r, t);
                   },
                   Sparse(396, {{0, "05 00 86 01 00 00"}, {136, "42 03 01 02 03"}})});
  cases.push_back({"magencode tracks 1 and 3", ICMD_MAGENCODE_BYTES,
                   [](uint8_t* r) {
                     TMagTrack t[3] = {Track(0x11, {0x21}), Track(0, {}), Track(3, {})};
                     Rec_MagEncode(r, t);
                   },
                   Sparse(396, {{0, "05 00 86 01 00 00"}, {6, "11 01 21"}, {266, "03"}})});
  cases.push_back({"startside back ColorK", ICMD_STARTSIDE_BYTES,
                   [](uint8_t* r) { Rec_StartSide(r, TSideFields{1, 3, 2, 0, 1, 1, 2}); },
                   Hex("06 00 0b 00 00 00 01 00 00 00 01 01 01 00 01 01 02")});
  cases.push_back({"startside front Monochrome", ICMD_STARTSIDE_BYTES,
                   [](uint8_t* r) { Rec_StartSide(r, TSideFields{0, 0, 0, 5, 0, 0, 0}); },
                   Hex("06 00 0b 00 00 00 00 00 00 00 00 01 00 01 00 00 00")});
  cases.push_back({"startside Grayscale", ICMD_STARTSIDE_BYTES,
                   [](uint8_t* r) { Rec_StartSide(r, TSideFields{0, 1, 0, 0, 2, 0x100, 3}); },
                   Hex("06 00 0b 00 00 00 00 00 00 00 01 00 00 00 00 00 03")});
  cases.push_back({"startside colour", ICMD_STARTSIDE_BYTES,
                   [](uint8_t* r) { Rec_StartSide(r, TSideFields{0, 2, 1, 1, 0, 0, 1}); },
                   Hex("06 00 0b 00 00 00 00 00 00 00 01 00 01 01 00 00 01")});
  cases.push_back({"endside", ICMD_ENDSIDE_BYTES, [](uint8_t* r) { Rec_EndSide(r, 1); },
                   Hex("07 00 04 00 00 00 01 00 00 00")});
  cases.push_back({"startimage", ICMD_STARTIMAGE_BYTES,
                   [](uint8_t* r) { Rec_StartImage(r, 1036, 664, 1); },
                   Hex("08 00 05 00 00 00 0c 04 98 02 01")});
  cases.push_back({"startimage 600 dpi colour", ICMD_STARTIMAGE_BYTES,
                   [](uint8_t* r) { Rec_StartImage(r, 2072, 1328, 0); },
                   Hex("08 00 05 00 00 00 18 08 30 05 00")});
  cases.push_back({"endimage", ICMD_ENDIMAGE_BYTES, [](uint8_t* r) { Rec_EndImage(r); },
                   Hex("09 00 00 00 00 00")});
  cases.push_back({"image header", ICMD_HEADER_BYTES, [](uint8_t* r) { Rec_ImageHeader(r, 61440); },
                   Hex("0a 00 00 f0 00 00")});
  cases.push_back({"luttable", ICMD_LUTTABLE_BYTES,
                   [](uint8_t* r) {
                     uint8_t lut[3][256] = {};
                     lut[0][0] = 0x10, lut[0][255] = 0x11, lut[1][1] = 0x22, lut[2][255] = 0x33;
                     Rec_LUTTable(r, lut);
                   },
                   Sparse(774, {{0, "0b 00 00 03 00 00"}, {6, "10"}, {261, "11"}, {263, "22"},
                                {773, "33"}})});
  return cases;
}

}  // namespace

TEST(Records, EveryRecordMatchesItsBytes) {
  for (const TRecordCase& c : RecordCases()) {
    Bytes got(c.size + 16, 0xAA);  // builders must clear what they own, no more
    c.build(got.data());
    for (size_t i = c.size; i < got.size(); ++i) ASSERT_EQ(0xAA, got[i]) << c.name << " overran";
    got.resize(c.size);
    EXPECT_EQ(c.expected, got) << c.name;
  }
}

TEST(Records, RecordSizesAreHeaderPlusPayload) {
  EXPECT_EQ(411u, ICMD_STARTJOB_BYTES);
  EXPECT_EQ(10u, ICMD_ENDJOB_BYTES);
  EXPECT_EQ(26u, ICMD_STARTCARD_BYTES);
  EXPECT_EQ(14u, ICMD_ENDCARD_BYTES);
  EXPECT_EQ(396u, ICMD_MAGENCODE_BYTES);
  EXPECT_EQ(17u, ICMD_STARTSIDE_BYTES);
  EXPECT_EQ(10u, ICMD_ENDSIDE_BYTES);
  EXPECT_EQ(11u, ICMD_STARTIMAGE_BYTES);
  EXPECT_EQ(6u, ICMD_ENDIMAGE_BYTES);
  EXPECT_EQ(774u, ICMD_LUTTABLE_BYTES);
}

TEST(Records, MagEncodeCountsCopiedTracks) {
  uint8_t r[ICMD_MAGENCODE_BYTES];
  TMagTrack none[3] = {Track(0, {1}), Track(0, {2}), Track(0, {3})};
  EXPECT_EQ(0, Rec_MagEncode(r, none));
  TMagTrack two[3] = {Track(1, {}), Track(0, {2}), Track(2, {})};
  EXPECT_EQ(2, Rec_MagEncode(r, two));
}

TEST(Records, TitleOf127CharactersEndsWithZeroInTheLastByte) {
  std::string title(127, 'T');
  uint8_t r[ICMD_STARTJOB_BYTES];
  Rec_StartJob(r, 1060, 1, 1, title.c_str(), "", "");
  EXPECT_EQ(0, memcmp(r + STARTJOB_TITLE, title.data(), 127));
  EXPECT_EQ(0, r[STARTJOB_TITLE + 127]);
  EXPECT_EQ(0, r[STARTJOB_PLUGIN]);
}

TEST(Records, StringsOf128OrMoreAreCutTo127) {
  for (size_t len : {128u, 200u, 5000u}) {
    std::string text(len, 'x');
    uint8_t r[ICMD_STARTJOB_BYTES];
    Rec_StartJob(r, 1060, 1, 1, text.c_str(), text.c_str(), text.c_str());
    for (size_t field : {STARTJOB_TITLE, STARTJOB_PLUGIN, STARTJOB_QUEUE}) {
      EXPECT_EQ(0, memcmp(r + field, text.data(), 127)) << len;
      EXPECT_EQ(0, r[field + 127]) << len;
    }
  }
}
