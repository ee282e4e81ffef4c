// End-to-end test through a running spooler: a queue made from a shipped PPD
// with lpadmin, a job printed with lp, the job command stream captured by a
// test backend.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

#include "jobstream/stream_reader.h"
#include "support/cups_env.h"
#include "support/process.h"

TEST(SpoolerJob, LpOnAQueueFromTheShippedPpdGivesTheJobStream) {
  if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("spooler");
  TTestSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;

  std::string out, captured = dir + "/out/job.bin";
  ASSERT_EQ(0, spooler.Run("lpadmin -p brellian -E -v capture:" + captured + " -P " + Cups_PpdPath(1060),
                           &out))
      << out;
  ASSERT_EQ(0, spooler.Run("lp -d brellian -t 'Badge 7' -o frontRibbon=ColorK -o frontResin=Preset1 "
                           "-o Duplex=DuplexNoTumble " + Cups_SampleCardPdf(),
                           &out))
      << out;
  ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
  std::string bytes = Test_ReadFile(captured);
  ASSERT_FALSE(bytes.empty()) << spooler.ErrorLog();

  TStreamCheck stream;
  Stream_Read(bytes, &stream);
  ASSERT_TRUE(stream.complete) << stream.error;
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(stream.records.front(), &job));
  EXPECT_EQ(1060u, job.printer);
  EXPECT_EQ("Badge 7", job.title);
  EXPECT_EQ("brellian", job.queue);
  // Front: colour and resin black; back: colour.
  ASSERT_EQ(3u, stream.panels.size());
  EXPECT_EQ(0, stream.panels[0].side);
  EXPECT_EQ(0u, stream.panels[0].panelType);
  EXPECT_EQ(1u, stream.panels[1].panelType);
  EXPECT_EQ(1, stream.panels[2].side);
  EXPECT_EQ(2072u, stream.panels[2].width);
}
