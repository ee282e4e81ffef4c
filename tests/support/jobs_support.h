// Whole jobs through the built filter: the build's PPD, settings, raster
// pages in, the job command stream read back with the stream reader.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "imaging/panel.h"
#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "options/settings.h"
#include "lib/raster_writer.h"
#include "status/tables.h"
#include "support/process.h"
#include "util/str.h"

namespace jobtest {

constexpr uint32_t kW = 1036;  // panel of the 1030 model
constexpr uint32_t kH = 664;
constexpr size_t kDots = static_cast<size_t>(kW) * kH;
// The serial number the jobs' device URI names; it selects the settings file.
const char* const kSerial = "jobs01";

// 'Job_TestDir()' - Scratch directory of these tests in the build tree.
inline std::string Job_TestDir() { return std::string(BRELLIAN_BINARY_DIR) + "/test-jobs"; }

// 'Job_PPD()' - The build's PPD of the 1030 model (1036 x 664 panels).
inline std::string Job_PPD() { return Test_GeneratedPPD(1030); }

// 'Job_Settings()' - Settings for the jobs' printer, as the preset tool
// saves them: the file the filter reads for the default model's name and
// kSerial.
inline TBrellianSettings Job_Settings() {
  // A settings directory the filter trusts (a test may have left it with
  // other modes), so that Save() writes a file the filter reads.
  Test_MakeDirs(Test_ConfDir() + "/settings");
  Status_BuildTables();
  TBrellianSettings settings;
  settings.modelName = Status_ModelName(1060);
  Str_ToLower(settings.modelName);
  settings.serialNumber = kSerial;
  return settings;
}

// 'Job_UVFile()' - Write a UV preset file of size bytes (byte i = i * 13 + 5)
// under the configuration directory; returns its content.
inline std::string Job_UVFile(const std::string& name, size_t size) {
  std::string data(size, '\0');
  for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(i * 13 + 5);
  Test_MakeDirs(Test_ConfDir() + "/uv");
  Test_WriteFile(Test_ConfDir() + "/uv/" + name, data);
  return data;
}

// 'Job_WhitePage()' - A white panel-sized RGB page with a black block of
// 100 x 50 dots at (10, 20); with duplex and tumble as given.
inline TRasterPage Job_WhitePage(bool duplex = false, bool tumble = false) {
  TRasterPage page = Raster_MakeRGBPage(kW, kH, 300, 255, 255, 255);
  Raster_FillRect(&page, 10, 20, 100, 50, 0, 0, 0);
  page.header.Duplex = duplex ? CUPS_TRUE : CUPS_FALSE;
  page.header.Tumble = tumble ? CUPS_TRUE : CUPS_FALSE;
  return page;
}

// The result of one job.
struct TJobRun {
  TProcessResult process;
  TStreamCheck stream;
  std::vector<std::string> log;  // log lines, leading blanks removed
  std::string outline;           // record names, images as IMAGE<type>
};

// 'Job_Outline()' - The stream's records as short names separated by
// blanks, each image written as IMAGE and its panel type.
inline std::string Job_Outline(const TStreamCheck& stream) {
  std::string outline;
  for (const TStreamRecord& r : stream.records) {
    std::string word;
    TStartImageFields image;
    if (r.type == ICMD_IMAGE || r.type == ICMD_ENDIMAGE) continue;
    if (Stream_DecodeStartImage(r, &image)) {
      word = "IMAGE" + std::to_string(image.panel);
    } else {
      const char* name = Stream_RecordName(r.type);
      word = name ? std::string(name).substr(5) : "TYPE" + std::to_string(r.type);
    }
    outline += (outline.empty() ? "" : " ") + word;
  }
  return outline;
}

// 'Job_Run()' - Run the filter on pages with the job's options (the fifth
// argument), the 1030 model's PPD and the trace log at EntryExit.
inline TJobRun Job_Run(const std::vector<TRasterPage>& pages, const std::string& options) {
  TJobRun run;
  std::string raster = Job_TestDir() + "/job.ras";
  std::string ppd = Job_PPD();
  EXPECT_EQ(0, access(ppd.c_str(), R_OK)) << ppd;
  Test_MakeDirs(Job_TestDir());
  EXPECT_TRUE(Raster_WriteFile(pages, false, raster));
  Test_ResetLog();
  Test_SetLogLevelWord("EntryExit");
  TProcessOptions env;
  env.env["PPD"] = ppd;
  env.env["DEVICE_URI"] = std::string("usbbr://Brellian/Test?serial=") + kSerial;
  env.env["PRINTER"] = "jobs";
  run.process = Test_RunFilter({"42", "user", "title", "1", options, raster}, env);
  Stream_Read(run.process.out, &run.stream);
  run.outline = Job_Outline(run.stream);
  for (const std::string& line : Test_LogMessages()) {
    size_t first = line.find_first_not_of(' ');
    run.log.push_back(first == std::string::npos ? std::string() : line.substr(first));
  }
  return run;
}

// 'Job_Count()' - How often line occurs in lines.
inline int Job_Count(const std::vector<std::string>& lines, const std::string& line) {
  int n = 0;
  for (const std::string& l : lines) n += l == line;
  return n;
}

// 'Job_Pixels()' - The pixels of a panel as a string.
inline std::string Job_Pixels(const TStreamPanel& panel) {
  return std::string(panel.pixels.begin(), panel.pixels.end());
}

}  // namespace jobtest
