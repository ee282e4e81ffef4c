// WARNING lines of page processing for panels and pages left out or placed
// unscaled for lack of memory: the line is added, the stream and the log
// stay as designed.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "imaging/page_process.h"
#include "imaging/panel.h"
#include "imaging/stages.h"
#include "support/process.h"
#include "support/page_process_support.h"
#include "support/stage_helpers.h"

using namespace pagetest;

namespace {

// A model id with no real panel, given a panel too large to allocate.
constexpr int32_t kHugeModel = 9999;

class TWarnMemory : public TPageTest {
 protected:
  void Huge() {
    g_panelGeometry[kHugeModel] = {0xFFFFFFFFu, 0xFFFFFFFFu};
    task.printerModel = kHugeModel;
  }
  void TearDown() override {
    g_panelGeometry.erase(kHugeModel);
    TPageTest::TearDown();
  }
};

// 'Warn_Lines()' - The lines of text that start with "WARNING: ".
std::vector<std::string> Warn_Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (line.rfind("WARNING: ", 0) == 0) lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

// 'Warn_Without()' - text without its WARNING lines.
std::string Warn_Without(const std::string& text) {
  std::string rest;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    std::string line = text.substr(start, end == std::string::npos ? std::string::npos : end - start + 1);
    if (line.rfind("WARNING: ", 0) != 0) rest += line;
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return rest;
}

}  // namespace

#if !defined(__SANITIZE_ADDRESS__)
TEST_F(TWarnMemory, OverlayPresetPanelLeftOut) {
  Huge();
  task.frontPO = 2;
  EXPECT_EQ(37, Page_ProcessSubPage_POManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{">>>> Page_ProcessSubPage_POManual(2)",
                                      "<<<< Page_ProcessSubPage_POManual[out of memory]"}),
            log);
  EXPECT_EQ((std::vector<std::string>{
                "WARNING: Front side printed without its overlay panel: not enough memory to make it"}),
            warnLines);
}

TEST_F(TWarnMemory, UVPresetPanelLeftOut) {
  std::string path = Test_ConfDir() + "/uv/warn-nomem.uv";
  Test_MakeDirs(Test_ConfDir() + "/uv");
  Test_WriteFile(path, std::string(16, '\x7F'));
  Huge();
  task.sideIndex = 1;
  task.backUV = 2;
  task.backUVFile = path;
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_EQ((std::vector<std::string>{">>>> Page_ProcessSubPage_UVManual(2)(" + path + ")",
                                      "ERROR: Page_ProcessSubPage_UVManual --> out of memory",
                                      "<<<< Page_ProcessSubPage_UVManual"}),
            log);
  EXPECT_EQ((std::vector<std::string>{
                "WARNING: Back side printed without its UV panel: not enough memory to make it"}),
            warnLines);
}
#endif

TEST_F(TWarnMemory, StageThatYieldsNoPanelIsNamed) {
  // A stage that ran out of memory hands Page_SendPanel no panel.
  Page_SendPanel(&task, PANEL_K, nullptr);
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_TRUE(log.empty());
  EXPECT_EQ((std::vector<std::string>{
                "WARNING: Front side printed without its black panel: not enough memory to make it"}),
            warnLines);
}

TEST_F(TWarnMemory, PanelsThatAreSentWarnNothing) {
  std::vector<uint8_t> panel = Panel(1);
  uint8_t* copy = static_cast<uint8_t*>(malloc(panel.size()));
  memcpy(copy, panel.data(), panel.size());
  Page_SendPanel(&task, PANEL_K, copy);
  StopLog();
  EXPECT_FALSE(Bytes().empty());
  EXPECT_TRUE(warnLines.empty());
}

TEST(WarnMemory, HalftoneWithoutMemoryLeavesTheBlackPanelOut) {
  // A grey page takes the error-diffusion path, which needs more memory
  // than the limit leaves.  Task and page are made before the limit.
  auto task = Stage_MakeTask(1030);
  std::vector<uint8_t> rgb(static_cast<size_t>(1036) * 664 * 3, 128);
  FILE* sink = tmpfile();
  ASSERT_NE(nullptr, sink);
  task->output = sink;
  std::string text = Stage_LimitedRun(64 * 1024, [&] {
    Page_ProcessSubPage_K(task.get(), rgb.data());
    return static_cast<int>(ftell(sink));
  });
  task->output = stdout;
  fclose(sink);
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ((std::vector<std::string>{
                "WARNING: Front side printed without its black panel: not enough memory to make it"}),
            Warn_Lines(text));
  // Nothing was written, and the log is the stages' own account.
  EXPECT_NE(std::string::npos, text.find("exit=0"));
  EXPECT_NE(std::string::npos, Warn_Without(text).find("<<<< Page_ProcessSubPage_K"));
  EXPECT_EQ(std::string::npos, Warn_Without(text).find("memory to make it"));
}

TEST(WarnMemory, PageWithoutMemoryToResampleIsPlacedUnscaled) {
  // A panel one row high and a million dots wide: the panel (3 MB) fits in
  // the limit, the resampler's working rows for half a million dots do not.
  constexpr uint32_t kWideModel = 9998;
  auto task = Stage_MakeTask(1030);
  g_panelGeometry[kWideModel] = {1000000u, 1u};
  task->printerModel = kWideModel;
  // Fitted to the panel the page is 500000 x 1 dots.
  cups_page_header2_t header = Stage_Header(1000000, 2, 3000000);
  Stage_SetPage(task.get(), &header, std::vector<uint8_t>(6000000, 9));
  std::string text = Stage_LimitedRun(8u * 1024 * 1024, [&] {
    uint8_t* out = nullptr;
    int32_t result = Image_CUPSToPrinterRGB(task.get(), &out);
    return out ? result : 99;
  });
  g_panelGeometry.erase(kWideModel);
  if (text.empty()) GTEST_SKIP() << "no memory limit in this build";
  EXPECT_EQ((std::vector<std::string>{"WARNING: Page 0 is printed unscaled from the top-left corner: not enough "
                                      "memory to fit its 1000000 x 2 dots to the 1000000 x 1 panel"}),
            Warn_Lines(text));
  EXPECT_NE(std::string::npos, text.find("AspectResize(1000000,2)"));
  EXPECT_NE(std::string::npos, text.find("exit=0"));
}
