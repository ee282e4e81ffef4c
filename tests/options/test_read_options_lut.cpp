// Tests of the lookup-table file format.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <unistd.h>

#include "brellian_paths.h"
#include "options/lut_file.h"
#include "support/process.h"

namespace {

// A well-formed file: red = 255 - i, green = i, blue = i / 2.
std::string Table(const std::string& header = "level,red,green,blue") {
  std::string s = "# comment\n" + header + "\n";
  for (int i = 0; i < 256; ++i)
    s += std::to_string(i) + "," + std::to_string(255 - i) + "," + std::to_string(i) + "," +
         std::to_string(i / 2) + "\n";
  return s;
}

std::string ReplaceRow(std::string text, int level, const std::string& row) {
  std::string start = "\n" + std::to_string(level) + ",";
  size_t at = text.find(start);
  size_t end = text.find('\n', at + 1);
  return text.replace(at + 1, end - at - 1, row);
}

struct TParse {
  bool ok;
  TLutError error;
  uint8_t table[3][256];
};

TParse Parse(const std::string& text) {
  TParse p;
  memset(p.table, 0x5A, sizeof p.table);
  p.error = {0, ""};
  p.ok = Lut_Parse(text.data(), text.size(), p.table, &p.error);
  return p;
}

bool Untouched(const TParse& p) {
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < 256; ++i)
      if (p.table[c][i] != 0x5A) return false;
  return true;
}

}  // namespace

TEST(LutFormat, WellFormedTable) {
  TParse p = Parse(Table());
  ASSERT_TRUE(p.ok);
  EXPECT_EQ(255, p.table[0][0]);
  EXPECT_EQ(0, p.table[0][255]);
  EXPECT_EQ(200, p.table[1][200]);
  EXPECT_EQ(127, p.table[2][255]);
}

TEST(LutFormat, BlanksCommentsCRLFAndByteOrderMarkAreAccepted) {
  std::string text = "\xEF\xBB\xBF" + Table(" Level , RED,green ,Blue ");
  std::string crlf;
  for (char c : text) {
    if (c == '\n') crlf += "\r\n";
    else crlf += c;
  }
  crlf = ReplaceRow(crlf, 7, " 7 , 248 , 7 , 3 \r");
  crlf.insert(crlf.find("\n100,") + 1, "\n# mid comment\n\t\n");
  TParse p = Parse(crlf);
  ASSERT_TRUE(p.ok) << p.error.line << " " << p.error.reason;
  EXPECT_EQ(248, p.table[0][7]);
}

TEST(LutFormat, MalformedFilesAreRejectedWithTheirLine) {
  const struct { std::string text; int32_t line; const char* reason; } cases[] = {
      {"", 0, "no header line"},
      {"# only a comment\n", 0, "no header line"},
      {"level,red,green\n", 1, "expected four fields"},
      {"lvl,red,green,blue\n", 1, "expected header level,red,green,blue"},
      {"level,red,green,blue\n0,0,0,0\n", 0, "fewer than 256 rows"},
      {ReplaceRow(Table(), 5, "5,256,0,0"), 8, "value is not a number from 0 to 255"},
      {ReplaceRow(Table(), 5, "5,-1,0,0"), 8, "value is not a number from 0 to 255"},
      {ReplaceRow(Table(), 5, "5,1.5,0,0"), 8, "value is not a number from 0 to 255"},
      {ReplaceRow(Table(), 5, "5,,0,0"), 8, "value is not a number from 0 to 255"},
      {ReplaceRow(Table(), 5, "5,0001,0,0"), 8, "value is not a number from 0 to 255"},
      {ReplaceRow(Table(), 5, "6,1,0,0"), 8, "levels must run from 0 to 255 in order"},
      {ReplaceRow(Table(), 5, "5,1,0,0,0"), 8, "expected four fields"},
      {Table() + "256,0,0,0\n", 259, "more than 256 rows"},
      {Table() + "level,red,green,blue\n", 259, "more than 256 rows"},
      {std::string("level,red,green,blue\n0,0,\0,0\n", 30), 0, "binary data"},
  };
  for (const auto& c : cases) {
    TParse p = Parse(c.text);
    EXPECT_FALSE(p.ok) << c.reason;
    EXPECT_EQ(c.line, p.error.line) << c.reason;
    EXPECT_STREQ(c.reason, p.error.reason);
    EXPECT_TRUE(Untouched(p)) << c.reason;
  }
}

TEST(LutFormat, LoadCapsTheFileSize) {
  Test_MakeDirs(BRELLIAN_LUT_DIR);
  std::string path = std::string(BRELLIAN_LUT_DIR) + "/huge-test.csv";
  Test_WriteFile(path, Table() + std::string(LUT_FILE_MAX, '#'));
  uint8_t table[3][256];
  TLutError error{0, ""};
  EXPECT_EQ(-2, Lut_Load(path.c_str(), table, &error));
  EXPECT_STREQ("file larger than 64 KiB", error.reason);
  Test_WriteFile(path, Table());
  EXPECT_EQ(0, Lut_Load(path.c_str(), table, &error));
  EXPECT_EQ(254, table[0][1]);
  unlink(path.c_str());
  EXPECT_EQ(-1, Lut_Load(path.c_str(), table, &error));
}

TEST(LutFormat, ExampleFileIsWellFormed) {
  std::string text = Test_ReadFile(std::string(BRELLIAN_SOURCE_DIR) + "/docs/examples/lut-warm.csv");
  TParse p = Parse(text);
  ASSERT_TRUE(p.ok) << p.error.line << " " << p.error.reason;
  EXPECT_EQ(0, p.table[0][0]);
  EXPECT_EQ(255, p.table[2][255]);
}
