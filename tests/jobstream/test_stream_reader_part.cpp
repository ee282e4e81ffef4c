// Tests of Stream_ReadPart: parts of a job as the framing and page
// operations write them on their own, read with every other check kept.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "support/stream_reader_builder.h"

TEST(StreamReadPart, ACardWithoutItsJobReadsAsAPartOnly) {
  TStreamBuilder b;
  b.StartCard(77).StartSide(0).Lut().Panel(4, 3, 1, Test_Pixels(12, 1), 2).EndSide(0).EndCard(77);
  TStreamCheck part, whole;
  EXPECT_EQ(0, Stream_ReadPart(b.bytes, &part)) << part.error;
  EXPECT_TRUE(part.ok);
  EXPECT_FALSE(part.complete);
  EXPECT_EQ("job", part.openLevel);
  EXPECT_EQ(9u, part.records.size());
  ASSERT_EQ(1u, part.panels.size());
  EXPECT_TRUE(part.panels[0].complete);
  EXPECT_EQ(Test_Pixels(12, 1), part.panels[0].pixels);
  EXPECT_EQ(1, Stream_Read(b.bytes, &whole));
  EXPECT_EQ(0u, whole.errorOffset);
}

TEST(StreamReadPart, ImagesOfASideWhoseNumberCameBefore) {
  TStreamBuilder b;
  b.Panel(3, 2, 0, Test_Pixels(18, 2), 1).Panel(3, 2, 2, Test_Pixels(6, 3), 2).EndSide(1).EndCard(5);
  TStreamCheck c;
  EXPECT_EQ(0, Stream_ReadPart(b.bytes, &c)) << c.error;
  ASSERT_EQ(2u, c.panels.size());
  EXPECT_EQ(2u, c.panels[0].chunks);
  EXPECT_EQ(2u, c.panels[1].panelType);
  EXPECT_EQ("job", c.openLevel);
}

TEST(StreamReadPart, OrderIsStillChecked) {
  TStreamBuilder noLut, secondCard, cutImage;
  noLut.StartCard(1).StartSide(0).Panel(2, 1, 1, Test_Pixels(2, 1), 1);
  secondCard.StartCard(1).EndCard(1).StartCard(2);
  cutImage.StartImage(2, 2, 1).Image(Test_Pixels(2, 1)).EndImage();
  TStreamCheck c;
  EXPECT_EQ(1, Stream_ReadPart(noLut.bytes, &c));
  EXPECT_EQ("ICMD_STARTSIDE must be followed by ICMD_LUTTABLE, not ICMD_STARTIMAGE", c.error);
  EXPECT_EQ(1, Stream_ReadPart(secondCard.bytes, &c));
  EXPECT_EQ("a second ICMD_STARTCARD (a job holds one card)", c.error);
  EXPECT_EQ(1, Stream_ReadPart(cutImage.bytes, &c));
  EXPECT_EQ("ICMD_ENDIMAGE after 1 of 2 rows", c.error);
}

TEST(StreamReadPart, NoPartBeginsInsideAnImage) {
  TStreamBuilder b;
  b.Image(Test_Pixels(6, 1)).EndImage();
  TStreamCheck c;
  EXPECT_EQ(1, Stream_ReadPart(b.bytes, &c));
  EXPECT_EQ(0u, c.errorOffset);
  EXPECT_EQ("no part of a job begins with record type 10", c.error);
}

TEST(StreamReadPart, AWholeJobReadsAsStreamReadReadsIt) {
  TStreamBuilder b;
  b.StartJob(9).StartCard(3).StartSide(0).Lut().EndSide(0).EndCard(4);
  TStreamCheck part, whole;
  EXPECT_EQ(1, Stream_ReadPart(b.bytes, &part));
  EXPECT_EQ(1, Stream_Read(b.bytes, &whole));
  EXPECT_EQ(whole.error, part.error);
  EXPECT_EQ(whole.errorOffset, part.errorOffset);
}
