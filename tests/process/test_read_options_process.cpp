// Process test: the filter reads the PPD and the job's options as the
// spooler passes them and traces them to its log file.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>

#include "support/process.h"

TEST(ReadOptionsProcess, FilterTracesTheOptionsOfTheJob) {
  Test_ResetLog();
  std::string ppd = Test_GeneratedPPD(1060);
  TProcessOptions options;
  options.env["PPD"] = ppd;
  options.env["DEVICE_URI"] = "usbbr://Brellian/x?serial=PROC1";
  options.env["PRINTER"] = "desk";
  TProcessResult r = Test_RunFilter(
      {"7", "u", "t", "2", "frontResin=CustomAreas frontResinInclude1=Custom.5mm\\ 5mm\\ 50mm\\ 30mm"},
      options);
  EXPECT_EQ(1, r.status);   // empty raster input
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Test_Contains(log, " >>>> PPD OPTIONS"));
  EXPECT_TRUE(Test_Contains(log, "      serialNumber::[PROC1]"));
  EXPECT_TRUE(Test_Contains(log, "      PPD::[" + ppd + "]"));
  EXPECT_TRUE(Test_Contains(log, "        frontResinInclude1::[Custom.5mm 5mm 50mm 30mm]"));
  EXPECT_TRUE(Test_Contains(log, "        frontResin::[CustomAreas]"));
  EXPECT_TRUE(Test_Contains(log, "      Parse area: (Custom.5mm 5mm 50mm 30mm)(600) --> (118,118)(1181,709)"));
  EXPECT_TRUE(Test_Contains(log, "        printerName::[desk]"));
  EXPECT_TRUE(Test_Contains(log, " <<<< PPD OPTIONS"));
}
