// Tests of the job-stream inspector's text and panel pictures.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "lib/job_text.h"
#include "jobstream/stream_reader.h"
#include "lib/panel_png.h"
#include "lib/png_io.h"
#include "support/process.h"
#include "support/stream_reader_builder.h"

namespace {

// A simplex job: colour 4 x 3 in chunks of 2 rows, black 3 x 2 in one chunk.
TStreamBuilder SmallJob() {
  TStreamBuilder b;
  b.StartJob(42, 1035, "Badge \"A\"").StartCard(1234, 0).StartSide(0, 1, 1).Lut();
  b.Panel(4, 3, 0, Test_Pixels(36, 1), 2).Panel(3, 2, 1, {0, 255, 128, 1, 2, 3}, 2);
  b.EndSide(0).EndCard(1234).EndJob(42);
  return b;
}

const std::vector<std::string> SMALL_JOB_LISTING = {
    "         0  ICMD_STARTJOB    printer=1035 job=42 copies=1 title=\"Badge \\x22A\\x22\" plugin=\"\" queue=\"\"",
    "       411  ICMD_STARTCARD   card=1234 copies=1 duplex=no laminate=no magEncode=no entryFlip=no "
    "magEncodeFlip=no magPOMode=0 thickness=0 ejectExisting=0",
    "       437  ICMD_STARTSIDE   side=0 YMC=yes K=yes UV=no PO=no MAC=0 secureErase=no LUT=0",
    "       454  ICMD_LUTTABLE    identity",
    "      1228  ICMD_STARTIMAGE  4 x 3 panel=0 (color)",
    "      1239  ICMD_IMAGE       2 records, 36 bytes, 3 rows, largest 24 bytes",
    "      1287  ICMD_ENDIMAGE",
    "      1293  ICMD_STARTIMAGE  3 x 2 panel=1 (k)",
    "      1304  ICMD_IMAGE       1 records, 6 bytes, 2 rows, largest 6 bytes",
    "      1316  ICMD_ENDIMAGE",
    "      1322  ICMD_ENDSIDE     side=0",
    "      1332  ICMD_ENDCARD     card=1234",
    "      1346  ICMD_ENDJOB      job=42",
};

}  // namespace

TEST(JobDumpText, ListingOfASmallJob) {
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(SmallJob().bytes, &c)) << c.error;
  EXPECT_EQ(SMALL_JOB_LISTING, Inspect_Listing(c, false));
  EXPECT_EQ("OK: complete job, 14 records, 2 panels", Inspect_Verdict(c));
  std::vector<std::string> chunks = Inspect_Listing(c, true);
  ASSERT_EQ(14u, chunks.size());
  EXPECT_EQ("      1239  ICMD_IMAGE       24 bytes, 2 rows", chunks[5]);
  EXPECT_EQ("      1269  ICMD_IMAGE       12 bytes, 1 rows", chunks[6]);
}

TEST(JobDumpText, MagneticTracksAndCustomTables) {
  TStreamBuilder b;
  b.StartJob(1).StartCard(1);
  std::vector<uint8_t> mag(ICMD_MAGENCODE_PAYLOAD, 0);
  mag[130] = 0x42;
  mag[131] = 3;
  mag[132] = 0x10;
  mag[133] = 0x01;
  mag[134] = 0xFF;
  b.Record(ICMD_MAGENCODE, mag).StartSide(0);
  std::vector<uint8_t> lut(ICMD_LUTTABLE_PAYLOAD);
  for (size_t i = 0; i < lut.size(); ++i) lut[i] = static_cast<uint8_t>(255 - i % 256);
  b.Record(ICMD_LUTTABLE, lut);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(b.bytes, &c)) << c.error;
  EXPECT_EQ("track1=- track2=format=0x42 length=3 [10 01 FF] track3=-", Inspect_Fields(c.records[2]));
  EXPECT_EQ("custom red=255/127/0 green=255/127/0 blue=255/127/0 (entries 0/128/255)", Inspect_Fields(c.records[4]));
  EXPECT_EQ("CUT: the stream stops before ICMD_ENDJOB with 5 records and 0 panels; still open: side 0",
            Inspect_Verdict(c));
}

TEST(JobDumpText, VerdictOfAMalformedStream) {
  TStreamCheck c;
  std::string bytes = TStreamBuilder().StartJob(1).Record(12, {}).bytes;
  ASSERT_EQ(1, Stream_Read(bytes, &c));
  EXPECT_EQ("ERROR at offset 411: unknown record type 12", Inspect_Verdict(c));
  EXPECT_EQ(1u, Inspect_Listing(c, false).size());
}

TEST(JobDumpPanels, FileNamesAndPictures) {
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(SmallJob().bytes, &c));
  EXPECT_EQ("side0-panel0-color.png", Inspect_PanelFileName(c.panels[0]));
  EXPECT_EQ("side0-panel1-k.png", Inspect_PanelFileName(c.panels[1]));
  EXPECT_EQ(c.panels[0].pixels, Inspect_PanelImage(c.panels[0]));
  EXPECT_EQ(std::vector<uint8_t>({255, 0, 127, 254, 253, 252}), Inspect_PanelImage(c.panels[1]));
  TStreamPanel uv;
  uv.side = 1;
  uv.index = 2;
  uv.panelType = 2;
  EXPECT_EQ("side1-panel2-uv.png", Inspect_PanelFileName(uv));
  uv.panelType = 3;
  EXPECT_EQ("side1-panel2-po.png", Inspect_PanelFileName(uv));
}
