// The filter run as a process with hostile files where it reads its
// configuration: PPD, settings, lookup tables, UV presets and the log
// configuration as directories, FIFOs, symbolic links, garbage and oversized
// text.  Every case ends with the designed fallback and never blocks.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "brellian_paths.h"
#include "options/settings.h"
#include "lib/raster_writer.h"
#include "status/tables.h"
#include "support/process.h"
#include "support/hostile_harness.h"

namespace {

const std::string kSerial = "ab12";


std::string SettingsPath() {
  std::string model = Status_ModelName(1060);
  for (char& c : model) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return std::string(BRELLIAN_SETTINGS_DIR) + "/brellian_" + model + "_" + kSerial + ".dat";
}

// 'PlantSettings()' - A settings file naming LUT1 "hostile" and UV preset 1
// "hostile.uv".
void PlantSettings() {
  TBrellianSettings s;
  s.lutNames[0] = "hostile";
  s.uvNames[0] = "hostile.uv";
  Test_MakeDirs(BRELLIAN_SETTINGS_DIR);
  Test_WriteFile(SettingsPath(), s.SaveToBytes());
}

// How a path is made hostile.
enum class TKind { Directory, Fifo, Symlink, Missing };

void MakeHostile(const std::string& path, TKind kind, const std::string& linkTarget) {
  Test_RemoveTree(path);
  size_t slash = path.rfind('/');
  Test_MakeDirs(path.substr(0, slash));
  if (kind == TKind::Directory) Test_MakeDirs(path);
  if (kind == TKind::Fifo) {
    ASSERT_EQ(0, mkfifo(path.c_str(), 0666));
  }
  if (kind == TKind::Symlink) {
    ASSERT_EQ(0, symlink(linkTarget.c_str(), path.c_str()));
  }
}

struct TFileCase {
  const char* name;
  std::function<void()> prepare;               // plants the hostile file
  std::string options;                         // the job's options argument
  std::string serial;                          // behind "?serial=" in DEVICE_URI
  std::vector<std::string> logLines;           // must be in the log
  std::vector<std::string> absentLogLines;     // must not be in the log
};

std::string LutPath() { return std::string(BRELLIAN_LUT_DIR) + "/hostile.csv"; }
std::string UvPath() { return std::string(BRELLIAN_CONF_DIR) + "/uv/hostile.uv"; }
std::string RealFile() {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile-targets";
  Test_MakeDirs(dir);
  return dir + "/real";
}

std::string LutRows(int rows) {
  std::string t = "level,red,green,blue\n";
  for (int i = 0; i < rows; ++i) {
    int v = i % 256;
    t += std::to_string(v) + "," + std::to_string(v) + "," + std::to_string(v) + "," +
         std::to_string(v) + "\n";
  }
  return t;
}

std::function<void()> Lut(TKind kind) {
  return [kind] {
    PlantSettings();
    Test_WriteFile(RealFile(), LutRows(256));
    MakeHostile(LutPath(), kind, RealFile());
  };
}
std::function<void()> LutText(std::string text) {
  return [text] {
    PlantSettings();
    Test_RemoveTree(LutPath());
    Test_MakeDirs(BRELLIAN_LUT_DIR);
    Test_WriteFile(LutPath(), text);
  };
}
std::function<void()> Uv(TKind kind) {
  return [kind] {
    PlantSettings();
    Test_WriteFile(RealFile(), std::string(2072 * 1328, '\x80'));
    MakeHostile(UvPath(), kind, RealFile());
  };
}
// 'UvSized()' - A UV preset of the 1060's panel size plus delta bytes.
std::function<void()> UvSized(long delta) {
  return [delta] {
    PlantSettings();
    Test_RemoveTree(UvPath());
    Test_MakeDirs(std::string(BRELLIAN_CONF_DIR) + "/uv");
    Test_WriteFile(UvPath(), std::string(static_cast<size_t>(2072L * 1328L + delta), '\x80'));
  };
}
std::function<void()> Settings(TKind kind) {
  return [kind] {
    TBrellianSettings s;
    Test_WriteFile(RealFile(), s.SaveToBytes());
    MakeHostile(SettingsPath(), kind, RealFile());
  };
}

const std::string kLut1 = "frontLUTTable=LUT1";
const std::string kUv1 = "frontUV=Preset1";
std::string LutNotFound() { return "ERROR:   LUT Table not found: (" + LutPath() + ")"; }
std::string LutNotUsable(const std::string& why) {
  return "ERROR:   LUT Table not usable: (" + LutPath() + ")(" + why + ")";
}
std::string UvNotFound() { return "frontUV: clear preset (file not found)(" + UvPath() + ")"; }
std::string UvUnreadable() {
  return "ERROR: Page_ProcessSubPage_UVManual --> unable to read file (" + UvPath() + ")";
}
const char* const kUvPanel = ">>>> Page_PrintSidePanel(2)(2072)(1328)(29)(60088)";
std::string SettingsFailed(int error) {
  return "TBrellianSettings::Load --> failed to open settings file (" + std::to_string(error) + ")";
}

const TFileCase kCases[] = {
    {"SettingsDirectory", Settings(TKind::Directory), "", kSerial, {SettingsFailed(22)}, {}},
    {"SettingsFifo", Settings(TKind::Fifo), "", kSerial, {SettingsFailed(22)}, {}},
    {"SettingsSymlink", Settings(TKind::Symlink), "", kSerial, {SettingsFailed(40)}, {}},
    {"SerialOf5000", [] {}, "", std::string(5000, 's'), {SettingsFailed(36)}, {}},
    {"SerialLeavingTheDirectory", [] {}, "", "../../../etc/x", {SettingsFailed(22)}, {}},
    {"LutDirectory", Lut(TKind::Directory), kLut1, kSerial, {LutNotFound()}, {}},
    {"LutFifo", Lut(TKind::Fifo), kLut1, kSerial, {LutNotFound()}, {}},
    {"LutSymlink", Lut(TKind::Symlink), kLut1, kSerial, {LutNotFound()}, {}},
    {"LutTooManyRows", LutText(LutRows(257)), kLut1, kSerial,
     {LutNotUsable("line 258: more than 256 rows")}, {}},
    {"LutBadNumber", LutText("level,red,green,blue\n0,1,2,x3\n"), kLut1, kSerial,
     {LutNotUsable("line 2: value is not a number from 0 to 255")}, {}},
    {"LutBinary", LutText(Test_Bytes("level,red,green,blue\n0,1\0,2,3\n")), kLut1, kSerial,
     {LutNotUsable("line 0: binary data")}, {}},
    {"LutOversized", LutText(std::string(70000, '#')), kLut1, kSerial,
     {LutNotUsable("line 0: file larger than 64 KiB")}, {}},
    {"UvDirectory", Uv(TKind::Directory), kUv1, kSerial, {UvNotFound()}, {}},
    {"UvFifo", Uv(TKind::Fifo), kUv1, kSerial, {UvNotFound()}, {}},
    {"UvSymlink", Uv(TKind::Symlink), kUv1, kSerial, {UvNotFound()}, {}},
    {"UvOneByteShort", UvSized(-1), kUv1, kSerial, {UvUnreadable()}, {kUvPanel}},
    {"UvOneByteLong", UvSized(1), kUv1, kSerial, {kUvPanel}, {UvUnreadable()}},
};

void PrintTo(const TFileCase& c, std::ostream* os) { *os << c.name; }

class HostileFiles : public ::testing::TestWithParam<TFileCase> {
 protected:
  void SetUp() override { Status_BuildTables(); }
  void TearDown() override {
    for (const std::string& p : {LutPath(), UvPath(), SettingsPath()}) Test_RemoveTree(p);
  }
};

}  // namespace

TEST_P(HostileFiles, FallBackWithoutBlocking) {
  const TFileCase& c = GetParam();
  Test_ResetLog();
  Test_SetLogLevelWord("EntryExit");
  c.prepare();
  THostileRun run;
  run.input = Hostile_ValidPage();
  run.args = {"7", "user", "title", "1", c.options};
  run.env["PPD"] = Test_GeneratedPPD();
  run.env["DEVICE_URI"] = "usbbr://Brellian/X?serial=" + c.serial;
  Hostile_ExpectPrintedWithDefaults(Hostile_Run(run), c.logLines, c.absentLogLines);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileFiles, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<TFileCase>& info) {
                           return std::string(info.param.name);
                         });
