// Harness of the option reader tests: a task, the environment, PPD and
// settings files, and the log lines of one Job_ReadOptions call.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "brellian_paths.h"
#include "driver/printing_task.h"
#include "log/log.h"
#include "options/read_options.h"
#include "options/settings.h"
#include "status/tables.h"
#include "support/process.h"
#include "util/str.h"

class ReadOptionsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Status_BuildTables();
    unsetenv("PPD");
    unsetenv("DEVICE_URI");
    unsetenv("PRINTER");
    Log_SetOutputMask(0);
    task_ = new TPrintingTask(6, args_);
  }

  void TearDown() override {
    for (const std::string& serial : settingsUsed_) RemoveSettings(serial);
    Log_SetOutputMask(0);
    delete task_;
    unsetenv("PPD");
    unsetenv("DEVICE_URI");
    unsetenv("PRINTER");
  }

  // 'Run()' - Job_ReadOptions on a new task at level EntryExit, as the
  // filter calls it once per task; returns its log lines.
  std::vector<std::string> Run(const char* options, const char* copies = "1") {
    delete task_;
    task_ = new TPrintingTask(6, args_);
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_ENTRYEXIT);
    Log_SetDepth(0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, Job_ReadOptions(task_, options, copies));
    std::string out = testing::internal::GetCapturedStderr();
    Log_SetOutputMask(0);
    std::vector<std::string> lines;
    std::istringstream in(out);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    lines_ = lines;
    return lines;
  }

  // 'In()' - A log line written between ">>>> PPD OPTIONS" and its end.
  static std::string In(const std::string& message) { return "      " + message; }
  static std::string Err(const std::string& message) { return "      ERROR: " + message; }

  bool Logged(const std::string& message) const { return Test_Contains(lines_, In(message)); }
  bool LoggedError(const std::string& message) const {
    return Test_Contains(lines_, Err(message));
  }
  // 'Position()' - Index of the last such line in the last run (the
  // reader's own line comes after the command line trace), -1 when absent.
  int Position(const std::string& message) const {
    for (size_t i = lines_.size(); i-- > 0;)
      if (lines_[i] == In(message)) return static_cast<int>(i);
    return -1;
  }
  // 'Mentions()' - True when a line of the last run holds text; with
  // afterMarking only lines after "Marked PPD options" count.
  bool Mentions(const std::string& text, bool afterMarking = false) const {
    bool counting = !afterMarking;
    for (const std::string& l : lines_) {
      if (l == In("Marked PPD options")) counting = true;
      if (counting && l.find(text) != std::string::npos) return true;
    }
    return false;
  }

  static std::string GeneratedPPD(int model) {
    return Test_GeneratedPPD(model);
  }
  static std::string FixturePPD(const std::string& name) {
    return std::string(BRELLIAN_SOURCE_DIR) + "/tests/fixtures/ppd/" + name;
  }
  static void UsePPD(const std::string& path) { setenv("PPD", path.c_str(), 1); }
  static void UseSerial(const std::string& serial) {
    setenv("DEVICE_URI", ("usbbr://Brellian/x?serial=" + serial).c_str(), 1);
  }

  // 'SaveSettings()' - Write s as the settings file that the reader loads
  // for serial: the one of the default model's name.
  static void SaveSettings(TBrellianSettings s, const std::string& serial) {
    s.modelName = Status_ModelName(1060);
    s.serialNumber = serial;
    Str_ToLower(s.modelName);
    Str_ToLower(s.serialNumber);
    Test_MakeDirs(BRELLIAN_SETTINGS_DIR);  // a tree the reader trusts
    ASSERT_TRUE(s.Save());
  }
  // 'UseSettings()' - SaveSettings and UseSerial: the job's printer has
  // serial, and its settings file holds s.  The file is removed after the
  // test, also when an assertion ended it early.
  void UseSettings(const TBrellianSettings& s, const std::string& serial) {
    SaveSettings(s, serial);
    UseSerial(serial);
    settingsUsed_.push_back(serial);
  }
  static void RemoveSettings(const std::string& serial) {
    TBrellianSettings s;
    s.modelName = Status_ModelName(1060);
    s.serialNumber = serial;
    Str_ToLower(s.modelName);
    Str_ToLower(s.serialNumber);
    unlink(s.FilePath().c_str());
  }

  char arg0_[8] = "filter";
  char* args_[7] = {arg0_, arg0_, arg0_, arg0_, arg0_, arg0_, nullptr};
  TPrintingTask* task_ = nullptr;
  std::vector<std::string> lines_;
  std::vector<std::string> settingsUsed_;  // serials whose files UseSettings wrote
};
