// The stream reader on streams made by the filter's own record writers and
// framing operations.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "driver/printing_task.h"
#include "jobstream/framing.h"
#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "log/log.h"
#include "support/framing_fixture.h"
#include "support/stream_reader_builder.h"

namespace {

class StreamReaderFraming : public TFramingTest {
 protected:
  void SetUp() override {
    TFramingTest::SetUp();
    Log_SetOutputMask(0);
    task.printerModel = 1030;
    task.copies = 2;
  }
  // One image as the filter sends it: start record, chunks of whole rows
  // of at most IMAGE_CHUNK_BYTES, end record.
  void Image(uint32_t width, uint32_t height, int32_t panel, const std::vector<uint8_t>& pixels) {
    uint8_t start[ICMD_STARTIMAGE_BYTES], end[ICMD_ENDIMAGE_BYTES], header[ICMD_HEADER_BYTES];
    Rec_StartImage(start, width, height, panel);
    Job_WriteCommand(&task, start);
    size_t rowBytes = static_cast<size_t>(width) * (panel == 0 ? 3 : 1);
    size_t rows = IMAGE_CHUNK_BYTES / rowBytes;
    for (size_t row = 0; row < height; row += rows) {
      size_t n = (std::min<size_t>(height, row + rows) - row) * rowBytes;
      Rec_ImageHeader(header, static_cast<uint32_t>(n));
      fwrite(header, 1, sizeof header, task.output);
      fwrite(pixels.data() + row * rowBytes, 1, n, task.output);
    }
    Rec_EndImage(end);
    Job_WriteCommand(&task, end);
  }
  // One side: open card and side as page processing does, one image, end the side.
  void Side(int32_t panel, const std::vector<uint8_t>& pixels) {
    OpenSide();
    Image(1036, 664, panel, pixels);
    Job_EndSide(&task);
  }
};

}  // namespace

TEST_F(StreamReaderFraming, ASimplexJobWithMagneticDataIsComplete) {
  task.magTracks[1].format = 0x42;
  task.magTracks[1].length = 1;
  task.magTracks[1].codes[0] = 5;
  std::vector<uint8_t> color = Test_Pixels(1036 * 664 * 3, 9);
  Job_ProcessHeader(&task, "123", "Badge");
  Side(0, color);
  Job_ProcessFooter(&task);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(Bytes(), &c)) << c.errorOffset << ": " << c.error;
  EXPECT_TRUE(c.complete);
  // STARTJOB, STARTCARD, MAGENCODE, STARTSIDE, LUTTABLE, STARTIMAGE, 35
  // chunks, ENDIMAGE, ENDSIDE, ENDCARD, ENDJOB.
  ASSERT_EQ(45u, c.records.size());
  EXPECT_EQ(ICMD_MAGENCODE, c.records[2].type);
  EXPECT_EQ(59052u, c.records[6].length);
  EXPECT_EQ(55944u, c.records[40].length);
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(c.records[0], &job));
  EXPECT_EQ(123u, job.jobId);
  EXPECT_EQ(1030u, job.printer);
  EXPECT_EQ(2u, job.copies);
  EXPECT_EQ("Badge", job.title);
  TMagTrackFields tracks[3];
  ASSERT_TRUE(Stream_DecodeMagEncode(c.records[2], tracks));
  EXPECT_EQ(0u, tracks[0].format);
  EXPECT_EQ(0x42u, tracks[1].format);
  EXPECT_EQ(1u, tracks[1].length);
  EXPECT_EQ(5u, tracks[1].chars[0]);
  uint8_t r[256], g[256], b[256];
  ASSERT_TRUE(Stream_DecodeLUTTable(c.records[4], r, g, b));
  EXPECT_EQ(77, g[77]);  // identity table of a new task
  ASSERT_EQ(1u, c.panels.size());
  EXPECT_EQ(35u, c.panels[0].chunks);
  EXPECT_EQ(color, c.panels[0].pixels);
}

TEST_F(StreamReaderFraming, ADuplexJobHasAPanelOnEachSide) {
  task.duplex = 1;
  std::vector<uint8_t> front = Test_Pixels(1036 * 664 * 3, 1), back = Test_Pixels(1036 * 664, 2);
  Job_ProcessHeader(&task, "8", nullptr);
  Side(0, front);
  Side(1, back);
  Job_ProcessFooter(&task);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(Bytes(), &c)) << c.errorOffset << ": " << c.error;
  EXPECT_TRUE(c.complete);
  ASSERT_EQ(2u, c.panels.size());
  EXPECT_EQ(1, c.panels[1].side);
  EXPECT_EQ(12u, c.panels[1].chunks);  // 59 rows a chunk: 11 x 61124 bytes + 15 rows
  EXPECT_EQ(back, c.panels[1].pixels);
  TStartCardFields card;
  ASSERT_TRUE(Stream_DecodeStartCard(c.records[1], &card));
  EXPECT_EQ(1u, card.duplex);
  EXPECT_EQ(2u, card.copies);
  EXPECT_EQ(task.cardId, card.cardId);
}

TEST_F(StreamReaderFraming, AJobCancelledAfterTheCardStartedIsCut) {
  Job_ProcessHeader(&task, "9", "t");
  Job_StartCard(&task);
  Job_StartSide(&task);
  Job_WriteLUTTable(&task);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(Bytes(), &c)) << c.error;
  EXPECT_TRUE(c.ok);
  EXPECT_FALSE(c.complete);
  EXPECT_EQ("side 0", c.openLevel);
}

TEST_F(StreamReaderFraming, AnEmptyJobIsHeaderAndFooter) {
  Job_ProcessHeader(&task, "abc", "t");
  Job_ProcessFooter(&task);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(Bytes(), &c)) << c.error;
  EXPECT_TRUE(c.complete);
  EXPECT_EQ(2u, c.records.size());
  uint32_t jobId = 7;
  ASSERT_TRUE(Stream_DecodeEndJob(c.records[1], &jobId));
  EXPECT_EQ(0u, jobId);
}
