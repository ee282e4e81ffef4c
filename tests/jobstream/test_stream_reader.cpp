// Tests of the job command stream reader on well-formed and cut streams.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "jobstream/stream_reader.h"
#include "support/stream_reader_builder.h"

namespace {

// A simplex card: a 5 x 4 colour panel in chunks of 2 rows, a 7 x 3 black panel in one chunk.
TStreamBuilder SimplexJob(std::vector<uint8_t>* color, std::vector<uint8_t>* black) {
  *color = Test_Pixels(5 * 4 * 3, 1);
  *black = Test_Pixels(7 * 3, 2);
  TStreamBuilder b;
  b.StartJob(123, 1030, "card title").StartCard(0x1234567).StartSide(0, 1, 1).Lut();
  b.Panel(5, 4, 0, *color, 2).Panel(7, 3, 1, *black, 3);
  b.EndSide(0).EndCard(0x1234567).EndJob(123);
  return b;
}

std::vector<uint16_t> Types(const TStreamCheck& c) {
  std::vector<uint16_t> t;
  for (const TStreamRecord& r : c.records) t.push_back(r.type);
  return t;
}

}  // namespace

TEST(StreamReader, AcceptsASimplexJobAndDecodesItsPanels) {
  std::vector<uint8_t> color, black;
  TStreamBuilder b = SimplexJob(&color, &black);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(b.bytes, &c)) << c.error;
  EXPECT_TRUE(c.ok);
  EXPECT_TRUE(c.complete);
  EXPECT_EQ("", c.error);
  EXPECT_EQ("", c.openLevel);
  EXPECT_EQ(std::vector<uint16_t>({1, 3, 6, 11, 8, 10, 10, 9, 8, 10, 9, 7, 4, 2}), Types(c));
  // Offsets: 411 + 26 + 17 + 774 = 1228 for the first ICMD_STARTIMAGE.
  EXPECT_EQ(0u, c.records[0].offset);
  EXPECT_EQ(411u, c.records[1].offset);
  EXPECT_EQ(437u, c.records[2].offset);
  EXPECT_EQ(454u, c.records[3].offset);
  EXPECT_EQ(1228u, c.records[4].offset);
  EXPECT_EQ(1239u, c.records[5].offset);
  EXPECT_EQ(30u, c.records[5].length);
  EXPECT_TRUE(c.records[5].payload.empty());
  EXPECT_EQ(b.Size() - 10, c.records.back().offset);

  ASSERT_EQ(2u, c.panels.size());
  const TStreamPanel& p0 = c.panels[0];
  EXPECT_EQ(0, p0.side);
  EXPECT_EQ(0u, p0.index);
  EXPECT_EQ(0u, p0.panelType);
  EXPECT_EQ(5u, p0.width);
  EXPECT_EQ(4u, p0.height);
  EXPECT_EQ(3u, p0.bytesPerPixel);
  EXPECT_EQ(1228u, p0.offset);
  EXPECT_EQ(2u, p0.chunks);
  EXPECT_EQ(4u, p0.rows);
  EXPECT_TRUE(p0.complete);
  EXPECT_EQ(color, p0.pixels);
  const TStreamPanel& p1 = c.panels[1];
  EXPECT_EQ(1u, p1.index);
  EXPECT_EQ(1u, p1.panelType);
  EXPECT_EQ(1u, p1.bytesPerPixel);
  EXPECT_EQ(1u, p1.chunks);
  EXPECT_EQ(black, p1.pixels);
}

TEST(StreamReader, DecodesTheFixedRecords) {
  TStreamBuilder b;
  b.StartJob(77, 1060, "Visitor 0042").StartCard(0x7FFFFFFF, 1).MagEncode().StartSide(0, 1, 1).Lut();
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(b.bytes, &c)) << c.error;
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(c.records[0], &job));
  EXPECT_EQ(0x00010001u, job.formatWord);
  EXPECT_EQ(1060u, job.printer);
  EXPECT_EQ(77u, job.jobId);
  EXPECT_EQ(1u, job.copies);
  EXPECT_EQ("Visitor 0042", job.title);
  EXPECT_EQ("", job.plugin);
  TStartCardFields card;
  ASSERT_TRUE(Stream_DecodeStartCard(c.records[1], &card));
  EXPECT_EQ(0x7FFFFFFFu, card.cardId);
  EXPECT_EQ(1u, card.duplex);
  EXPECT_EQ(0u, card.laminate);
  TMagTrackFields tracks[3];
  ASSERT_TRUE(Stream_DecodeMagEncode(c.records[2], tracks));
  EXPECT_EQ(128u, tracks[1].chars.size());
  TStartSideFields side;
  ASSERT_TRUE(Stream_DecodeStartSide(c.records[3], &side));
  EXPECT_EQ(0, side.side);
  EXPECT_EQ(1u, side.ymc);
  EXPECT_EQ(1u, side.k);
  EXPECT_EQ(0u, side.uv);
  uint8_t r[256], g[256], bl[256];
  ASSERT_TRUE(Stream_DecodeLUTTable(c.records[4], r, g, bl));
  EXPECT_EQ(200, r[200]);
  EXPECT_EQ(0, g[0]);
  EXPECT_EQ(255, bl[255]);
  EXPECT_FALSE(Stream_DecodeStartSide(c.records[0], &side));  // wrong type
  EXPECT_STREQ("ICMD_LUTTABLE", Stream_RecordName(11));
  EXPECT_EQ(nullptr, Stream_RecordName(12));
  EXPECT_EQ(405, Stream_PayloadLength(ICMD_STARTJOB));
  EXPECT_EQ(0, Stream_PayloadLength(ICMD_ENDIMAGE));
  EXPECT_EQ(768, Stream_PayloadLength(ICMD_LUTTABLE));
  EXPECT_EQ(-1, Stream_PayloadLength(ICMD_IMAGE));
  EXPECT_EQ(-2, Stream_PayloadLength(0));
}

TEST(StreamReader, AcceptsADuplexCardWithMagneticData) {
  std::vector<uint8_t> front = Test_Pixels(4 * 2 * 3, 3), back = Test_Pixels(4 * 2, 4);
  TStreamBuilder b;
  b.StartJob(5).StartCard(99, 1).MagEncode().StartSide(0).Lut().Panel(4, 2, 0, front, 1).EndSide(0);
  b.StartSide(1).Lut().Panel(4, 2, 3, back, 2).EndSide(1).EndCard(99).EndJob(5);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(b.bytes, &c)) << c.error;
  EXPECT_TRUE(c.complete);
  ASSERT_EQ(2u, c.panels.size());
  EXPECT_EQ(0, c.panels[0].side);
  EXPECT_EQ(1, c.panels[1].side);
  EXPECT_EQ(0u, c.panels[1].index);
  EXPECT_EQ(3u, c.panels[1].panelType);
  EXPECT_EQ(back, c.panels[1].pixels);
  int32_t side = -1;
  ASSERT_TRUE(Stream_DecodeEndSide(c.records[c.records.size() - 3], &side));
  EXPECT_EQ(1, side);
}

TEST(StreamReader, AcceptsAChunkOfExactly61440Bytes) {
  TStreamBuilder b;
  b.StartJob(1).StartCard(1).StartSide(0).Lut().Panel(1024, 61, 1, Test_Pixels(1024 * 61, 5), 60);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(b.bytes, &c)) << c.error;
  EXPECT_EQ(61440u, c.records[5].length);
  EXPECT_EQ(1024u, c.records[6].length);
  EXPECT_TRUE(c.panels[0].complete);
}

TEST(StreamReader, ACancelledJobIsCutNotMalformed) {
  std::vector<uint8_t> color, black;
  TStreamBuilder b = SimplexJob(&color, &black);
  struct TCut {
    size_t records;          // records kept
    const char* openLevel;
  };
  const TCut cuts[] = {
      {1, "job"}, {2, "card"}, {3, "side 0"}, {4, "side 0"}, {5, "image (0 of 4 rows) of side 0"},
      {6, "image (2 of 4 rows) of side 0"}, {8, "side 0"}, {12, "card"}, {13, "job"},
  };
  TStreamCheck full;
  ASSERT_EQ(0, Stream_Read(b.bytes, &full));
  for (const TCut& cut : cuts) {
    size_t end = cut.records < full.records.size() ? full.records[cut.records].offset : b.Size();
    TStreamCheck c;
    EXPECT_EQ(0, Stream_Read(b.bytes.substr(0, end), &c)) << cut.records;
    EXPECT_TRUE(c.ok);
    EXPECT_FALSE(c.complete);
    EXPECT_EQ("", c.error);
    EXPECT_EQ(cut.openLevel, c.openLevel) << cut.records;
    EXPECT_EQ(cut.records, c.records.size());
  }
  TStreamCheck cut;
  ASSERT_EQ(0, Stream_Read(b.bytes.substr(0, full.records[6].offset), &cut));
  ASSERT_EQ(1u, cut.panels.size());
  EXPECT_FALSE(cut.panels[0].complete);
  EXPECT_EQ(std::vector<uint8_t>(color.begin(), color.begin() + 30), cut.panels[0].pixels);
}

TEST(StreamReader, AnEmptyStreamIsCutWithNothingOpen) {
  TStreamCheck c;
  EXPECT_EQ(0, Stream_Read(std::string(), &c));
  EXPECT_TRUE(c.ok);
  EXPECT_FALSE(c.complete);
  EXPECT_TRUE(c.records.empty());
  EXPECT_EQ("nothing (empty stream)", c.openLevel);
}

TEST(StreamReader, AChangedByteIsNeverBlamedOnAnEarlierRecord) {
  std::vector<uint8_t> color, black;
  const std::string good = SimplexJob(&color, &black).bytes;
  TStreamCheck full;
  ASSERT_EQ(0, Stream_Read(good, &full));
  size_t record = 0, rejected = 0;
  for (size_t at = 0; at < good.size(); ++at) {
    while (record + 1 < full.records.size() && full.records[record + 1].offset <= at) ++record;
    const uint8_t b = static_cast<uint8_t>(good[at]);
    for (uint8_t v : {uint8_t(0), uint8_t(0xFF), static_cast<uint8_t>(b ^ 1)}) {
      if (v == b) continue;
      std::string bad = good;
      bad[at] = static_cast<char>(v);
      TStreamCheck c;
      int32_t rc = Stream_Read(bad, &c);
      ASSERT_EQ(rc == 0, c.ok);
      if (rc == 0) continue;
      ++rejected;
      EXPECT_GE(c.errorOffset, full.records[record].offset) << "byte " << at;
      EXPECT_LT(c.errorOffset, good.size()) << "byte " << at;
      EXPECT_FALSE(c.error.empty());
    }
  }
  EXPECT_GT(rejected, 100u);
}
