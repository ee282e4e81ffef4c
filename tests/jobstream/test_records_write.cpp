// Tests of Job_WriteCommand: bytes written, flush and log lines per record.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "driver/printing_task.h"
#include "jobstream/records.h"
#include "log/log.h"

namespace {

class WriteCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    Log_SetFileName("unit-records.log");
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_LOG);
    Log_SetDepth(0);
    task.output = open_memstream(&data, &size);
  }
  void TearDown() override {
    fclose(task.output);
    free(data);
    Log_SetOutputMask(0);
    Log_SetDepth(0);
  }
  // Write one record; returns the log lines it produced.
  std::string Write(const uint8_t* record) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, Job_WriteCommand(&task, record));
    return testing::internal::GetCapturedStderr();
  }
  std::string Output() const { return std::string(data, size); }  // valid after a flush

  TPrintingTask task{0, nullptr};
  char* data = nullptr;
  size_t size = 0;
};

}  // namespace

TEST_F(WriteCommand, StartJobIsWrittenWholeFlushedAndLogged) {
  uint8_t r[ICMD_STARTJOB_BYTES];
  Rec_StartJob(r, 1060, 123, 2, "t", "p", "q");
  EXPECT_EQ(" CMD: ICMD_STARTJOB\n      Printer: 1060\n      Job ID:  123\n      Copies:  2\n",
            Write(r));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(r), sizeof r), Output());
}

TEST_F(WriteCommand, StartCardLines) {
  uint8_t r[ICMD_STARTCARD_BYTES];
  TCardFields f = {3, 1, 0, 1, 0, 1, 2, 1, 1};
  Rec_StartCard(r, 0x7FFFFFFEu, f);
  EXPECT_EQ(" CMD: ICMD_STARTCARD\n"
            "      Card ID:         2147483646\n"
            "      Copies:          3\n"
            "      Card Thickness:  1\n"
            "      Entry Flip:      yes\n"
            "      Mag Encode Flip: no\n"
            "      Duplex:          yes\n"
            "      Laminate:        no\n"
            "      Mag Encode:      yes\n"
            "      Mag PO Mode:     2\n"
            "      Eject Existing:  1\n",
            Write(r));
  EXPECT_EQ(26u, Output().size());
}

TEST_F(WriteCommand, StartSideLines) {
  uint8_t r[ICMD_STARTSIDE_BYTES];
  Rec_StartSide(r, TSideFields{1, 0, 3, 0, 1, 1, 2});
  EXPECT_EQ(" CMD: ICMD_STARTSIDE\n"
            "      Side: 1\n"
            "      YMC:  no\n"
            "      K:    yes\n"
            "      UV:   yes\n"
            "      PO:   no\n"
            "      MAC:  1\n"
            "      Secure Erase: yes\n"
            "      LUT:  2\n",
            Write(r));
}

TEST_F(WriteCommand, OneLineRecords) {
  uint8_t r[ICMD_LUTTABLE_BYTES];
  Rec_EndJob(r, 5);
  EXPECT_EQ(" CMD: ICMD_ENDJOB\n", Write(r));
  Rec_EndCard(r, 5);
  EXPECT_EQ(" CMD: ICMD_ENDCARD\n", Write(r));
  TMagTrack t[3] = {};
  t[0].format = 1;
  Rec_MagEncode(r, t);
  EXPECT_EQ(" CMD: ICMD_MAGENCODE\n", Write(r));
  Rec_EndSide(r, 1);
  EXPECT_EQ(" CMD: ICMD_ENDSIDE\n      Side: 1\n", Write(r));
  Rec_StartImage(r, 1036, 664, 0);
  EXPECT_EQ(" CMD: ICMD_STARTIMAGE\n", Write(r));
  Rec_EndImage(r);
  EXPECT_EQ(" CMD: ICMD_ENDIMAGE\n", Write(r));
  Rec_LUTTable(r, task.lutTable[0]);
  EXPECT_EQ(" CMD: ICMD_LUTTABLE\n", Write(r));
  EXPECT_EQ(10u + 14u + 396u + 10u + 11u + 6u + 774u, Output().size());
}

TEST_F(WriteCommand, ImageRecordLogsItsLengthAtInfoLevel) {
  uint8_t r[ICMD_HEADER_BYTES + 5] = {0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5};
  Rec_ImageHeader(r, 5);
  EXPECT_EQ("", Write(r));
  Log_SetLevel(LOG_INFO);
  EXPECT_EQ(" CMD: ICMD_IMAGE :: [5]\n", Write(r));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(r), sizeof r) +
                std::string(reinterpret_cast<char*>(r), sizeof r),
            Output());
}

TEST_F(WriteCommand, UnknownTypeIsWrittenWithoutALine) {
  uint8_t r[ICMD_HEADER_BYTES + 2] = {0, 0, 0, 0, 0, 0, 0xAB, 0xCD};
  Rec_Header(r, 12, 2);
  EXPECT_EQ("", Write(r));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(r), sizeof r), Output());
  Rec_Header(r, 0, 0);
  EXPECT_EQ("", Write(r));
  EXPECT_EQ(14u, Output().size());
}

TEST_F(WriteCommand, EntryAndExitLinesAtLevel24) {
  Log_SetLevel(LOG_ENTRYEXIT);
  uint8_t r[ICMD_ENDIMAGE_BYTES];
  Rec_EndImage(r);
  EXPECT_EQ(" >>>> Job_WriteCommand\n      CMD: ICMD_ENDIMAGE\n <<<< Job_WriteCommand\n", Write(r));
}
