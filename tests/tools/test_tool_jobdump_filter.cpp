// The stream reader and brellian-jobdump on the real filter's output.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "lib/png_io.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

const std::string JOBDUMP = BRELLIAN_TOOLS_DIR "/brellian-jobdump";

class JobDumpFilter : public ::testing::Test {
 protected:
  void SetUp() override { Test_ResetLog(); }
  void TearDown() override { Test_ResetLog(); }
};

// 'Dump()' - Run the inspector on a stream given on standard input.
TProcessResult Dump(const std::vector<std::string>& args, const std::string& stream) {
  std::vector<std::string> argv = {JOBDUMP};
  argv.insert(argv.end(), args.begin(), args.end());
  TProcessOptions options;
  options.input = stream;
  return Test_RunProcess(argv, options);
}

// 'ExpectPanelsOfTheModel()' - Every panel is whole and has the panel size
// of the model named in ICMD_STARTJOB.
void ExpectPanelsOfTheModel(const TStreamCheck& c) {
  ASSERT_FALSE(c.records.empty());
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(c.records[0], &job));
  uint32_t width = job.printer == 1060 ? 2072 : 1036, height = job.printer == 1060 ? 1328 : 664;
  for (const TStreamPanel& p : c.panels) {
    EXPECT_TRUE(p.complete);
    EXPECT_EQ(width, p.width);
    EXPECT_EQ(height, p.height);
    EXPECT_EQ(static_cast<size_t>(width) * height * p.bytesPerPixel, p.pixels.size());
  }
}

}  // namespace

TEST_F(JobDumpFilter, AnEmptyRasterInputGivesHeaderAndFooter) {
  TProcessResult f = Test_RunFilter({"123", "user", "Visitor", "1", ""});
  EXPECT_EQ(1, f.status);
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(f.out, &c)) << c.errorOffset << ": " << c.error;
  EXPECT_TRUE(c.complete);
  ASSERT_EQ(2u, c.records.size());
  TProcessResult d = Dump({"-q"}, f.out);
  EXPECT_EQ(0, d.status) << d.err;
  EXPECT_EQ("OK: complete job, 2 records, 0 panels\n", d.out);
  TProcessResult full = Dump({}, f.out);
  EXPECT_EQ(0u, full.out.find("         0  ICMD_STARTJOB    printer="));
  EXPECT_NE(std::string::npos, full.out.find(" job=123 copies=1 title=\"Visitor\" "));
  EXPECT_NE(std::string::npos, full.out.find("\n       411  ICMD_ENDJOB      job=123\n"));
}

TEST_F(JobDumpFilter, AnUnreadableRasterFileGivesAnEmptyCutStream) {
  TProcessResult f = Test_RunFilter({"1", "user", "t", "1", "", BRELLIAN_BINARY_DIR "/no-such-raster"});
  EXPECT_EQ(1, f.status);
  EXPECT_EQ("", f.out);
  TProcessResult d = Dump({}, f.out);
  EXPECT_EQ(3, d.status);
  EXPECT_EQ("CUT: the stream stops before ICMD_ENDJOB with 0 records and 0 panels; still open: nothing (empty stream)\n",
            d.out);
}

TEST_F(JobDumpFilter, PrintedPagesMakeAWellFormedJob) {
  std::string raster;
  ASSERT_TRUE(Raster_WriteStream({Raster_MakeTestPattern(1036, 664, 300), Raster_MakeRGBPage(1036, 664, 300, 0, 0, 0)},
                                 true, &raster));
  TProcessOptions options;
  options.input = raster;
  TProcessResult f = Test_RunFilter({"9", "user", "t", "1", ""}, options);
  EXPECT_EQ(0, f.status) << f.err;
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(f.out, &c)) << c.errorOffset << ": " << c.error;
  EXPECT_TRUE(c.complete);
  ExpectPanelsOfTheModel(c);
  // A simplex colour side ends after its one page; the second page is read but not printed.
  ASSERT_EQ(1u, c.panels.size());
  EXPECT_EQ(0, c.panels[0].side);
  EXPECT_EQ(0u, c.panels[0].panelType);
  TProcessResult d = Dump({"-q"}, f.out);
  EXPECT_EQ(0, d.status) << d.out << d.err;
}

TEST_F(JobDumpFilter, ADuplexJobFromTheRasterToolGivesOnePngPerSide) {
  std::string dir = BRELLIAN_BINARY_DIR "/test-jobdump-filter";
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  TProcessResult w = Test_RunProcess({BRELLIAN_TOOLS_DIR "/brellian-rasterwrite", "--duplex", "-o", dir + "/job.ras",
                                      "solid:255,255,255", "pattern"});
  ASSERT_EQ(0, w.status) << w.err;
  TProcessResult f = Test_RunFilter({"5", "user", "t", "1", "", dir + "/job.ras"});
  EXPECT_EQ(0, f.status) << f.err;
  TProcessResult d = Dump({"-q", "--png", dir + "/png"}, f.out);
  EXPECT_EQ(0, d.status) << d.out << d.err;
  // Each 2072 x 1328 colour panel takes 148 chunks: 4 + 2 x (1 + 1 + 148 + 1 + 1) + 2 records.
  // Job and card: 4 records; each side: STARTSIDE, LUTTABLE, STARTIMAGE,
  // 148 chunks of a 2072 x 1328 colour panel, ENDIMAGE, ENDSIDE.
  EXPECT_EQ("OK: complete job, 310 records, 2 panels\n", d.out);
  TPngImage front, back;
  std::string error;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/png/side0-panel0-color.png"), &front, &error)) << error;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/png/side1-panel0-color.png"), &back, &error)) << error;
  EXPECT_EQ(2072u, front.width);
  EXPECT_EQ(1328u, back.height);
  EXPECT_EQ(std::vector<uint8_t>(front.pixels.size(), 255), front.pixels);  // a white page stays white
  EXPECT_NE(std::vector<uint8_t>(back.pixels.size(), 255), back.pixels);
  Test_RemoveTree(dir);
}

TEST_F(JobDumpFilter, ACancelledJobIsReportedAsCut) {
  std::string raster;
  ASSERT_TRUE(Raster_WriteStream({Raster_MakeTestPattern(1036, 664, 300)}, false, &raster));
  TProcessOptions options;
  options.input = raster;
  options.sigtermOnErr = "INFO: Printing page 1, 19% complete...";
  TProcessResult f = Test_RunFilter({"9", "user", "t", "1", ""}, options);
  EXPECT_EQ(0, f.status) << f.err;
  TStreamCheck c;
  ASSERT_EQ(0, Stream_Read(f.out, &c)) << c.errorOffset << ": " << c.error;
  EXPECT_FALSE(c.complete);
  EXPECT_EQ(ICMD_STARTJOB, c.records.at(0).type);
  TProcessResult d = Dump({"-q"}, f.out);
  EXPECT_EQ(3, d.status) << d.out;
  EXPECT_EQ(0u, d.out.find("CUT: the stream stops before ICMD_ENDJOB"));
}
