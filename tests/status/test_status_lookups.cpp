// Text lookups of the printer status vocabulary and their result slots.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <thread>
#include <unistd.h>

#include "status/tables.h"

namespace {

class StatusLookup : public ::testing::Test {
 protected:
  void SetUp() override { Status_BuildTables(); }
};

// Two bytes of a lookup (key and code, or status and error) and its text.
struct TByteCase {
  uint8_t first, second;
  const char* text;
};

// 'ExpectTexts()' - Each case looked up gives its text.
void ExpectTexts(const char* (*lookup)(uint8_t, uint8_t), std::initializer_list<TByteCase> cases) {
  for (const TByteCase& c : cases)
    EXPECT_STREQ(c.text, lookup(c.first, c.second))
        << std::hex << static_cast<int>(c.first) << "," << static_cast<int>(c.second);
}

}  // namespace

TEST_F(StatusLookup, SenseTextOfKnownUnknownAndHardwareMismatch) {
  ExpectTexts(Status_SenseText, {{0x05, 0x22, "Invalid security key"},
                                 {0x05, 0x99, "Undefined sense key (05,99)"},
                                 {0xFF, 0x12, "Hardware mismatch (12)"},
                                 {0x00, 0x00, "Ready"},
                                 {0x42, 0xB2, "Out of ribbon film"}});
}

TEST_F(StatusLookup, SenseTextOfLaminatorKeys) {
  ExpectTexts(Status_SenseText, {{0xFD, 0x12, "Laminating"},
                                 {0xFD, 0x20, "Undefined laminator status (20)"},
                                 // Status 0xFF goes to the error table, and the sense pair has no error byte.
                                 {0xFD, 0xFF, "Undefined laminator error (00)"},
                                 {0xFE, 0x59, "Front door is open"},
                                 {0xFE, 0x01, "Undefined laminator error (01)"}});
}

TEST_F(StatusLookup, SenseTextPackedSplitsTheBytes) {
  EXPECT_STREQ("Invalid security key", Status_SenseTextPacked(0x0522));
  EXPECT_STREQ("Hardware mismatch (AB)", Status_SenseTextPacked(0xFFAB));
  EXPECT_STREQ("Undefined sense key (12,34)", Status_SenseTextPacked(0x1234));
}

TEST_F(StatusLookup, SenseKeyWithCodes) {
  ExpectTexts(Status_SenseKeyWithCodes, {{0x03, 0x93, "Jam in transfer area (03,93)"},
                                         {0x05, 0x99, "Undefined sense key (05,99)"},
                                         {0xFF, 0x12, "Undefined sense key (FF,12)"}});
}

TEST_F(StatusLookup, PrinterTextAppendsTheSenseTextOnError) {
  EXPECT_STREQ("Printer error<br>Jam in transfer area", Status_PrinterText(0xFF, 0x03, 0x93));
  EXPECT_STREQ("Printer error<br>Hardware mismatch (12)", Status_PrinterText(0xFF, 0xFF, 0x12));
  EXPECT_STREQ("Printer error<br>Undefined sense key (05,99)", Status_PrinterText(0xFF, 0x05, 0x99));
  EXPECT_STREQ("Ready", Status_PrinterText(0x00, 0x03, 0x93));
  EXPECT_STREQ("Preheating", Status_PrinterText(0x3F, 0, 0));
  EXPECT_STREQ("Undefined printer status (02)", Status_PrinterText(0x02, 0x03, 0x93));
}

TEST_F(StatusLookup, LaminatorText) {
  ExpectTexts(Status_LaminatorText, {{0xFF, 0x59, "Front door is open"},
                                     {0x20, 0x00, "Undefined laminator status (20)"},
                                     {0xFF, 0x99, "Undefined laminator error (99)"},
                                     {0xFE, 0x59, "Laminator not connected"},
                                     {0x00, 0x59, "Ready"}});
}

TEST_F(StatusLookup, RibbonText) {
  EXPECT_STREQ("YMCK-PO", Status_RibbonText(0x02));
  EXPECT_STREQ("UNKNOWN (FC)", Status_RibbonText(0xFC));
  EXPECT_STREQ("UNDEFINED[06]", Status_RibbonText(0x06));
  EXPECT_STREQ("UNDEFINED[FB]", Status_RibbonText(0xFB));
}

TEST_F(StatusLookup, CopyIntAndTimeTexts) {
  EXPECT_STREQ("abc", Status_CopyText("abcdef", 3));
  EXPECT_STREQ("ab", Status_CopyText("ab", 10));
  EXPECT_STREQ("", Status_CopyText("ab", 0));
  EXPECT_STREQ("", Status_CopyText("ab", -5));
  EXPECT_STREQ("", Status_CopyText(nullptr, 10));
  std::string big(5000, 'q');
  EXPECT_EQ(std::string(1023, 'q'), Status_CopyText(big.c_str(), 5000));
  EXPECT_STREQ("-42", Status_IntText(-42));
  EXPECT_STREQ("2147483647", Status_IntText(2147483647));
  EXPECT_STREQ("0:00:00", Status_TimeText(0));
  EXPECT_STREQ("0:55:00", Status_TimeText(11));
  EXPECT_STREQ("1:05:00", Status_TimeText(13));
  EXPECT_STREQ("24:00:00", Status_TimeText(288));
  EXPECT_STREQ("-1:-5:00", Status_TimeText(-13));
}

TEST_F(StatusLookup, TwentyFirstLookupReusesTheFirstSlot) {
  const char* first = Status_RibbonText(0x00);
  EXPECT_STREQ("YMCK", first);
  const char* seen[STATUS_SLOTS];
  seen[0] = first;
  for (int i = 1; i < STATUS_SLOTS; ++i) {
    seen[i] = Status_IntText(i);
    for (int j = 0; j < i; ++j) EXPECT_NE(seen[j], seen[i]) << i << " " << j;
  }
  EXPECT_STREQ("YMCK", first);  // 20 lookups in, the first result still stands
  const char* twentyFirst = Status_SenseText(0x05, 0x22);
  EXPECT_EQ(first, twentyFirst);
  EXPECT_STREQ("Invalid security key", first);
}

TEST_F(StatusLookup, SlotIsClearedBeforeUse) {
  std::string big(1000, 'z');
  const char* slot = Status_CopyText(big.c_str(), 1000);
  for (int i = 1; i < STATUS_SLOTS; ++i) Status_IntText(i);
  const char* again = Status_IntText(7);
  ASSERT_EQ(slot, again);
  EXPECT_STREQ("7", again);
  for (int i = 1; i < STATUS_SLOT_BYTES; ++i) ASSERT_EQ('\0', again[i]) << i;
}

TEST_F(StatusLookup, NextSlotWrapsFromNineteenToZero) {
  int32_t start = Status_NextSlot();
  for (int i = 1; i < STATUS_SLOTS; ++i) EXPECT_EQ((start + i) % STATUS_SLOTS, Status_NextSlot());
  EXPECT_EQ(start, Status_NextSlot());
  while (Status_NextSlot() != STATUS_SLOTS - 1) {
  }
  EXPECT_EQ(0, Status_NextSlot());
}

TEST_F(StatusLookup, NextSlotCountsEveryCallFromManyThreads) {
  int32_t start = Status_NextSlot();
  auto take = [] {
    for (int i = 0; i < 10001; ++i) Status_NextSlot();
  };
  std::thread a(take), b(take), c(take);
  a.join();
  b.join();
  c.join();
  EXPECT_EQ((start + 1 + 3 * 10001) % STATUS_SLOTS, Status_NextSlot());
}

TEST(SysStdinReady, ReadableOnlyWithDataOrEndOfFile) {
  int saved = dup(0);
  ASSERT_GE(saved, 0);
  int fds[2];
  ASSERT_EQ(0, pipe(fds));
  ASSERT_EQ(0, dup2(fds[0], 0));
  EXPECT_EQ(0, Sys_StdinReady());
  ASSERT_EQ(1, write(fds[1], "x", 1));
  EXPECT_EQ(1, Sys_StdinReady());
  char c;
  ASSERT_EQ(1, read(0, &c, 1));
  EXPECT_EQ(0, Sys_StdinReady());
  close(fds[1]);
  EXPECT_EQ(1, Sys_StdinReady());  // end of file is readable
  close(0);
  EXPECT_EQ(0, Sys_StdinReady());  // closed descriptor: select fails
  dup2(saved, 0);
  close(saved);
  close(fds[0]);
}
