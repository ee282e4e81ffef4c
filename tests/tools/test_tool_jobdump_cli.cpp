// Process tests of brellian-jobdump: exit statuses, output and PNG files.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "jobstream/stream_reader.h"
#include "lib/png_io.h"
#include "support/process.h"
#include "support/scratch_dir.h"
#include "support/stream_reader_builder.h"

namespace {

const std::string JOBDUMP = BRELLIAN_TOOLS_DIR "/brellian-jobdump";

class JobDumpTool : public TScratchDirTest {
 protected:
  JobDumpTool() : TScratchDirTest("test-jobdump-cli") {}
};

// Duplex: front colour 5 x 4 and UV 5 x 4, back overlay 6 x 2.
TStreamBuilder DuplexJob(std::vector<uint8_t>* color, std::vector<uint8_t>* uv, std::vector<uint8_t>* po) {
  *color = Test_Pixels(60, 1);
  *uv = Test_Pixels(20, 2);
  *po = {0, 255, 0, 255, 10, 20, 30, 40, 50, 60, 70, 80};
  TStreamBuilder b;
  b.StartJob(7).StartCard(5, 1).StartSide(0).Lut().Panel(5, 4, 0, *color, 3).Panel(5, 4, 2, *uv, 4).EndSide(0);
  b.StartSide(1).Lut().Panel(6, 2, 3, *po, 1).EndSide(1).EndCard(5).EndJob(7);
  return b;
}

TPngImage Decode(const std::string& path, bool gray) {
  TPngImage img;
  std::string error;
  std::string bytes = Test_ReadFile(path);
  bool ok = gray ? Png_DecodeGray(bytes, &img, &error) : Png_DecodeRGB(bytes, &img, &error);
  EXPECT_TRUE(ok) << path << ": " << error;
  return img;
}

}  // namespace

TEST_F(JobDumpTool, ACompleteJobExitsZeroAndItsPngsHoldThePanelBytes) {
  std::vector<uint8_t> color, uv, po;
  Test_WriteFile(dir + "/job.bin", DuplexJob(&color, &uv, &po).bytes);
  TProcessResult r = Test_RunProcess({JOBDUMP, "--png", dir + "/png", dir + "/job.bin"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  std::vector<std::string> lines = Test_Lines(r.out);
  ASSERT_EQ(23u, lines.size()) << r.out;
  EXPECT_EQ("         0  ICMD_STARTJOB    printer=1030 job=7 copies=1 title=\"\" plugin=\"\" queue=\"\"", lines[0]);
  EXPECT_EQ("      1239  ICMD_IMAGE       2 records, 60 bytes, 4 rows, largest 45 bytes", lines[5]);
  EXPECT_EQ("      1360  ICMD_ENDSIDE     side=0", lines[10]);
  EXPECT_EQ("      1370  ICMD_STARTSIDE   side=1 YMC=yes K=no UV=no PO=no MAC=0 secureErase=no LUT=0", lines[11]);
  EXPECT_EQ("OK: complete job, 21 records, 3 panels", lines[19]);
  EXPECT_EQ("wrote " + dir + "/png/side0-panel0-color.png (5 x 4)", lines[20]);
  EXPECT_EQ("wrote " + dir + "/png/side0-panel1-uv.png (5 x 4)", lines[21]);
  EXPECT_EQ("wrote " + dir + "/png/side1-panel0-po.png (6 x 2)", lines[22]);

  TPngImage c = Decode(dir + "/png/side0-panel0-color.png", false);
  EXPECT_EQ(5u, c.width);
  EXPECT_EQ(4u, c.height);
  EXPECT_EQ(color, c.pixels);
  TPngImage u = Decode(dir + "/png/side0-panel1-uv.png", true);
  ASSERT_EQ(20u, u.pixels.size());
  for (size_t i = 0; i < 20; ++i) EXPECT_EQ(255 - uv[i], u.pixels[i]) << i;
  TPngImage p = Decode(dir + "/png/side1-panel0-po.png", true);
  EXPECT_EQ(6u, p.width);
  EXPECT_EQ(2u, p.height);
  EXPECT_EQ(std::vector<uint8_t>({255, 0, 255, 0, 245, 235, 225, 215, 205, 195, 185, 175}), p.pixels);
  struct stat st;
  EXPECT_EQ(0, stat((dir + "/png").c_str(), &st));
}

TEST_F(JobDumpTool, AMalformedStreamExitsOneWithTheOffset) {
  std::string bytes = TStreamBuilder().StartJob(1).StartCard(1).StartSide(0).Lut().StartImage(5, 4, 0)
                          .Image(std::vector<uint8_t>(16, 0)).bytes;
  TProcessOptions options;
  options.input = bytes;
  TProcessResult r = Test_RunProcess({JOBDUMP, "-"}, options);
  EXPECT_EQ(1, r.status);
  std::vector<std::string> lines = Test_Lines(r.out);
  ASSERT_EQ(6u, lines.size()) << r.out;
  EXPECT_EQ("      1228  ICMD_STARTIMAGE  5 x 4 panel=0 (color)", lines[4]);
  EXPECT_EQ("ERROR at offset 1239: ICMD_IMAGE payload of 16 bytes is not whole rows of 15 bytes", lines[5]);
  EXPECT_EQ("brellian-jobdump: ERROR at offset 1239: ICMD_IMAGE payload of 16 bytes is not whole rows of 15 bytes\n",
            r.err);
}

TEST_F(JobDumpTool, ACutStreamExitsThreeAndWritesThePartialPanel) {
  std::vector<uint8_t> color, uv, po;
  TStreamBuilder b = DuplexJob(&color, &uv, &po);
  TStreamCheck full;
  ASSERT_EQ(0, Stream_Read(b.bytes, &full));
  std::string cut = b.bytes.substr(0, full.records[6].offset);  // after the first chunk of 3 rows
  TProcessOptions options;
  options.input = cut;
  TProcessResult r = Test_RunProcess({JOBDUMP, "-q", "-p", dir}, options);
  EXPECT_EQ(3, r.status) << r.err;
  EXPECT_EQ("", r.err);
  EXPECT_EQ("CUT: the stream stops before ICMD_ENDJOB with 6 records and 1 panels; still open: image (3 of 4 rows) "
            "of side 0\n",
            r.out);
  TPngImage c = Decode(dir + "/side0-panel0-color.png", false);
  EXPECT_EQ(3u, c.height);
  EXPECT_EQ(std::vector<uint8_t>(color.begin(), color.begin() + 45), c.pixels);
}

TEST_F(JobDumpTool, HelpUsageAndUnreadableInput) {
  TProcessResult h = Test_RunProcess({JOBDUMP, "--help"});
  EXPECT_EQ(0, h.status);
  EXPECT_EQ(0u, h.out.find("Usage: brellian-jobdump [options] [FILE]\n"));
  EXPECT_NE(std::string::npos, h.out.find("Exit status: 0 complete, 1 malformed, 2 usage or input/output failure, 3 cut short.\n"));
  TProcessResult bad = Test_RunProcess({JOBDUMP, "--bogus"});
  EXPECT_EQ(2, bad.status);
  TProcessResult two = Test_RunProcess({JOBDUMP, "a", "b"});
  EXPECT_EQ(2, two.status);
  EXPECT_EQ(0u, two.err.find("brellian-jobdump: more than one FILE given\n"));
  TProcessResult missing = Test_RunProcess({JOBDUMP, dir + "/none.bin"});
  EXPECT_EQ(2, missing.status);
  EXPECT_EQ("brellian-jobdump: cannot read " + dir + "/none.bin: No such file or directory\n", missing.err);
  EXPECT_EQ("", missing.out);
  TProcessResult empty = Test_RunProcess({JOBDUMP});
  EXPECT_EQ(3, empty.status);
  EXPECT_EQ("CUT: the stream stops before ICMD_ENDJOB with 0 records and 0 panels; still open: nothing (empty stream)\n",
            empty.out);
}
