// Process test: the filter creates the configuration and settings
// directories with mode 0777 exactly when it looks for the settings file.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>

#include "support/process.h"

namespace {

// 'Mode()' - Permission bits of a directory, -1 when it is not one.
int Mode(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return -1;
  return static_cast<int>(st.st_mode & 07777);
}

}  // namespace

TEST(SettingsDirectories, FilterCreatesThemWithMode0777) {
  Test_RemoveTree(Test_ConfDir());
  ASSERT_EQ(-1, Mode(Test_ConfDir()));
  TProcessOptions options;
  options.env["DEVICE_URI"] = "usbbr://Brellian/x?serial=ABC";
  options.unsetEnv = {"PPD"};
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1", ""}, options);
  EXPECT_EQ(1, r.status);   // empty raster input: no pages
  EXPECT_EQ(0777, Mode(Test_ConfDir()));
  EXPECT_EQ(0777, Mode(Test_ConfDir() + "/settings"));
  // Files below directories any user can write are not trusted: leave no
  // such tree behind for the next test.
  Test_RemoveTree(Test_ConfDir());
}

TEST(SettingsDirectories, ExistingDirectoryKeepsItsMode) {
  Test_RemoveTree(Test_ConfDir());
  Test_MakeDirs(Test_ConfDir() + "/settings");
  ASSERT_EQ(0, chmod((Test_ConfDir() + "/settings").c_str(), 0750));
  TProcessOptions options;
  options.env["DEVICE_URI"] = "usbbr://Brellian/x?serial=ABC";
  options.unsetEnv = {"PPD"};
  Test_RunFilter({"1", "u", "t", "1", ""}, options);
  EXPECT_EQ(0750, Mode(Test_ConfDir() + "/settings"));
  Test_RemoveTree(Test_ConfDir());
}
