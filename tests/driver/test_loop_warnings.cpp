// The page loop's WARNING lines: a page cut short and a job without a card,
// and the cases that must write nothing.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>

#include "driver/loop_warnings.h"
#include "driver/printing_task.h"

namespace {

// 'Loop_Captured()' - What fn writes to standard error.
template <typename F>
std::string Loop_Captured(F fn) {
  testing::internal::CaptureStderr();
  fn();
  return testing::internal::GetCapturedStderr();
}

}  // namespace

TEST(LoopWarnings, PageCutShortNamesThePageAndTheRows) {
  EXPECT_EQ("WARNING: Page 3 is cut short: 482 of its 664 rows arrived before the document's data ended; the "
            "rows that did not arrive are printed white. Send the document again in full\n",
            Loop_Captured([] { Warn_PageCutShort(3, 482, 664, 3108); }));
  EXPECT_EQ("WARNING: Page 1 is cut short: 0 of its 1 rows arrived before the document's data ended; the "
            "rows that did not arrive are printed white. Send the document again in full\n",
            Loop_Captured([] { Warn_PageCutShort(1, 0, 1, 3); }));
}

TEST(LoopWarnings, WholePagesAndPagesWithoutBytesAreNotCutShort) {
  EXPECT_EQ("", Loop_Captured([] { Warn_PageCutShort(1, 664, 664, 3108); }));
  EXPECT_EQ("", Loop_Captured([] { Warn_PageCutShort(1, 0, 0, 3108); }));
  EXPECT_EQ("", Loop_Captured([] { Warn_PageCutShort(1, 0, 664, 0); }));
}

TEST(LoopWarnings, NoCardOnlyWhenPagesWereReadAndNoCardBegan) {
  char* argv[] = {nullptr};
  TPrintingTask task(1, argv);
  EXPECT_EQ("WARNING: No card printed: none of the job's 2 pages could be printed (the warnings above say "
            "why)\n",
            Loop_Captured([&] { Warn_NoCard(&task, 2); }));
  EXPECT_EQ("WARNING: No card printed: the job's only page could not be printed (the warning above says why)\n",
            Loop_Captured([&] { Warn_NoCard(&task, 1); }));
  EXPECT_EQ("", Loop_Captured([&] { Warn_NoCard(&task, 0); }));   // "No pages found!" says it
  task.cardOpen = 1;
  EXPECT_EQ("", Loop_Captured([&] { Warn_NoCard(&task, 2); }));
  task.cardOpen = 0;
  task.jobComplete = 1;
  EXPECT_EQ("", Loop_Captured([&] { Warn_NoCard(&task, 2); }));
}
