// Warn_Write: one WARNING line for the spooler, whatever the text holds.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "driver/warning.h"

TEST(WarnWrite, OneLineWithControlCharactersReplacedAndLongTextCut) {
  testing::internal::CaptureStderr();
  Warn_Write("a\tb\nc %s", std::string(2000, 'x').c_str());
  std::string text = testing::internal::GetCapturedStderr();
  ASSERT_EQ(std::string("WARNING: a?b?c ").size() + WARN_TEXT_BYTES - 6 + 1, text.size());
  EXPECT_EQ("WARNING: a?b?c xxx", text.substr(0, 18));
  EXPECT_EQ('\n', text.back());
  EXPECT_EQ(1, std::count(text.begin(), text.end(), '\n'));
}
