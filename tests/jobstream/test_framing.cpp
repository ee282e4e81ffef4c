// Tests of job, card and side framing: record order, state and log lines.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "driver/printing_task.h"
#include "jobstream/framing.h"
#include "jobstream/records.h"
#include "log/log.h"
#include "support/framing_fixture.h"
#include "util/sys.h"

namespace {

struct TRecord {
  uint16_t type;
  std::string payload;
};

// 'Parse()' - Split a job command stream into its records.
std::vector<TRecord> Parse(const std::string& s) {
  std::vector<TRecord> out;
  size_t pos = 0;
  while (pos + ICMD_HEADER_BYTES <= s.size()) {
    const uint8_t* p = reinterpret_cast<const uint8_t*>(s.data() + pos);
    uint32_t len = Rec_Get32(p + 2);
    if (pos + ICMD_HEADER_BYTES + len > s.size()) break;
    out.push_back({Rec_Get16(p), s.substr(pos + ICMD_HEADER_BYTES, len)});
    pos += ICMD_HEADER_BYTES + len;
  }
  EXPECT_EQ(pos, s.size()) << "stream ends inside a record";
  return out;
}

const uint8_t* U8(const std::string& s) { return reinterpret_cast<const uint8_t*>(s.data()); }

class Framing : public TFramingTest {
 protected:
  void SetUp() override {
    TFramingTest::SetUp();
    Log_SetFileName("unit-framing.log");
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_LOG);
    Log_SetDepth(0);
  }
  void TearDown() override {
    TFramingTest::TearDown();
    Log_SetOutputMask(0);
    Log_SetDepth(0);
  }
  std::vector<TRecord> Records() { return Parse(Bytes()); }
  std::vector<uint16_t> Types() {
    std::vector<uint16_t> t;
    for (const TRecord& r : Records()) t.push_back(r.type);
    return t;
  }
  // One side as page processing opens and closes it.
  void Side() {
    OpenSide();
    Job_EndSide(&task);
  }
};

}  // namespace

TEST_F(Framing, SimplexRecordOrder) {
  Job_ProcessHeader(&task, "7", "title");
  Side();
  EXPECT_EQ(0, task.cardOpen);
  EXPECT_EQ(0, task.sideOpen);
  Job_ProcessFooter(&task);
  EXPECT_EQ((std::vector<uint16_t>{1, 3, 6, 11, 7, 4, 2}), Types());
}

TEST_F(Framing, DuplexRecordOrderAndSides) {
  task.duplex = 1;
  Job_ProcessHeader(&task, "7", "title");
  Side();
  EXPECT_EQ(1, task.cardOpen);
  EXPECT_EQ(0, task.sideOpen);
  EXPECT_EQ(1, task.sideIndex);
  Side();
  EXPECT_EQ(0, task.cardOpen);
  EXPECT_EQ(0, task.sideIndex);
  Job_ProcessFooter(&task);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(10u, r.size());
  std::vector<uint16_t> types;
  for (const TRecord& x : r) types.push_back(x.type);
  EXPECT_EQ((std::vector<uint16_t>{1, 3, 6, 11, 7, 6, 11, 7, 4, 2}), types);
  EXPECT_EQ(1, U8(r[1].payload)[STARTCARD_DUPLEX - 6]);
  EXPECT_EQ(0u, Rec_Get32(U8(r[2].payload)));
  EXPECT_EQ(0u, Rec_Get32(U8(r[4].payload)));
  EXPECT_EQ(1u, Rec_Get32(U8(r[5].payload)));
  EXPECT_EQ(1u, Rec_Get32(U8(r[7].payload)));
}

TEST_F(Framing, DuplexFlagDroppingToZeroWhenTheFrontEndsClosesTheCard) {
  task.duplex = 1;
  Job_StartCard(&task);
  Job_StartSide(&task);
  task.duplex = 0;  // the page that ends the front side is simplex
  Job_EndSide(&task);
  EXPECT_EQ(0, task.cardOpen);
  EXPECT_EQ(0, task.sideIndex);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(4u, r.size());
  EXPECT_EQ(1, U8(r[0].payload)[STARTCARD_DUPLEX - 6]);  // the card said duplex
  EXPECT_EQ(ICMD_ENDSIDE, r[2].type);
  EXPECT_EQ(ICMD_ENDCARD, r[3].type);
}

TEST_F(Framing, NoMagEncodeWithoutTrackData) {
  Job_StartCard(&task);
  Job_WriteMagEncode(&task);
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTCARD}), Types());
}

TEST_F(Framing, MagEncodeWithOnlyTrack2) {
  task.magTracks[1].format = 0x42;
  task.magTracks[1].length = 2;
  task.magTracks[1].codes[0] = 7;
  task.magTracks[1].codes[1] = 8;
  task.magTracks[0].length = 9;  // no format byte: left out
  Job_WriteMagEncode(&task);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(1u, r.size());
  ASSERT_EQ(390u, r[0].payload.size());
  std::string expected(390, '\0');
  expected[130] = 0x42;
  expected[131] = 2;
  expected[132] = 7;
  expected[133] = 8;
  EXPECT_EQ(expected, r[0].payload);
}

TEST_F(Framing, CardIdComesFromTheMillisecondClockMasked) {
  uint64_t before = Sys_NowMs() & 0x7FFFFFFF;
  task.copies = 4;
  task.magPOMode = 3;
  task.cardThickness = 2;
  task.cardEjectExisting = 1;
  Job_StartCard(&task);
  uint64_t after = Sys_NowMs() & 0x7FFFFFFF;
  EXPECT_LE(task.cardId, 0x7FFFFFFFu);
  if (before <= after) {  // the masked clock did not wrap meanwhile
    EXPECT_GE(task.cardId, before);
    EXPECT_LE(task.cardId, after);
  }
  EXPECT_EQ(1, task.cardOpen);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(1u, r.size());
  EXPECT_EQ(task.cardId, Rec_Get64(U8(r[0].payload)));
  EXPECT_EQ(4u, Rec_Get32(U8(r[0].payload) + 8));
  EXPECT_EQ(3, U8(r[0].payload)[STARTCARD_MAG_PO_MODE - 6]);
  Job_EndCard(&task);
  EXPECT_EQ(task.cardId, Rec_Get64(U8(Records()[1].payload)));
}

TEST_F(Framing, StartCardResetsSideState) {
  task.sideIndex = 1;
  task.subPage = 3;
  Job_StartCard(&task);
  EXPECT_EQ(0, task.sideIndex);
  EXPECT_EQ(0, task.subPage);
}

TEST_F(Framing, StartSideSetsSubPageFromTheRibbon) {
  task.frontRibbon = 0;
  Job_StartSide(&task);
  EXPECT_EQ(1, task.subPage);
  EXPECT_EQ(1, task.cardOpen);
  EXPECT_EQ(1, task.sideOpen);
  task.sideIndex = 1;
  task.backRibbon = 3;
  task.subPage = 2;
  Job_StartSide(&task);
  EXPECT_EQ(0, task.subPage);
}

TEST_F(Framing, StartSideUsesTheOptionsOfItsSide) {
  task.sideIndex = 1;
  task.backRibbon = 0;
  task.backUV = 2;
  task.backPO = 1;
  task.backUVMAC = 1;
  task.backSecureErase = 1;
  task.backLUTTable = 3;
  task.frontLUTTable = 1;
  Job_StartSide(&task);
  // side 1; YMC no, K yes, UV yes, PO yes, MAC 1, secure erase 1, LUT 3
  EXPECT_EQ(std::string("\x01\0\0\0\0\x01\x01\x01\x01\x01\x03", 11), Records()[0].payload);
}

TEST_F(Framing, LUTTableOfTheCurrentSide) {
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < 256; ++i) task.lutTable[1][c][i] = static_cast<uint8_t>(255 - i + c);
  task.sideIndex = 1;
  Job_WriteLUTTable(&task);
  task.sideIndex = 0;
  Job_WriteLUTTable(&task);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(2u, r.size());
  EXPECT_EQ(0, memcmp(r[0].payload.data(), task.lutTable[1], 768));
  EXPECT_EQ(0, memcmp(r[1].payload.data(), task.lutTable[0], 768));
  EXPECT_EQ(0, U8(r[1].payload)[0]);
  EXPECT_EQ(255, U8(r[1].payload)[767]);
}

TEST_F(Framing, JobId123InStartAndEnd) {
  Job_ProcessHeader(&task, "123", "x");
  EXPECT_EQ(123, task.jobId);
  Job_ProcessFooter(&task);
  std::vector<TRecord> r = Records();
  ASSERT_EQ(2u, r.size());
  EXPECT_EQ(123u, Rec_Get32(U8(r[0].payload) + 12));
  EXPECT_EQ(123u, Rec_Get32(U8(r[1].payload)));
}

TEST_F(Framing, JobIdOfLettersOrMissingOrTooLargeIsZero) {
  for (const char* text : {"abc", "", "99999999999", static_cast<const char*>(nullptr)}) {
    task.jobId = 55;
    Job_ProcessHeader(&task, text, "x");
    EXPECT_EQ(0, task.jobId) << (text ? text : "null");
  }
  Job_ProcessHeader(&task, "42abc", "x");
  EXPECT_EQ(42, task.jobId);
}

TEST_F(Framing, HeaderCarriesModelCopiesPluginAndQueue) {
  task.printerModel = 1035;
  task.copies = 3;
  task.printerPlugin = "plugin";
  task.printerName = "queue";
  Job_ProcessHeader(&task, "1", "");
  std::string p = Records()[0].payload;
  EXPECT_EQ(0x00010001u, Rec_Get32(U8(p)));
  EXPECT_EQ(1035u, Rec_Get32(U8(p) + 8));
  EXPECT_EQ(3u, Rec_Get32(U8(p) + 16));
  EXPECT_EQ(std::string(128, '\0'), p.substr(21, 128));  // empty title: all zero
  EXPECT_EQ(std::string("plugin\0", 7), p.substr(149, 7));
  EXPECT_EQ(std::string("queue\0", 6), p.substr(277, 6));
}

TEST_F(Framing, TitleOf127AndOf200Characters) {
  std::string t127(127, 'a'), t200(200, 'b');
  Job_ProcessHeader(&task, "1", t127.c_str());
  Job_ProcessHeader(&task, "1", t200.c_str());
  std::vector<TRecord> r = Records();
  ASSERT_EQ(2u, r.size());
  EXPECT_EQ(t127 + '\0', r[0].payload.substr(21, 128));
  EXPECT_EQ(std::string(127, 'b') + '\0', r[1].payload.substr(21, 128));
  EXPECT_EQ('\0', r[1].payload[149]);  // nothing spilled into the plug-in field
}

TEST_F(Framing, FooterOfAFinishedSimplexJob) {
  task.pageCount = 3;
  Side();
  task.jobComplete = 1;
  testing::internal::CaptureStderr();
  Job_ProcessFooter(&task);
  EXPECT_EQ(" SIDE:    0\n PAGE:    3\n SUBPAGE: 0\n JCOMP:   1\n CMD: ICMD_ENDJOB\n",
            testing::internal::GetCapturedStderr());
}

TEST_F(Framing, EntryAndExitLinesOfHeaderAndFooter) {
  Log_SetLevel(LOG_ENTRYEXIT);
  testing::internal::CaptureStderr();
  Job_ProcessHeader(&task, "1", "t");
  std::string out = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, out.find(" >>>> Job_ProcessHeader\n      >>>> Job_WriteCommand\n"));
  EXPECT_NE(std::string::npos, out.find("\n <<<< Job_ProcessHeader\n"));
  EXPECT_EQ(0, Log_GetDepth());
}
