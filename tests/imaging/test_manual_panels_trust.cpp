// Tests of the preset UV panel with a UV file another user could have
// planted: it is not found, with a warning, and no UV panel is sent.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "imaging/page_process.h"
#include "support/process.h"
#include "support/page_process_support.h"

using namespace pagetest;

namespace {

class TManualPanelTrustTest : public TPageTest {
 protected:
  void SetUp() override {
    TPageTest::SetUp();
    uvDir = Test_ConfDir() + "/uv";
    Test_MakeDirs(uvDir);
    path = uvDir + "/trust.uv";
    unlink(path.c_str());
    Test_WriteFile(path, std::string(1036 * 664, '\x7f'));
    task.frontUV = 2;
    task.frontUVFile = path;
  }
  void TearDown() override {
    chmod(uvDir.c_str(), 0755);
    unlink(path.c_str());
    TPageTest::TearDown();
  }

  std::string uvDir;
  std::string path;
};

}  // namespace

TEST_F(TManualPanelTrustTest, FileInADirectoryOthersCanWriteIsNotFound) {
  ASSERT_EQ(0, chmod(uvDir.c_str(), 0777));
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  std::vector<std::string> log = StopLog();
  EXPECT_EQ("", Bytes());
  EXPECT_TRUE(Test_Contains(log, "WARNING: Conf_OpenFile --> file not trusted (" + path + "): " +
                                     uvDir + " is writable by other users"));
  EXPECT_TRUE(
      Test_Contains(log, "ERROR: Page_ProcessSubPage_UVManual --> file not found (" + path + ")"));
}

TEST_F(TManualPanelTrustTest, TrustedFileIsSent) {
  EXPECT_EQ(0, Page_ProcessSubPage_UVManual(&task));
  StopLog();
  EXPECT_NE("", Bytes());
}
