// Tests of the diagnostic dumps of the environment and of page headers.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "driver/dumps.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "support/process.h"

namespace {

class Dumps : public ::testing::Test {
 protected:
  void SetUp() override {
    Log_SetFileName("unit-dumps.log");
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_LOG);
    Log_SetDepth(0);
  }
  void TearDown() override {
    Log_SetOutputMask(0);
    Log_SetDepth(0);
  }
  std::vector<std::string> Environment(TPrintingTask* task) {
    testing::internal::CaptureStderr();
    Job_DumpEnvironment(task);
    return Test_Lines(testing::internal::GetCapturedStderr());
  }
  std::vector<std::string> Header(const cups_page_header2_t& h) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, Page_DumpHeader(nullptr, &h));
    return Test_Lines(testing::internal::GetCapturedStderr());
  }
};

const char* kVariables[] = {"PPD",           "PRINTER",         "DEVICE_URI", "CHARSET",
                            "CONTENT_TYPE",  "CUPS_DATADIR",    "CUPS_FONTPATH",
                            "CUPS_SERVERROOT", "LANG",          "SOFTWARE",   "TMPDIR"};

}  // namespace

TEST_F(Dumps, EnvironmentLinesInOrder) {
  for (const char* v : kVariables) setenv(v, (std::string("v-") + v).c_str(), 1);
  setenv("PRINTER", "", 1);
  unsetenv("LANG");
  char* argv[] = {const_cast<char*>("/usr/lib/filter/x"), const_cast<char*>("12"),
                  const_cast<char*>("alice"), const_cast<char*>(""), const_cast<char*>("2"),
                  const_cast<char*>("opts"), nullptr};
  TPrintingTask task(6, argv);
  std::vector<std::string> expected = {
      " >>>> CUPS ENV",
      "      CMD: ARGC    [6]",
      "      CMD: APP     [/usr/lib/filter/x]",
      "      CMD: JOBID   [12]",
      "      CMD: USER    [alice]",
      "      CMD: TITLE   [NULL]",
      "      CMD: COPIES  [2]",
      "      ENV: PPD[v-PPD]",
      "      ENV: PRINTER[NULL]",
      "      ENV: DEVICE_URI[v-DEVICE_URI]",
      "      ENV: CHARSET[v-CHARSET]",
      "      ENV: CONTENT_TYPE[v-CONTENT_TYPE]",
      "      ENV: CUPS_DATADIR[v-CUPS_DATADIR]",
      "      ENV: CUPS_FONTPATH[v-CUPS_FONTPATH]",
      "      ENV: CUPS_SERVERROOT[v-CUPS_SERVERROOT]",
      "      ENV: LANG[NULL]",
      "      ENV: SOFTWARE[v-SOFTWARE]",
      "      ENV: TMPDIR[v-TMPDIR]",
      " <<<< CUPS ENV",
  };
  EXPECT_EQ(expected, Environment(&task));
  for (const char* v : kVariables) unsetenv(v);
}

TEST_F(Dumps, MissingArgumentsAreNull) {
  TPrintingTask task(0, nullptr);
  std::vector<std::string> lines = Environment(&task);
  ASSERT_GE(lines.size(), 7u);
  EXPECT_EQ("      CMD: ARGC    [0]", lines[1]);
  EXPECT_EQ("      CMD: APP     [NULL]", lines[2]);
  EXPECT_EQ("      CMD: COPIES  [NULL]", lines[6]);
}

TEST_F(Dumps, HeaderLinesAndCounts) {
  cups_page_header2_t h;
  memset(&h, 0, sizeof h);
  strcpy(h.MediaClass, "Class");
  h.Duplex = CUPS_TRUE;
  h.HWResolution[0] = 300;
  h.HWResolution[1] = 600;
  h.ImagingBoundingBox[2] = 243;
  h.NumCopies = 2;
  h.cupsWidth = 1036;
  h.cupsHeight = 664;
  h.cupsBytesPerLine = 3108;
  h.cupsBorderlessScalingFactor = 1.5f;
  h.cupsPageSize[0] = 243.0f;
  h.cupsPageSize[1] = 153.5f;
  strcpy(h.cupsPageSizeName, "CR80");
  h.cupsInteger[0] = 5;
  h.cupsInteger[15] = -3;
  h.cupsReal[9] = 0.25f;
  strcpy(h.cupsString[15], "last");
  std::vector<std::string> lines = Header(h);
  ASSERT_EQ(1u + 46u + 48u + 1u, lines.size());
  EXPECT_EQ(" >>>> PAGE HEADER", lines.front());
  EXPECT_EQ(" <<<< PAGE HEADER", lines.back());
  EXPECT_EQ("      Media Class:              [Class]", lines[1]);
  EXPECT_EQ("      Media Color:              []", lines[2]);
  EXPECT_EQ("      Duplex:                   [1]", lines[9]);
  EXPECT_EQ("      HW Resolution (DPI):      [300][600]", lines[10]);
  EXPECT_EQ("      Imaging Bounding Box:     [0][0][243][0]", lines[11]);
  EXPECT_EQ("      Num Copies:               [2]", lines[21]);
  EXPECT_EQ("      Tumble:                   [0]", lines[27]);
  EXPECT_EQ("      CUPS Width:               [1036]", lines[28]);
  EXPECT_EQ("      CUPS Bytes Per Line:      [3108]", lines[33]);
  EXPECT_EQ("      CUPS Borderless Scaling:  [1.500000]", lines[41]);
  EXPECT_EQ("      CUPS Page Size:           [243.000000][153.500000]", lines[42]);
  EXPECT_EQ("      CUPS Imaging Box:         [0.000000][0.000000][0.000000][0.000000]", lines[43]);
  EXPECT_EQ("      CUPS Page Size Name:      [CR80]", lines[46]);
  EXPECT_EQ("      CUPS Integer:          1. [5]", lines[47]);
  EXPECT_EQ("      CUPS Integer:         16. [-3]", lines[62]);
  EXPECT_EQ("      CUPS Real:            10. [0.250000]", lines[72]);
  EXPECT_EQ("      CUPS String:           1. []", lines[79]);
  EXPECT_EQ("      CUPS String:          16. [last]", lines[94]);
}

TEST_F(Dumps, HeaderStringsWithoutTerminatorAreBoundedByTheirField) {
  cups_page_header2_t h;
  memset(&h, 0, sizeof h);
  memset(h.MediaClass, 'c', sizeof h.MediaClass);  // runs into MediaColor
  strcpy(h.MediaColor, "next");
  memset(h.cupsString[0], 's', sizeof h.cupsString[0]);
  strcpy(h.cupsString[1], "two");
  std::vector<std::string> lines = Header(h);
  EXPECT_EQ("      Media Class:              [" + std::string(64, 'c') + "]", lines[1]);
  EXPECT_EQ("      CUPS String:           1. [" + std::string(64, 's') + "]", lines[79]);
  EXPECT_EQ("      CUPS String:           2. [two]", lines[80]);
}
