// Process test: the filter creates the configuration and settings
// directories, when it looks for the settings file and they are missing,
// with mode 0777 exactly (its umask is 0).  A settings file saved later
// into such a tree is refused by the trust rule, and the job says which
// directory to put right and how.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>

#include "brellian_paths.h"
#include "options/settings.h"
#include "status/tables.h"
#include "support/process.h"
#include "util/str.h"

namespace {

// 'Mode()' - Permission bits of a directory, -1 when it is not one.
int Mode(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return -1;
  return static_cast<int>(st.st_mode & 07777);
}

// 'Dirs_Run()' - The filter on empty input for the printer with serial
// number ABC and no PPD; returns standard error.
std::string Dirs_Run() {
  TProcessOptions options;
  options.env["DEVICE_URI"] = "usbbr://Brellian/x?serial=ABC";
  options.unsetEnv = {"PPD"};
  TProcessResult r = Test_RunFilter({"1", "u", "t", "1", ""}, options);
  EXPECT_EQ(1, r.status);   // empty raster input: no pages
  return r.err;
}

}  // namespace

TEST(SettingsDirectories, FilterCreatesThemWithMode0777) {
  Test_RemoveTree(Test_ConfDir());
  ASSERT_EQ(-1, Mode(Test_ConfDir()));
  std::string err = Dirs_Run();
  EXPECT_EQ(0777, Mode(Test_ConfDir()));
  EXPECT_EQ(0777, Mode(Test_ConfDir() + "/settings"));
  EXPECT_EQ("ERROR: No pages found!\n", err);
  Test_RemoveTree(Test_ConfDir());
}

// A tree the filter made (as root, say, in a manual test) hides what the
// administrator saves in it later, and every job says so with the fix;
// once the directories are put right the file is read.
TEST(SettingsDirectories, SettingsSavedInATreeTheFilterMadeAreRefusedWithTheFix) {
  Test_RemoveTree(Test_ConfDir());
  Dirs_Run();
  Status_BuildTables();
  TBrellianSettings settings;
  settings.modelName = Status_ModelName(1060);
  Str_ToLower(settings.modelName);
  settings.serialNumber = "abc";
  ASSERT_TRUE(settings.Save());
  EXPECT_EQ(0777, Mode(Test_ConfDir() + "/settings"));   // Save keeps the existing mode
  Test_ResetLog();
  Test_SetLogLevelWord("log");
  std::string err = Dirs_Run();
  const std::string dir = Test_ConfDir() + "/settings";
  EXPECT_NE(std::string::npos, err.find("WARNING: ")) << err;
  EXPECT_NE(std::string::npos, err.find("is writable by other users")) << err;
  EXPECT_NE(std::string::npos, err.find("chmod 755 ")) << err;
  EXPECT_NE(std::string::npos, err.find("ERROR: No pages found!\n")) << err;
  bool refused = false;
  for (const std::string& line : Test_LogMessages())
    refused |= line.find("failed to open settings file") != std::string::npos;
  EXPECT_TRUE(refused);

  ASSERT_EQ(0, chmod(Test_ConfDir().c_str(), 0755));
  ASSERT_EQ(0, chmod(dir.c_str(), 0755));
  Test_ResetLog();
  Test_SetLogLevelWord("log");
  err = Dirs_Run();
  EXPECT_EQ("ERROR: No pages found!\n", err);
  refused = false;
  for (const std::string& line : Test_LogMessages())
    refused |= line.find("failed to open settings file") != std::string::npos;
  EXPECT_FALSE(refused);
  Test_ResetLog();
  Test_RemoveTree(Test_ConfDir());
}

TEST(SettingsDirectories, ExistingDirectoryKeepsItsMode) {
  Test_RemoveTree(Test_ConfDir());
  Test_MakeDirs(Test_ConfDir() + "/settings");
  ASSERT_EQ(0, chmod((Test_ConfDir() + "/settings").c_str(), 0750));
  Dirs_Run();
  EXPECT_EQ(0750, Mode(Test_ConfDir() + "/settings"));
  Test_RemoveTree(Test_ConfDir());
}
