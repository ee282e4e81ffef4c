// End-to-end test of a raster document cut short, through a running
// spooler: the job prints with white where rows are missing, and its
// status says how many rows arrived.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unistd.h>

#include "jobstream/stream_reader.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/cups_env.h"
#include "support/process.h"

TEST(SpoolerCutShort, ARasterDocumentCutMidPageSaysHowManyRowsArrived) {
  if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("spooler-cut-short");
  TTestSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;

  // A 1030 panel-sized pattern page of which 200 rows arrive.
  TRasterPage page = Raster_MakeTestPattern(1036, 664, 300);
  page.data.resize(static_cast<size_t>(200) * 1036 * 3);
  std::string raster = dir + "/cut.ras";
  ASSERT_TRUE(Raster_WriteFile({page}, false, raster));
  ASSERT_EQ(0, chmod(raster.c_str(), 0644));

  std::string out, captured = dir + "/out/job.bin";
  ASSERT_EQ(0, spooler.Run("lpadmin -p cards -E -v capture:" + captured + " -P " + Cups_PpdPath(1030), &out))
      << out;
  ASSERT_EQ(0, spooler.Run("lp -d cards " + raster, &out)) << out;
  ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();

  std::string jobs;
  ASSERT_EQ(0, spooler.Run("lpstat -l -W completed -o cards", &jobs)) << jobs;
  EXPECT_NE(std::string::npos, jobs.find("\tStatus: Page 1 is cut short: 200 of its 664 rows arrived")) << jobs;

  TStreamCheck stream;
  Stream_Read(Test_ReadFile(captured), &stream);
  ASSERT_TRUE(stream.complete) << stream.error;
  ASSERT_EQ(1u, stream.panels.size());
  const std::vector<uint8_t>& pixels = stream.panels[0].pixels;
  const size_t cut = static_cast<size_t>(200) * 1036 * 3;
  ASSERT_EQ(static_cast<size_t>(664) * 1036 * 3, pixels.size());
  EXPECT_TRUE(std::equal(pixels.begin(), pixels.begin() + cut, page.data.begin()));
  EXPECT_TRUE(std::all_of(pixels.begin() + cut, pixels.end(), [](uint8_t b) { return b == 255; }));
}
