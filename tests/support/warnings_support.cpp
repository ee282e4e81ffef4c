// Whole jobs for the tests of the WARNING lines.
// Copyright 2026 The rastertobrellian authors.
#include "support/warnings_support.h"

#include "brellian_paths.h"
#include "jobstream/records.h"
#include "status/tables.h"
#include "support/jobs_support.h"
#include "support/process.h"

using namespace jobtest;

namespace warntest {

// 'Warn_SettingsPath()' - The settings file the filter reads for serial.
std::string Warn_SettingsPath(const std::string& serial) {
  return std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_br-1060_" + serial + ".dat";
}

// 'Warn_Settings()' - Empty settings for kWarnSerial; Save() writes them.
TBrellianSettings Warn_Settings() {
  TBrellianSettings s = Job_Settings();
  s.serialNumber = kWarnSerial;
  return s;
}

// 'Warn_Run()' - Run the 1030 filter on pages with options and the device
// URI uri (its serial selects the settings file).
TWarnRun Warn_Run(const std::vector<TRasterPage>& pages, const std::string& options, const std::string& uri,
                  const std::string& ppd) {
  TWarnRun run;
  std::string raster = Job_TestDir() + "/warn.ras";
  Test_MakeDirs(Job_TestDir());
  EXPECT_TRUE(Raster_WriteFile(pages, false, raster));
  Test_ResetLog();
  Test_SetLogLevelWord("EntryExit");
  TProcessOptions env;
  env.env["PPD"] = ppd.empty() ? Job_PPD() : ppd;
  env.env["DEVICE_URI"] = uri;
  env.env["PRINTER"] = "warn";
  TProcessResult p = Test_RunFilter({"42", "user", "title", "1", options, raster}, env);
  run.status = p.status;
  run.stream = p.out;
  Stream_Read(run.stream, &run.check);
  for (const TStreamRecord& r : run.check.records) {
    size_t at = r.type == ICMD_STARTCARD ? r.offset + STARTCARD_ID : r.type == ICMD_ENDCARD ? r.offset + 6 : 0;
    if (at != 0 && at + 8 <= run.stream.size()) run.stream.replace(at, 8, 8, '\0');
  }
  run.outline = Job_Outline(run.check);
  for (const std::string& line : Test_Lines(p.err))
    (line.rfind("WARNING: ", 0) == 0 ? run.warnings : run.designed).push_back(line);
  for (const std::string& line : Test_LogMessages()) {
    size_t first = line.find_first_not_of(' ');
    run.log.push_back(first == std::string::npos ? std::string() : line.substr(first));
  }
  return run;
}

// 'Warn_UnconstrainedPPD()' - The PPD without its constraints.
std::string Warn_UnconstrainedPPD(int model) {
  std::string text = Test_ReadFile(Test_GeneratedPPD(model));
  std::string out;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start + 1);
    if (line.rfind("*cupsUIConstraints", 0) != 0) out += line;
    start = end + 1;
  }
  Test_MakeDirs(Job_TestDir());
  std::string path = Job_TestDir() + "/unconstrained" + std::to_string(model) + ".ppd";
  Test_WriteFile(path, out);
  return path;
}

// 'Warn_DesignedLines()' - The designed standard error of a job of pages
// 1036 x 664 pages: PAGE and progress lines, then "INFO: Ready to print.".
std::vector<std::string> Warn_DesignedLines(int pages) {
  std::vector<std::string> lines;
  for (int p = 1; p <= pages; ++p) {
    lines.push_back("PAGE: " + std::to_string(p) + " 1");
    for (uint32_t row = 0; row < kH; row += 128)
      lines.push_back("INFO: Printing page " + std::to_string(p) + ", " + std::to_string(row * 100 / kH) +
                      "% complete...");
  }
  lines.push_back("INFO: Ready to print.");
  return lines;
}

// 'Warn_LogHasNo()' - No log line holds text (the warnings never go
// through the log).
void Warn_LogHasNo(const TWarnRun& run, const std::string& text) {
  for (const std::string& line : run.log) EXPECT_EQ(std::string::npos, line.find(text)) << line;
}

// 'Warn_ExpectSameOutput()' - The run's stream and designed standard error
// equal those of the run without the case's trigger, which has no warning.
void Warn_ExpectSameOutput(const TWarnRun& run, const TWarnRun& base) {
  EXPECT_TRUE(base.warnings.empty()) << base.warnings.front();
  EXPECT_TRUE(run.check.ok && run.check.complete);
  EXPECT_EQ(base.stream.size(), run.stream.size());
  EXPECT_TRUE(base.stream == run.stream) << run.outline << " / " << base.outline;
  EXPECT_EQ(base.designed, run.designed);
  EXPECT_EQ(0, run.status);
}

void TWarnJobs::SetUp() {
  Status_BuildTables();
  unlink(Warn_SettingsPath(kWarnSerial).c_str());
  unlink(Warn_SettingsPath("nofile").c_str());
}

void TWarnJobs::TearDown() { unlink(Warn_SettingsPath(kWarnSerial).c_str()); }

}  // namespace warntest
