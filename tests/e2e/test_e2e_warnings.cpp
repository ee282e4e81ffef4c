// End-to-end test of the WARNING lines through a running spooler: a preset
// that can't be found is shown as the job's status and kept in the
// spooler's log, and the job still prints.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

#include "jobstream/stream_reader.h"
#include "support/cups_env.h"
#include "support/process.h"

TEST(SpoolerWarnings, APresetThatCantBeFoundIsTheJobsStatus) {
  if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("spooler-warnings");
  TTestSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;

  // The capture device's URI has no "?serial=": no printer presets.  The
  // two pages of the sample card are the colour and the black page.
  std::string out, captured = dir + "/out/job.bin";
  ASSERT_EQ(0, spooler.Run("lpadmin -p cards -E -v capture:" + captured + " -P " + Cups_PpdPath(1030), &out))
      << out;
  // The queue's ribbon has a UV panel, so the preset is the only warning.
  ASSERT_EQ(0, spooler.Run("lpadmin -p cards -o ribbonType=YMCK-UV", &out)) << out;
  ASSERT_EQ(0, spooler.Run("lp -d cards -o frontRibbon=ColorK -o frontResin=Page -o frontUV=Preset1 " +
                               Cups_SampleCardPdf(),
                           &out))
      << out;
  ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();

  const std::string warning = "frontUV=Preset1 gives no UV: the device URI has no serial number (\"?serial=\"), "
                              "so the printer's settings are not read";
  std::string jobs;
  ASSERT_EQ(0, spooler.Run("lpstat -l -W completed -o cards", &jobs)) << jobs;
  EXPECT_NE(std::string::npos, jobs.find("\tStatus: " + warning + "\n")) << jobs;
  // The spooler's log keeps it at level "warn" (it escapes the quotes).
  EXPECT_NE(std::string::npos, spooler.ErrorLog().find("frontUV=Preset1 gives no UV: the device URI has no serial"));

  // The card is printed without UV, as the option's fallback says.
  TStreamCheck stream;
  Stream_Read(Test_ReadFile(captured), &stream);
  ASSERT_TRUE(stream.complete) << stream.error;
  ASSERT_EQ(2u, stream.panels.size());
  EXPECT_EQ(0u, stream.panels[0].panelType);
  EXPECT_EQ(1u, stream.panels[1].panelType);
}
