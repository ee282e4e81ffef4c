// Tests of the job command stream reader on malformed streams: each case
// names the exact offset and message of the first violation.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <functional>

#include "jobstream/stream_reader.h"
#include "support/stream_reader_builder.h"

namespace {

// Job, card and side 0 with its table: 411 + 26 + 17 + 774 = 1228 bytes.
TStreamBuilder OpenSide() {
  TStreamBuilder b;
  b.StartJob(1).StartCard(1).StartSide(0).Lut();
  return b;
}

// A finished simplex job with one 2 x 2 black panel; 1228 + 11 + 10 + 6 +
// 10 + 14 + 10 = 1289 bytes.
TStreamBuilder WholeJob() {
  TStreamBuilder b = OpenSide();
  b.Panel(2, 2, 1, {1, 2, 3, 4}, 2).EndSide(0).EndCard(1).EndJob(1);
  return b;
}

struct TBadCase {
  const char* name;
  std::function<std::string()> make;
  uint64_t offset;
  const char* error;
  size_t recordsBefore;  // records read before the violation
};

const TBadCase BAD_CASES[] = {
    {"UnknownType", [] { return TStreamBuilder().StartJob(1).Record(12, {}).bytes; }, 411,
     "unknown record type 12", 1},
    {"TypeZero", [] { return TStreamBuilder().Record(0, {}).bytes; }, 0, "unknown record type 0", 0},
    {"ShortStartJob",
     [] { return TStreamBuilder().Record(ICMD_STARTJOB, std::vector<uint8_t>(404, 0)).bytes; }, 0,
     "ICMD_STARTJOB payload is 404 bytes, expected 405", 0},
    {"ShortStartCard", [] { return TStreamBuilder().StartJob(1).Record(ICMD_STARTCARD, std::vector<uint8_t>(19, 0)).bytes; },
     411, "ICMD_STARTCARD payload is 19 bytes, expected 20", 1},
    {"LongLUT", [] { return TStreamBuilder().StartJob(1).StartCard(1).StartSide(0).Record(ICMD_LUTTABLE, std::vector<uint8_t>(769, 0)).bytes; },
     454, "ICMD_LUTTABLE payload is 769 bytes, expected 768", 3},
    {"EndImageWithPayload", [] { return OpenSide().StartImage(2, 2, 1).Image({1, 2, 3, 4}).Record(ICMD_ENDIMAGE, {0}).bytes; },
     1249, "ICMD_ENDIMAGE payload is 1 bytes, expected 0", 6},
    {"ChunkNotWholeRows", [] { return OpenSide().StartImage(5, 4, 0).Image(std::vector<uint8_t>(16, 0)).bytes; },
     1239, "ICMD_IMAGE payload of 16 bytes is not whole rows of 15 bytes", 5},
    {"ChunkOver61440", [] { return OpenSide().StartImage(1024, 64, 1).Record(ICMD_IMAGE, 61441, {}).bytes; },
     1239, "ICMD_IMAGE payload is 61441 bytes, more than 61440", 5},
    {"EmptyChunk", [] { return OpenSide().StartImage(4, 4, 1).Image({}).bytes; }, 1239,
     "ICMD_IMAGE without pixel data", 5},
    {"RowsBeyondHeight", [] { return OpenSide().StartImage(2, 2, 1).Image({1, 2, 3, 4}).Image({5, 6}).bytes; },
     1249, "ICMD_IMAGE brings the image to 3 rows, more than its height 2", 6},
    {"EndImageEarly", [] { return OpenSide().StartImage(2, 3, 1).Image({1, 2, 3, 4}).EndImage().bytes; },
     1249, "ICMD_ENDIMAGE after 2 of 3 rows", 6},
    {"PanelTypeFour", [] { return OpenSide().StartImage(2, 2, 4).bytes; }, 1228,
     "ICMD_STARTIMAGE panel type 4 is not 0-3", 4},
    {"EmptyImage", [] { return OpenSide().StartImage(0, 2, 1).bytes; }, 1228,
     "ICMD_STARTIMAGE of 0 x 2 pixels is empty", 4},
    {"RowTooWide", [] { return OpenSide().StartImage(20481, 1, 0).bytes; }, 1228,
     "ICMD_STARTIMAGE rows of 61443 bytes do not fit an ICMD_IMAGE record", 4},
    {"CardFirst", [] { return TStreamBuilder().StartCard(1).bytes; }, 0,
     "the stream must begin with ICMD_STARTJOB, not ICMD_STARTCARD", 0},
    {"SecondStartJob", [] { return TStreamBuilder().StartJob(1).StartJob(1).bytes; }, 411,
     "a second ICMD_STARTJOB", 1},
    {"BadFormatWord", [] {
       TStreamBuilder b;
       b.StartJob(1);
       b.bytes[6] = 2;
       return b.bytes;
     }, 0, "ICMD_STARTJOB format word is 0x00010002, not 0x00010001", 0},
    {"MagEncodeAfterSide", [] { return OpenSide().MagEncode().bytes; }, 1228,
     "ICMD_MAGENCODE must come right after ICMD_STARTCARD", 4},
    {"MagEncodeWithoutCard", [] { return TStreamBuilder().StartJob(1).MagEncode().bytes; }, 411,
     "ICMD_MAGENCODE must come right after ICMD_STARTCARD", 1},
    {"SideOutsideCard", [] { return TStreamBuilder().StartJob(1).StartSide(0).bytes; }, 411,
     "ICMD_STARTSIDE outside a card", 1},
    {"SideWithoutLUT", [] { return TStreamBuilder().StartJob(1).StartCard(1).StartSide(0).StartImage(2, 2, 1).bytes; },
     454, "ICMD_STARTSIDE must be followed by ICMD_LUTTABLE, not ICMD_STARTIMAGE", 3},
    {"LUTWithoutSide", [] { return OpenSide().Lut().bytes; }, 1228,
     "ICMD_LUTTABLE must come right after ICMD_STARTSIDE", 4},
    {"BackSideFirst", [] { return TStreamBuilder().StartJob(1).StartCard(1).StartSide(1).bytes; }, 437,
     "ICMD_STARTSIDE for side 1, expected side 0", 2},
    {"SideInsideSide", [] { return OpenSide().StartSide(1).bytes; }, 1228,
     "ICMD_STARTSIDE inside an open side", 4},
    {"ThirdSide", [] {
       TStreamBuilder b = OpenSide();
       return b.EndSide(0).StartSide(1).Lut().EndSide(1).StartSide(2).bytes;
     }, 1228 + 10 + 17 + 774 + 10, "a third ICMD_STARTSIDE in one card", 8},
    {"ImageOutsideSide", [] { return TStreamBuilder().StartJob(1).StartCard(1).StartImage(2, 2, 1).bytes; },
     437, "ICMD_STARTIMAGE outside a side", 2},
    {"ChunkOutsideImage", [] { return OpenSide().Image({1, 2}).bytes; }, 1228, "ICMD_IMAGE outside an image", 4},
    {"EndImageWithoutStart", [] { return OpenSide().EndImage().bytes; }, 1228,
     "ICMD_ENDIMAGE without ICMD_STARTIMAGE", 4},
    {"EndSideInsideImage", [] { return OpenSide().StartImage(2, 2, 1).Image({1, 2}).EndSide(0).bytes; },
     1247, "ICMD_ENDSIDE inside an open image (1 of 2 rows read)", 6},
    {"EndSideOfOtherSide", [] { return OpenSide().EndSide(1).bytes; }, 1228,
     "ICMD_ENDSIDE for side 1 while side 0 is open", 4},
    {"EndSideWithoutSide", [] { return TStreamBuilder().StartJob(1).StartCard(1).EndSide(0).bytes; }, 437,
     "ICMD_ENDSIDE without an open side", 2},
    {"EndCardInsideSide", [] { return OpenSide().EndCard(1).bytes; }, 1228, "ICMD_ENDCARD inside an open side", 4},
    {"EndCardWrongId", [] { return OpenSide().EndSide(0).EndCard(2).bytes; }, 1238,
     "ICMD_ENDCARD card id 2 differs from ICMD_STARTCARD card id 1", 5},
    {"EndCardWithoutCard", [] { return TStreamBuilder().StartJob(1).EndCard(1).bytes; }, 411,
     "ICMD_ENDCARD without an open card", 1},
    {"SecondCard", [] { return OpenSide().EndSide(0).EndCard(1).StartCard(2).bytes; }, 1252,
     "a second ICMD_STARTCARD (a job holds one card)", 6},
    {"EndJobInsideCard", [] { return TStreamBuilder().StartJob(1).StartCard(1).EndJob(1).bytes; }, 437,
     "ICMD_ENDJOB inside an open card", 2},
    {"EndJobWrongId", [] { return TStreamBuilder().StartJob(123).EndJob(0).bytes; }, 411,
     "ICMD_ENDJOB job id 0 differs from ICMD_STARTJOB job id 123", 1},
    {"RecordAfterEndJob", [] { return WholeJob().EndJob(1).bytes; }, 1289, "ICMD_ENDJOB after ICMD_ENDJOB", 10},
    {"BytesAfterEndJob", [] { return WholeJob().bytes + std::string(3, '\0'); }, 1289,
     "a record header cut short: 3 of 6 bytes", 10},
    {"HeaderCutShort", [] { return TStreamBuilder().StartJob(1).bytes + std::string("\x03\x00", 2); }, 411,
     "a record header cut short: 2 of 6 bytes", 1},
    {"PayloadCutShort", [] { return TStreamBuilder().StartJob(1).bytes.substr(0, 300); }, 0,
     "ICMD_STARTJOB claims 405 payload bytes but only 294 follow", 0},
    {"ChunkCutShort", [] {
       std::string s = OpenSide().StartImage(4, 4, 1).Image(std::vector<uint8_t>(16, 7)).bytes;
       return s.substr(0, s.size() - 1);
     }, 1239, "ICMD_IMAGE claims 16 payload bytes but only 15 follow", 5},
};

// Test names in failure messages instead of raw bytes.
void PrintTo(const TBadCase& bad, std::ostream* os) { *os << bad.name; }

class StreamReaderRejects : public ::testing::TestWithParam<TBadCase> {};

}  // namespace

TEST_P(StreamReaderRejects, TheFirstViolationWithItsOffset) {
  const TBadCase& bad = GetParam();
  TStreamCheck c;
  EXPECT_EQ(1, Stream_Read(bad.make(), &c));
  EXPECT_FALSE(c.ok);
  EXPECT_FALSE(c.complete);
  EXPECT_EQ(bad.offset, c.errorOffset);
  EXPECT_EQ(bad.error, c.error);
  EXPECT_EQ(bad.recordsBefore, c.records.size());
  EXPECT_EQ("", c.openLevel);
}

INSTANTIATE_TEST_SUITE_P(Cases, StreamReaderRejects, ::testing::ValuesIn(BAD_CASES),
                         [](const ::testing::TestParamInfo<TBadCase>& info) { return std::string(info.param.name); });

TEST(StreamReader, AWholeJobBuiltForTheErrorCasesIsValid) {
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(WholeJob().bytes, &c)) << c.error;
  EXPECT_TRUE(c.complete);
  EXPECT_EQ(1289u, WholeJob().Size());
  EXPECT_EQ(10u, c.records.size());
}
