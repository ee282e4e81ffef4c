// In-process tests of TPrintingTask::run: the end of the job, a finished
// card and a cancel that is pending before the first page.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include "driver/globals.h"
#include "driver/printing_task.h"
#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

class RunInProcess : public ::testing::Test {
 protected:
  void SetUp() override {
    path = std::string(BRELLIAN_BINARY_DIR) + "/pageloop-inproc.ras";
    args = {"rastertobrellian", "9", "user", "title", "1", "", path};
    for (std::string& a : args) argv.push_back(&a[0]);
    argv.push_back(nullptr);
    g_cancelJob = 0;
    g_exitStatus = 0;
  }
  void TearDown() override {
    signal(SIGTERM, SIG_DFL);
    g_cancelJob = 0;
    g_exitStatus = 0;
    unlink(path.c_str());
  }
  // Run a task on the given raster bytes; prepare adjusts the task first.
  std::vector<uint16_t> Run(const std::string& raster, void (*prepare)(TPrintingTask*)) {
    Test_WriteFile(path, raster);
    char* data = nullptr;
    size_t size = 0;
    TPrintingTask task(7, argv.data());
    task.output = open_memstream(&data, &size);
    if (prepare) prepare(&task);
    testing::internal::CaptureStderr();
    task.run();
    err = testing::internal::GetCapturedStderr();
    fclose(task.output);
    std::string out(data, size);
    free(data);
    // Read as a job; where a test opened the card or side in the task
    // alone, the stream from the first record that closes them on is read
    // as the part of a job it is.
    TStreamCheck whole, rest;
    Stream_Read(out, &whole);
    std::vector<uint16_t> types;
    for (const TStreamRecord& r : whole.records) types.push_back(r.type);
    if (!whole.ok) {
      EXPECT_EQ(0, Stream_ReadPart(out.substr(whole.errorOffset), &rest)) << whole.error << "; " << rest.error;
      for (const TStreamRecord& r : rest.records) types.push_back(r.type);
    }
    return types;
  }
  static std::string Pages(int n) {
    std::vector<TRasterPage> pages(n, Raster_MakeRGBPage(8, 2, 300, 0, 0, 0));
    std::string out;
    Raster_WriteStream(pages, false, &out);
    return out;
  }

  std::string path;
  std::vector<std::string> args;
  std::vector<char*> argv;
  std::string err;
};

}  // namespace

TEST_F(RunInProcess, PagesAfterTheCardIsFinishedAreReadButWriteNothing) {
  std::vector<uint16_t> types = Run(Pages(8), [](TPrintingTask* t) { t->jobComplete = 1; });
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDJOB}), types);
  for (int p = 1; p <= 8; ++p)
    EXPECT_NE(std::string::npos, err.find("PAGE: " + std::to_string(p) + " 1\n")) << p;
  EXPECT_EQ(0, g_exitStatus);
}

TEST_F(RunInProcess, AnOpenSideIsEndedWithItsCardBeforeTheFooter) {
  std::vector<uint16_t> types = Run(Pages(1), [](TPrintingTask* t) {
    t->cardOpen = 1;
    t->sideOpen = 1;
    t->jobComplete = 1;  // the loop alone decides what follows
  });
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDSIDE, ICMD_ENDCARD, ICMD_ENDJOB}), types);
  EXPECT_EQ("PAGE: 1 1\nINFO: Printing page 1, 0% complete...\nINFO: Ready to print.\n", Test_WithoutWarnings(err));
}

TEST_F(RunInProcess, AnOpenCardIsEndedBeforeTheFooter) {
  std::vector<uint16_t> types = Run(Pages(1), [](TPrintingTask* t) {
    t->cardOpen = 1;
    t->jobComplete = 1;
  });
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDCARD, ICMD_ENDJOB}), types);
}

TEST_F(RunInProcess, FrontSideOfADuplexCardLeftOpenEndsTheSideOnly) {
  // The last page said duplex: ending the front side leaves the card open,
  // which the loop then ends.
  std::string raster;
  TRasterPage page = Raster_MakeRGBPage(8, 2, 300, 0, 0, 0);
  page.header.Duplex = CUPS_TRUE;
  Raster_WriteStream({page}, false, &raster);
  std::vector<uint16_t> types = Run(raster, [](TPrintingTask* t) {
    t->cardOpen = 1;
    t->sideOpen = 1;
    t->jobComplete = 1;  // the loop alone decides what follows
  });
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB, ICMD_ENDSIDE, ICMD_ENDCARD, ICMD_ENDJOB}), types);
}

TEST_F(RunInProcess, CancelPendingBeforeTheFirstPageReadsNothing) {
  g_cancelJob = 1;
  std::vector<uint16_t> types = Run(Pages(2), nullptr);
  EXPECT_EQ((std::vector<uint16_t>{ICMD_STARTJOB}), types);
  EXPECT_EQ("ERROR: No pages found!\n", err);
  EXPECT_EQ(1, g_exitStatus);
}

TEST_F(RunInProcess, DuplexAndTumbleFollowThePageHeaderAndThePageIsFreed) {
  TRasterPage page = Raster_MakeRGBPage(8, 2, 300, 0, 0, 0);
  page.header.Duplex = CUPS_TRUE;
  page.header.Tumble = CUPS_TRUE;
  std::string raster;
  Raster_WriteStream({page}, false, &raster);
  Test_WriteFile(path, raster);
  TPrintingTask task(7, argv.data());
  char* data = nullptr;
  size_t size = 0;
  task.output = open_memstream(&data, &size);
  task.jobComplete = 1;
  testing::internal::CaptureStderr();
  task.run();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(1, task.duplex);
  EXPECT_EQ(1, task.tumble);
  EXPECT_EQ(1, task.pageCount);
  EXPECT_EQ(nullptr, task.pageBuffer);
  fclose(task.output);
  free(data);
}
