// Whole jobs for the tests of the WARNING lines: a run's stream with the
// card ids zeroed, its WARNING lines apart from the designed standard-error
// lines, and its log.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"
#include "options/settings.h"
#include "lib/raster_writer.h"

namespace warntest {

// The serial number of the jobs' device URI; it selects the settings file.
const char* const kWarnSerial = "warn01";

// One filter run: its stream with the card ids zeroed, its standard-error
// lines split into WARNING lines and the designed rest, and its log.
struct TWarnRun {
  int status = -1;
  std::string stream;                  // card ids zeroed
  TStreamCheck check;
  std::string outline;                 // as Job_Outline gives it
  std::vector<std::string> warnings;   // "WARNING: ..." lines
  std::vector<std::string> designed;   // every other standard-error line
  std::vector<std::string> log;        // log lines, time stamps and leading blanks removed
};

// 'Warn_SettingsPath()' - The settings file the filter reads for serial.
std::string Warn_SettingsPath(const std::string& serial);

// 'Warn_Settings()' - Empty settings for kWarnSerial; Save() writes them.
TBrellianSettings Warn_Settings();

// 'Warn_Run()' - Run the 1030 filter on pages with options and the device
// URI uri (its serial selects the settings file), the log at EntryExit;
// ppd, when not empty, replaces the 1030's PPD.
TWarnRun Warn_Run(const std::vector<TRasterPage>& pages, const std::string& options,
                  const std::string& uri = std::string("usbbr://Brellian/BR-1030?serial=") + kWarnSerial,
                  const std::string& ppd = std::string());

// 'Warn_UnconstrainedPPD()' - A copy of the model's PPD without its
// cupsUIConstraints lines (in the test directory): the same jobs, with no
// warning about options the installed options rule out.
std::string Warn_UnconstrainedPPD(int model);

// 'Warn_DesignedLines()' - The designed standard error of a job of pages
// 1036 x 664 pages: PAGE and progress lines, then "INFO: Ready to print.".
std::vector<std::string> Warn_DesignedLines(int pages);

// 'Warn_LogHasNo()' - No log line holds text (the warnings never go
// through the log).
void Warn_LogHasNo(const TWarnRun& run, const std::string& text);

// 'Warn_ExpectSameOutput()' - The run's stream and designed standard error
// equal those of the run without the case's trigger, which has no warning.
void Warn_ExpectSameOutput(const TWarnRun& run, const TWarnRun& base);

// The jobs' fixture: no settings file for kWarnSerial or "nofile" before a
// test, none for kWarnSerial after it.
class TWarnJobs : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace warntest
