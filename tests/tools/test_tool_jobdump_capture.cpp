// Tests of brellian-jobdump on captures of several job streams sent back to back.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "lib/job_split.h"
#include "lib/png_io.h"
#include "support/process.h"
#include "support/scratch_dir.h"
#include "support/stream_reader_builder.h"

namespace {

const std::string JOBDUMP = BRELLIAN_TOOLS_DIR "/brellian-jobdump";

// A simplex job with one colour panel of 3 x 2 dots.
TStreamBuilder OneJob(uint32_t jobId, uint8_t shade) {
  TStreamBuilder b;
  b.StartJob(jobId).StartCard(jobId, 0).StartSide(0).Lut();
  b.Panel(3, 2, 0, std::vector<uint8_t>(18, shade), 1).EndSide(0).EndCard(jobId).EndJob(jobId);
  return b;
}

class JobDumpCapture : public TScratchDirTest {
 protected:
  JobDumpCapture() : TScratchDirTest("test-jobdump-capture") {}
};

}  // namespace

TEST(JobSplit, CutsOnlyWhereAStartJobFollowsAnEndJob) {
  std::string one = OneJob(1, 10).bytes, two = OneJob(2, 20).bytes;
  std::vector<TJobSpan> spans = Inspect_SplitJobs(one + two + one);
  ASSERT_EQ(3u, spans.size());
  EXPECT_EQ(0u, spans[0].offset);
  EXPECT_EQ(one.size(), spans[0].size);
  EXPECT_EQ(one.size(), spans[1].offset);
  EXPECT_EQ(two.size(), spans[1].size);
  EXPECT_EQ(one.size() + two.size(), spans[2].offset);
  // A record after ICMD_ENDJOB that is not ICMD_STARTJOB stays in the job.
  std::string tail = one + TStreamBuilder().EndJob(1).bytes;
  EXPECT_EQ(1u, Inspect_SplitJobs(tail).size());
  EXPECT_EQ(1u, Inspect_SplitJobs("").size());
}

TEST(JobSplit, ReadsEachJobWithOffsetsInTheCaptureAndStopsAtAViolation) {
  std::string one = OneJob(1, 10).bytes;
  std::string broken = TStreamBuilder().StartJob(2).StartCard(2).EndJob(2).bytes;  // ENDJOB inside a card
  std::vector<TStreamCheck> checks = Inspect_ReadJobs(one + broken + one);
  ASSERT_EQ(2u, checks.size());
  EXPECT_TRUE(checks[0].complete);
  EXPECT_EQ(one.size(), checks[1].records[0].offset);
  EXPECT_FALSE(checks[1].ok);
  EXPECT_EQ("ICMD_ENDJOB inside an open card", checks[1].error);
  EXPECT_GT(checks[1].errorOffset, one.size());
}

TEST_F(JobDumpCapture, TwoJobsBackToBackAreReportedEachAndExitZero) {
  std::string one = OneJob(1, 10).bytes, two = OneJob(2, 200).bytes;
  Test_WriteFile(dir + "/capture.bin", one + two);
  TProcessResult r = Test_RunProcess({JOBDUMP, "--png", dir + "/png", dir + "/capture.bin"});
  ASSERT_EQ(0, r.status) << r.out << r.err;
  EXPECT_EQ("", r.err);
  std::vector<std::string> lines = Test_Lines(r.out);
  ASSERT_EQ(26u, lines.size()) << r.out;
  EXPECT_EQ("JOB 1 of 2 at offset 0, " + std::to_string(one.size()) + " bytes", lines[0]);
  EXPECT_EQ("OK: complete job, 11 records, 1 panels", lines[11]);
  EXPECT_EQ("wrote " + dir + "/png/job1-side0-panel0-color.png (3 x 2)", lines[12]);
  EXPECT_EQ("JOB 2 of 2 at offset " + std::to_string(one.size()) + ", " + std::to_string(two.size()) + " bytes",
            lines[13]);
  char first[64];
  snprintf(first, sizeof first, "%10zu  ICMD_STARTJOB", one.size());
  EXPECT_EQ(0u, lines[14].find(first)) << lines[14];
  EXPECT_EQ("OK: complete job, 11 records, 1 panels", lines[24]);
  TPngImage img;
  std::string error;
  ASSERT_TRUE(Png_DecodeRGB(Test_ReadFile(dir + "/png/job2-side0-panel0-color.png"), &img, &error)) << error;
  EXPECT_EQ(std::vector<uint8_t>(18, 200), img.pixels);
}

TEST_F(JobDumpCapture, AMalformedJobStopsTheReportAndACutLastJobExitsThree) {
  std::string one = OneJob(1, 10).bytes;
  std::string broken = TStreamBuilder().StartJob(2).StartCard(2).EndJob(2).bytes;
  TProcessOptions options;
  options.input = one + broken + one;
  TProcessResult bad = Test_RunProcess({JOBDUMP, "-q"}, options);
  EXPECT_EQ(1, bad.status);
  std::vector<std::string> lines = Test_Lines(bad.out);
  ASSERT_EQ(5u, lines.size()) << bad.out;
  EXPECT_EQ("OK: complete job, 11 records, 1 panels", lines[1]);
  EXPECT_EQ(0u, lines[3].find("ERROR at offset ")) << lines[3];
  EXPECT_EQ("NOT READ: jobs 3 to 3, after the violation", lines[4]);
  EXPECT_NE(std::string::npos, bad.err.find("ICMD_ENDJOB inside an open card"));

  std::string cut = OneJob(2, 20).bytes;
  options.input = one + cut.substr(0, cut.size() - 10);
  TProcessResult c = Test_RunProcess({JOBDUMP, "-q"}, options);
  EXPECT_EQ(3, c.status) << c.out;
  EXPECT_NE(std::string::npos, c.out.find("JOB 2 of 2"));
  EXPECT_NE(std::string::npos, c.out.find("CUT: "));
}

TEST_F(JobDumpCapture, ARecordAfterEndJobThatIsNotAStartJobIsStillAViolation) {
  TProcessOptions options;
  options.input = OneJob(1, 10).bytes + TStreamBuilder().StartCard(3).bytes;
  TProcessResult r = Test_RunProcess({JOBDUMP, "-q"}, options);
  EXPECT_EQ(1, r.status);
  EXPECT_NE(std::string::npos, r.out.find("ICMD_STARTCARD after ICMD_ENDJOB")) << r.out;
  EXPECT_EQ(std::string::npos, r.out.find("JOB "));
}
