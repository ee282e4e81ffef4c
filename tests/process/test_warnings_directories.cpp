// WARNING lines for configuration files refused because of a directory on
// their way (the trust rule): the line names the file, the directory and
// the command that fixes it; the stream and the designed standard-error
// lines are those of the same job without the file.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "brellian_paths.h"
#include "support/jobs_support.h"
#include "support/process.h"
#include "support/warnings_support.h"

using namespace jobtest;
using namespace warntest;

namespace {

// 'Dir_Prepend()' - line followed by the lines of rest.
std::vector<std::string> Dir_Prepend(const std::string& line, const std::vector<std::string>& rest) {
  std::vector<std::string> all = {line};
  all.insert(all.end(), rest.begin(), rest.end());
  return all;
}

}  // namespace

// The settings directory writable by everyone (as a filter that made it
// with mode 0777 left it): the settings file is read as missing, and the
// warning says which directory and "chmod 755".
TEST_F(TWarnJobs, SettingsDirectoryWritableByOthers) {
  TBrellianSettings s = Warn_Settings();
  s.lutNames[0] = "warn-dir";
  ASSERT_TRUE(s.Save());
  const std::string file = Warn_SettingsPath(kWarnSerial);
  ASSERT_EQ(0, chmod(BRELLIAN_SETTINGS_DIR, 0777));
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT1");
  ASSERT_EQ(0, chmod(BRELLIAN_SETTINGS_DIR, 0755));
  // The same job with the directory put right reads the file: no such line.
  TWarnRun fixed = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT1");
  // And the job without the settings file: the designed output of the case.
  ASSERT_EQ(0, unlink(file.c_str()));
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontLUTTable=LUT1");

  const std::string dir = BRELLIAN_SETTINGS_DIR;
  const std::string line = "WARNING: " + file + " is not read: directory " + dir +
                           " is writable by other users, so any of them could have put the file there; make "
                           "it writable by its owner only: chmod 755 " + dir;
  // The directory's line comes first, then the option's usual one for a
  // settings file that can't be read.
  EXPECT_EQ((std::vector<std::string>{line, "WARNING: frontLUTTable=LUT1 is left out, the printer's own table is "
                                            "used: the settings file " + file + " can't be read"}),
            run.warnings);
  EXPECT_TRUE(run.stream == base.stream);
  EXPECT_EQ(base.designed, run.designed);
  EXPECT_EQ(Warn_DesignedLines(1), run.designed);
  EXPECT_EQ(0, run.status);
  EXPECT_TRUE(Test_Contains(run.log, "TBrellianSettings::Load --> failed to open settings file (2)"));
  Warn_LogHasNo(run, "chmod 755");
  for (const std::string& w : fixed.warnings) EXPECT_EQ(std::string::npos, w.find("is not read")) << w;
}

// The UV directory owned by another user: the UV preset is cleared as not
// found, and the warning says "chown root".
TEST_F(TWarnJobs, UVDirectoryOwnedByAnotherUser) {
  Job_UVFile("warn-owner.uv", kDots);
  TBrellianSettings s = Warn_Settings();
  s.uvNames[0] = "warn-owner.uv";
  ASSERT_TRUE(s.Save());
  const std::string dir = Test_ConfDir() + "/uv";
  if (chown(dir.c_str(), 1, static_cast<gid_t>(-1)) != 0) GTEST_SKIP() << "cannot give a directory away";
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Preset1");
  ASSERT_EQ(0, chown(dir.c_str(), geteuid(), static_cast<gid_t>(-1)));
  unlink((dir + "/warn-owner.uv").c_str());
  TWarnRun base = Warn_Run({Job_WhitePage()}, "frontUV=Preset1");

  const std::string file = dir + "/warn-owner.uv";
  const std::string line = "WARNING: " + file + " is not read: directory " + dir +
                           " belongs to a user other than root or the filter's user; give it to root: "
                           "chown root " + dir;
  EXPECT_EQ(Dir_Prepend(line, base.warnings), run.warnings);
  EXPECT_TRUE(run.stream == base.stream);
  EXPECT_EQ(base.designed, run.designed);
  EXPECT_TRUE(Test_Contains(run.log, "frontUV: clear preset (file not found)(" + file + ")"));
}

// A refusal of the file itself (a second hard link) is not a directory's
// fault: no such line, only the designed fallback.
TEST_F(TWarnJobs, FileRefusedForItselfNamesNoDirectory) {
  Job_UVFile("warn-links.uv", kDots);
  const std::string file = Test_ConfDir() + "/uv/warn-links.uv";
  const std::string link = Test_ConfDir() + "/uv/warn-links-2.uv";
  unlink(link.c_str());
  ASSERT_EQ(0, ::link(file.c_str(), link.c_str()));
  TBrellianSettings s = Warn_Settings();
  s.uvNames[0] = "warn-links.uv";
  ASSERT_TRUE(s.Save());
  TWarnRun run = Warn_Run({Job_WhitePage()}, "frontUV=Preset1");
  unlink(link.c_str());
  unlink(file.c_str());
  for (const std::string& w : run.warnings) EXPECT_EQ(std::string::npos, w.find("is not read")) << w;
  EXPECT_TRUE(Test_Contains(run.log, "frontUV: clear preset (file not found)(" + file + ")"));
}
