// The filter run as a process with hostile command-line arguments: long or
// multi-line titles, job ids and copies out of range, ten thousand options,
// overlong or huge area values and magnetic data.  No user text reaches
// standard error; in the log it is escaped and bounded.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cctype>

#include <string>
#include <vector>

#include "lib/raster_writer.h"
#include "support/process.h"
#include "support/hostile_harness.h"

namespace {


// 'RunWith()' - One page through the filter with the 1060 PPD and the given
// job-id, title, copies and options arguments.
THostileResult RunWith(const std::string& jobId, const std::string& title, const std::string& copies,
                       const std::string& options) {
  Test_ResetLog();
  THostileRun run;
  run.input = Hostile_ValidPage();
  run.args = {jobId, "user", title, copies, options};
  run.env["PPD"] = Test_GeneratedPPD();
  THostileResult r = Hostile_Run(run);
  std::string why;
  EXPECT_TRUE(Hostile_Clean(r, &why)) << why;
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(Hostile_ProgressErr({2}), Test_WithoutWarnings(r.err));   // no user text on standard error
  return r;
}

int32_t Word(const std::string& s, size_t at) {
  uint32_t v = 0;
  for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<uint8_t>(s[at + i])) << (8 * i);
  return static_cast<int32_t>(v);
}

}  // namespace

TEST(HostileArgs, TitleOf200CharactersIsCutTo127InTheRecord) {
  std::string title(200, 'T');
  THostileResult r = RunWith("5", title, "1", "");
  ASSERT_GE(r.out.size(), 411u);
  EXPECT_EQ(std::string(127, 'T') + '\0', r.out.substr(27, 128));
  EXPECT_TRUE(Hostile_LogHas(Test_LogMessages(), "CMD: TITLE   [" + title + "]"));
}

TEST(HostileArgs, TitleWithNewlineAndSpoolerPrefixStaysOneEscapedLogLine) {
  std::string title = "Badge\nPPD: /etc/shadow\nERROR: forged\r\x1B[2J";
  RunWith("5", title, "1", "");
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Hostile_LogHas(
      log, "CMD: TITLE   [Badge\\x0APPD: /etc/shadow\\x0AERROR: forged\\x0D\\x1B[2J]"));
  EXPECT_TRUE(Hostile_LogHas(
      log, "ARG3: Badge\\x0APPD: /etc/shadow\\x0AERROR: forged\\x0D\\x1B[2J"));
  // In the raw file every line starts with its own time stamp: the title
  // could not start a line of its own, and no control byte reached the file.
  std::string raw = Test_ReadFile(Test_LogFile());
  ASSERT_FALSE(raw.empty());
  EXPECT_EQ(std::string::npos, raw.find('\x1B'));
  EXPECT_EQ(std::string::npos, raw.find('\r'));
  std::vector<std::string> lines = Test_Lines(raw);
  for (const std::string& line : lines) {
    ASSERT_GE(line.size(), 16u) << line;
    for (int i : {0, 1, 2, 3, 4, 5, 7, 8, 10, 11, 13, 14}) ASSERT_TRUE(isdigit(line[i])) << line;
    ASSERT_EQ(' ', line[6]) << line;
    ASSERT_EQ(':', line[9]) << line;
    ASSERT_EQ(':', line[12]) << line;
    ASSERT_EQ(' ', line[15]) << line;
  }
  EXPECT_GT(lines.size(), 3u);
}

TEST(HostileArgs, JobIdsOutOfRangeGiveZero) {
  const std::pair<const char*, int32_t> kIds[] = {
      {"99999999999", 0}, {"-2147483649", 0}, {"2147483647", 2147483647},
      {"-7", -7},         {"12abc", 12},      {"abc", 0}};
  for (const auto& id : kIds) {
    THostileResult r = RunWith(id.first, "t", "1", "");
    ASSERT_EQ(Hostile_SimplexColorCard(1328, 9), Test_RecordTypes(r.out)) << id.first;
    EXPECT_EQ(id.second, Word(r.out, 18)) << id.first;                  // ICMD_STARTJOB
    EXPECT_EQ(id.second, Word(r.out, r.out.size() - 4)) << id.first;   // ICMD_ENDJOB
  }
}

TEST(HostileArgs, CopiesOutOfRangeAreBounded) {
  const std::pair<const char*, int32_t> kCopies[] = {
      {"0", 1}, {"-3", 1}, {"x", 1}, {"3", 3}, {"99999999999", 2147483647}};
  for (const auto& c : kCopies) {
    THostileResult r = RunWith("5", "t", c.first, "");
    ASSERT_GE(r.out.size(), 26u);
    EXPECT_EQ(c.second, Word(r.out, 22)) << c.first;
  }
}

TEST(HostileArgs, TenThousandOptions) {
  std::string options;
  for (int i = 0; i < 10000; ++i) options += "opt" + std::to_string(i) + "=v ";
  RunWith("5", "t", "1", options);
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Hostile_LogHas(log, "ARG5: {too long}"));
  EXPECT_TRUE(Hostile_LogHas(log, "opt9999::[v]"));
}

// A value token longer than 20 characters empties its area; a huge value is
// held at the largest dot count instead of overflowing.
TEST(HostileArgs, OverlongAndHugeAreaValues) {
  std::string token30 = "123456789012345678901234567890mm";
  RunWith("5", "t", "1",
          "frontResin=CustomAreas frontResinInclude1='Custom." + token30 +
              " 1mm 1mm 1mm' frontResinInclude2='Custom.99999999999999999px 1px 2px 3px'");
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Hostile_LogHas(log, "frontResinInclude1::[Custom." + token30 + " 1mm 1mm 1mm]"));
  for (const std::string& line : log) EXPECT_EQ(std::string::npos, line.find("Parse area: (Custom." + token30));
  EXPECT_TRUE(Hostile_LogHas(log, "Parse area: (Custom.99999999999999999px 1px 2px 3px)(600) --> (-1,1)(2,3)"));
}

TEST(HostileArgs, MagneticDataOf128CharactersAndNonAsciiBytes) {
  std::string data(128, 'x');
  RunWith("5", "t", "1",
          "magEncodeFormat3=ISO7-69 magEncodeData3=Custom." + data +
              " magEncodeFormat1=ISO6-76 magEncodeData1=Custom.caf\xC3\xA9");
  std::vector<std::string> log = Test_LogMessages();
  EXPECT_TRUE(Hostile_LogHas(log, "magEncodeData3::[Custom." + data + "]"));
  EXPECT_TRUE(Hostile_LogHas(log, "magEncodeData1::[Custom.caf\xC3\xA9]"));
}
