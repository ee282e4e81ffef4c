// Tests of the shared string and time helpers.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>

#include "util/str.h"
#include "util/sys.h"

TEST(Str, ToLowerChangesOnlyAsciiLetters) {
  char s[] = "AbC-1.XyZ\xC4";
  Str_ToLower(s);
  EXPECT_STREQ("abc-1.xyz\xC4", s);
  Str_ToLower(static_cast<char*>(nullptr));
}

TEST(Str, TrimSpacesRemovesSpacesOnlyAtBothEnds) {
  char s[] = "   a b  ";
  Str_TrimSpaces(s);
  EXPECT_STREQ("a b", s);
  char t[] = "\tx\t ";
  Str_TrimSpaces(t);
  EXPECT_STREQ("\tx\t", t);
  char u[] = "    ";
  Str_TrimSpaces(u);
  EXPECT_STREQ("", u);
}

TEST(Str, StripEOLRemovesTrailingCarriageReturnsAndLineFeeds) {
  char s[] = "key=value\r\n\n\r";
  Str_StripEOL(s);
  EXPECT_STREQ("key=value", s);
  char t[] = "a\nb ";
  Str_StripEOL(t);
  EXPECT_STREQ("a\nb ", t);
}

TEST(Str, EqualNoCase) {
  EXPECT_TRUE(Str_EqualNoCase("EntryExit", "entryexit"));
  EXPECT_FALSE(Str_EqualNoCase("Entry", "EntryExit"));
  EXPECT_FALSE(Str_EqualNoCase(nullptr, ""));
}

TEST(Str, CopyBoundedCutsAndTerminates) {
  char dst[4];
  Str_CopyBounded(dst, "abcdef", sizeof dst);
  EXPECT_STREQ("abc", dst);
  Str_CopyBounded(dst, nullptr, sizeof dst);
  EXPECT_STREQ("", dst);
}

TEST(Sys, NowMsFollowsTheWallClockAndSleepWaits) {
  uint64_t a = Sys_NowMs();
  Sys_SleepMs(30);
  uint64_t b = Sys_NowMs();
  EXPECT_GE(b - a, 29u);
  EXPECT_GT(a, 1600000000000ull);
}
