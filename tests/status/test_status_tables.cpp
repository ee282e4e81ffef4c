// The start-up message tables: their size, a digest of every entry, a few
// designed texts, and the builder's behaviour.  The digests stand in for a
// second copy of the tables: any change of a key or a text changes them.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>

#include "status/models.h"
#include "status/tables.h"
#include "support/digest.h"

namespace {

// 'TableText()' - Every entry as "KEY<tab>TEXT<newline>", in key order.
template <typename TKey>
std::string TableText(const std::map<TKey, std::string>& table) {
  std::string text;
  for (const auto& e : table) text += std::to_string(static_cast<uint32_t>(e.first)) + "\t" + e.second + "\n";
  return text;
}

// 'ExpectTable()' - The table has count entries, printable texts without
// blanks at either end, and the recorded digest.
template <typename TKey>
void ExpectTable(const char* name, const std::map<TKey, std::string>& table, size_t count, uint64_t digest) {
  SCOPED_TRACE(name);
  EXPECT_EQ(count, table.size());
  for (const auto& e : table) {
    EXPECT_FALSE(e.second.empty());
    EXPECT_NE(' ', e.second.front()) << e.second;
    EXPECT_NE(' ', e.second.back()) << e.second;
    for (char c : e.second) EXPECT_TRUE(c >= 0x20 && c < 0x7F) << e.second;
  }
  char hex[32];
  snprintf(hex, sizeof hex, "0x%016llx", static_cast<unsigned long long>(Test_Fnv(TableText(table))));
  EXPECT_EQ(digest, Test_Fnv(TableText(table))) << "digest now " << hex;
}

void ExpectAllTables() {
  ExpectTable("sense", g_senseMessages, 59, 0x1d8b18b2ddd94dabull);
  ExpectTable("printer status", g_printerStatusMessages, 14, 0x149a9f2ef5e404aaull);
  ExpectTable("laminator status", g_laminatorStatusMessages, 12, 0x8c6b9320eee98026ull);
  ExpectTable("laminator error", g_laminatorErrorMessages, 28, 0x46012a07355a6597ull);
  ExpectTable("ribbon type", g_ribbonTypeNames, 10, 0xcafcd292091b6da2ull);
}

}  // namespace

TEST(StatusTables, EveryTableHasItsSizeAndRecordedDigest) {
  Status_BuildTables();
  ExpectAllTables();
}

TEST(StatusTables, DesignedTextsOfEachTable) {
  Status_BuildTables();
  EXPECT_EQ("Ready", g_senseMessages.at(0x0000));
  EXPECT_EQ("Jam in card hopper", g_senseMessages.at(0x0390));
  EXPECT_EQ("Invalid command code", g_senseMessages.at(0x0520));
  EXPECT_EQ("YMCK", g_ribbonTypeNames.at(0x00));
  EXPECT_EQ("UNKNOWN (FC)", g_ribbonTypeNames.at(0xFC));
  EXPECT_EQ("Other error", g_laminatorErrorMessages.at(0x7D));
}

TEST(StatusTables, BuildingTwiceGivesTheSameTables) {
  Status_BuildTables();
  g_senseMessages[0x1234] = "stray";
  g_modelNames[9999] = "stray";
  Status_BuildTables();
  ExpectAllTables();
  EXPECT_EQ(0u, g_modelNames.count(9999));
}

TEST(StatusTables, ModelNamesAreTheModelTables) {
  Status_BuildTables();
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  ASSERT_EQ(static_cast<size_t>(count), g_modelNames.size());
  for (int32_t i = 0; i < count; ++i) EXPECT_STREQ(models[i].name, Status_ModelName(models[i].id));
  EXPECT_STREQ("BR-1060", Status_ModelName(1060));
  EXPECT_STREQ("", Status_ModelName(1040));
}
