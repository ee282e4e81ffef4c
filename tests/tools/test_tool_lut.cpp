// Tests of the LUT writer and brellian-lut: identity and gamma tables, and checking files.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "options/lut_format.h"
#include "support/process.h"
#include "support/scratch_dir.h"

namespace {

const std::string LUT = BRELLIAN_TOOLS_DIR "/brellian-lut";

class LutTool : public TScratchDirTest {
 protected:
  LutTool() : TScratchDirTest("test-lut-tool") {}
};

}  // namespace

TEST(LutWriter, TheWrittenTextReadsBackIntoTheSameTable) {
  uint8_t table[3][LUT_ENTRIES], back[3][LUT_ENTRIES];
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < LUT_ENTRIES; ++i) table[c][i] = static_cast<uint8_t>((i * (c + 3) + c) % 256);
  std::string text = Lut_Format(table, "first\nsecond");
  EXPECT_EQ(0u, text.find("# first\n# second\nlevel,red,green,blue\n0,0,1,2\n1,3,5,7\n"));
  EXPECT_EQ(std::string::npos, text.find("\n\n"));
  TLutError error{0, ""};
  ASSERT_TRUE(Lut_Parse(text.data(), text.size(), back, &error)) << error.line << " " << error.reason;
  EXPECT_EQ(0, memcmp(table, back, sizeof table));
  EXPECT_EQ(0u, Lut_Format(table, nullptr).find("level,red,green,blue\n"));
}

TEST(LutWriter, GammaTablesRoundHalfUp) {
  uint8_t table[3][LUT_ENTRIES];
  const double gamma[3] = {2.0, 0.5, 1.0};
  ASSERT_TRUE(Lut_MakeGamma(gamma, table));
  const int levels[] = {0, 1, 64, 128, 254, 255};
  const int red[] = {0, 16, 128, 181, 254, 255};    // 255 x (i / 255) ^ 0.5
  const int green[] = {0, 0, 16, 64, 253, 255};     // 255 x (i / 255) ^ 2
  for (int j = 0; j < 6; ++j) {
    EXPECT_EQ(red[j], table[0][levels[j]]) << levels[j];
    EXPECT_EQ(green[j], table[1][levels[j]]) << levels[j];
    EXPECT_EQ(levels[j], table[2][levels[j]]) << levels[j];
  }
  const double bad[3][3] = {{0.05, 1, 1}, {1, 11, 1}, {1, 1, std::nan("")}};
  for (const auto& g : bad) EXPECT_FALSE(Lut_MakeGamma(g, table));
}

TEST_F(LutTool, WritesIdentityAndGammaTablesThatTheReaderAccepts) {
  TProcessResult r = Test_RunProcess({LUT, "identity"});
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ(0u, r.out.find("# Identity table: entry i holds i.\nlevel,red,green,blue\n0,0,0,0\n1,1,1,1\n"));
  EXPECT_EQ(r.out.size() - 17, r.out.find("\n255,255,255,255\n"));
  r = Test_RunProcess({LUT, "-o", dir + "/g.csv", "gamma", "2,0.5,1"});
  ASSERT_EQ(0, r.status) << r.err;
  uint8_t table[3][LUT_ENTRIES];
  TLutError error{0, ""};
  ASSERT_EQ(0, Lut_Load((dir + "/g.csv").c_str(), table, &error));
  EXPECT_EQ(128, table[0][64]);
  EXPECT_EQ(16, table[1][64]);
  EXPECT_EQ(64, table[2][64]);
  r = Test_RunProcess({LUT, "gamma", "0"});
  EXPECT_EQ(2, r.status);
  EXPECT_EQ("brellian-lut: gamma \"0\" is not G or R,G,B with values 0.1 to 10\n", r.err);
  EXPECT_EQ(2, Test_RunProcess({LUT, "gamma", "1,2"}).status);
}

TEST_F(LutTool, InstallWritesTheFileTheFilterLooksFor) {
  TProcessResult r = Test_RunProcess({LUT, "--install", "presettool-warm", "gamma", "1.1"});
  ASSERT_EQ(0, r.status) << r.err;
  std::string path = Test_ConfDir() + "/lut/presettool-warm.csv";
  EXPECT_EQ("installed " + path + "\n", r.out);
  uint8_t table[3][LUT_ENTRIES];
  TLutError error{0, ""};
  EXPECT_EQ(0, Lut_Load(path.c_str(), table, &error));
  Test_RemoveTree(path);
  EXPECT_EQ(2, Test_RunProcess({LUT, "--install", "../x", "identity"}).status);
}

TEST_F(LutTool, CheckReportsTheFirstFaultWithItsLine) {
  TProcessResult good = Test_RunProcess({LUT, "identity"});
  Test_WriteFile(dir + "/good.csv", good.out);
  std::string bad = good.out;
  bad.replace(bad.find("\n100,100,100,100\n"), 17, "\n100,100,256,100\n");
  bad.replace(bad.find("\n200,200,200,200\n"), 17, "\n200,200,200\n");
  Test_WriteFile(dir + "/bad.csv", bad);
  Test_WriteFile(dir + "/short.csv", "level,red,green,blue\n0,0,0,0\n");
  TProcessResult r = Test_RunProcess({LUT, "check", dir + "/good.csv", dir + "/bad.csv", dir + "/short.csv"});
  EXPECT_EQ(1, r.status);
  // Line 103: the comment line and the header come first.
  EXPECT_EQ(dir + "/good.csv: OK\n" + dir + "/bad.csv: line 103: value is not a number from 0 to 255\n" + dir +
                "/short.csv: fewer than 256 rows\n",
            r.out);
  r = Test_RunProcess({LUT, "check", dir + "/missing.csv"});
  EXPECT_EQ(3, r.status);
  EXPECT_EQ("brellian-lut: cannot read " + dir + "/missing.csv: No such file or directory\n", r.err);
}
