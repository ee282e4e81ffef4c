// Tests of the settings text form and its key checks (brellian-settings).
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "options/settings.h"
#include "lib/settings_keys.h"
#include "lib/settings_text.h"
#include "status/tables.h"

namespace {

// 'FullSettings()' - Settings with every kind of value set, including
// values that need quoting.
TBrellianSettings FullSettings() {
  TBrellianSettings s;
  s.resinAreas[0][0][0] = "5mm 5mm 50mm 30mm";
  s.resinAreas[0][1][2] = "custom.2.5cm 0 3in 1.5in";
  s.resinAreas[9][0][1] = "1\" 1\" 2\" 0.5\"";
  s.poAreas[3][0][0] = " 10px 20px 30px 40px";   // a leading blank survives
  s.poAreas[3][1][2] = "0 0 0 100px";
  s.lutNames[0] = "warm";
  s.lutNames[4] = "cool";
  s.uvNames[2] = "logo.uv";
  s.flags[0] = 40;
  s.flags[1] = 255;
  s.flags[9] = 7;
  s.plugin = "\"quoted\" plug\\in";
  s.cardThickness = 5;
  s.magPOMode = 0;
  return s;
}

bool Set(TBrellianSettings* s, const std::string& key, const std::string& value, std::string* error) {
  TSettingsKey k;
  EXPECT_TRUE(Settings_FindKey(key, &k)) << key;
  return Settings_SetValue(s, k, value, error);
}

class SettingsText : public ::testing::Test {
 protected:
  void SetUp() override { Status_BuildTables(); }
};

}  // namespace

TEST_F(SettingsText, EveryKeyOfTheFileHasOneName) {
  const std::vector<TSettingsKey>& keys = Settings_AllKeys();
  ASSERT_EQ(60u + 60u + 5u + 5u + 10u + 3u, keys.size());
  EXPECT_EQ("resin.1.include.1", Settings_KeyName(keys[0]));
  EXPECT_EQ("resin.1.exclude.3", Settings_KeyName(keys[5]));
  EXPECT_EQ("resin.10.exclude.3", Settings_KeyName(keys[59]));
  EXPECT_EQ("po.1.peel-off.1", Settings_KeyName(keys[60]));
  EXPECT_EQ("po.10.keep.3", Settings_KeyName(keys[119]));
  EXPECT_EQ("lut.1", Settings_KeyName(keys[120]));
  EXPECT_EQ("uv.5", Settings_KeyName(keys[129]));
  EXPECT_EQ("flag.10", Settings_KeyName(keys[139]));
  EXPECT_EQ("mag-po-mode", Settings_KeyName(keys[142]));
  TSettingsKey k;
  EXPECT_FALSE(Settings_FindKey("resin.1.include.4", &k));   // the file keeps three areas
  EXPECT_FALSE(Settings_FindKey("resin.11.include.1", &k));
  EXPECT_FALSE(Settings_FindKey("Flag.1", &k));
}

TEST_F(SettingsText, TextFormRoundTripsByteForByte) {
  TBrellianSettings s = FullSettings();
  std::string text = Settings_ToText(s);
  EXPECT_NE(std::string::npos, text.find("\npo.4.peel-off.1 = \" 10px 20px 30px 40px\"\n"));
  EXPECT_NE(std::string::npos, text.find("\nplugin = \"\\\"quoted\\\" plug\\\\in\"\n"));
  EXPECT_NE(std::string::npos, text.find("\nresin.10.include.2 = 1\" 1\" 2\" 0.5\"\n"));
  EXPECT_NE(std::string::npos, text.find("\ncard-thickness = 5\nmag-po-mode = disabled\n"));
  EXPECT_NE(std::string::npos, text.find("\nresin.1.include.2 =\n"));

  TBrellianSettings back;
  std::string error;
  ASSERT_TRUE(Settings_FromText(text, &back, &error)) << error;
  EXPECT_EQ(s.SaveToBytes(), back.SaveToBytes());   // the file bytes
  EXPECT_EQ(text, Settings_ToText(back));            // the text
}

TEST_F(SettingsText, AFileReadFromBytesExportsAndImportsToTheSameBytes) {
  std::string bytes = FullSettings().SaveToBytes();
  TBrellianSettings loaded;
  loaded.LoadFromBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  TBrellianSettings back;
  std::string error;
  ASSERT_TRUE(Settings_FromText(Settings_ToText(loaded), &back, &error)) << error;
  EXPECT_EQ(bytes, back.SaveToBytes());
}

TEST_F(SettingsText, ImportClearsWhatTheTextDoesNotGiveAndAcceptsLooseSpacing) {
  TBrellianSettings s = FullSettings();
  s.modelName = "br-1060";
  s.serialNumber = "ab12";
  std::string error;
  EXPECT_FALSE(Settings_FromText("# comment\r\n\n  flag.2=9 \r\nCARD-THICKNESS = x\n", &s, &error));
  EXPECT_EQ("line 4: unknown key \"CARD-THICKNESS\"", error);
  ASSERT_TRUE(Settings_FromText("# comment\r\n\n  flag.2=9 \r\ncard-thickness = Thin\nuv.1 = a b\n", &s, &error))
      << error;
  EXPECT_EQ("br-1060", s.modelName);
  EXPECT_EQ("ab12", s.serialNumber);
  EXPECT_EQ(9, s.flags[1]);
  EXPECT_EQ(0, s.flags[0]);
  EXPECT_EQ(1, s.cardThickness);
  EXPECT_EQ(-1, s.magPOMode);
  EXPECT_EQ("a b", s.uvNames[0]);
  EXPECT_EQ("", s.resinAreas[0][0][0]);
  EXPECT_EQ("", s.plugin);
}

TEST_F(SettingsText, ImportStopsAtTheFirstBadLineWithItsNumber) {
  TBrellianSettings s;
  std::string error;
  EXPECT_FALSE(Settings_FromText("flag.1 = 1\nflag.1 40\n", &s, &error));
  EXPECT_EQ("line 2: expected \"key = value\"", error);
  EXPECT_FALSE(Settings_FromText("flag.1 = 1\n\nflag.1 = 2\n", &s, &error));
  EXPECT_EQ("line 3: \"flag.1\" is given twice (first on line 1)", error);
  EXPECT_FALSE(Settings_FromText("# x\nresin.2.exclude.3 = 1 2 3\n", &s, &error));
  EXPECT_EQ("line 2: resin.2.exclude.3: \"1 2 3\" is not an area: it needs four values (left, top, width, "
            "height), each a number with a unit px, mm, cm, in or \", e.g. \"5mm 5mm 50mm 30mm\"",
            error);
  EXPECT_FALSE(Settings_FromText("plugin = \"abc\n", &s, &error));
  EXPECT_EQ("line 1: plugin: broken quoted value", error);
  EXPECT_FALSE(Settings_FromText("plugin = \"a\\qb\"\n", &s, &error));
  EXPECT_EQ("line 1: plugin: broken quoted value", error);
}

TEST_F(SettingsText, AreasTheFilterWouldReadAsNoAreaAreRefusedNamingTheValue) {
  TBrellianSettings s;
  std::string error;
  const struct {
    const char* value;
    const char* why;
  } bad[] = {
      {"1 2 3", "is not an area"},
      {"1 2 3 4 5", "is not an area"},
      {"1 2 3 4 mmx", "is not an area"},
      {"123456789012345678901mm 1mm 1mm 1mm", "is not an area"},   // a token over 20 characters
      {"0 0 0 0", "is no area: all four values are 0 dots at 300 dpi"},
      {"0.001in 0mm 0px 0cm", "is no area: all four values are 0 dots at 300 dpi"},
  };
  for (const auto& b : bad) {
    EXPECT_FALSE(Set(&s, "po.7.keep.2", b.value, &error)) << b.value;
    EXPECT_EQ(0u, error.find(std::string("po.7.keep.2: \"") + b.value + "\" " + b.why)) << error;
    EXPECT_EQ("", s.poAreas[6][1][1]);
  }
  EXPECT_TRUE(Set(&s, "po.7.keep.2", "0 0 0 100px", &error)) << error;
  EXPECT_EQ("0 0 0 100px", s.poAreas[6][1][1]);
  EXPECT_TRUE(Set(&s, "po.7.keep.2", "", &error)) << error;   // empty clears the entry
  EXPECT_EQ("", s.poAreas[6][1][1]);
}

TEST_F(SettingsText, BadNumbersAreRefusedNamingTheValue) {
  TBrellianSettings s;
  std::string error;
  for (const char* v : {"256", "-1", "abc", "", "4 0", "0x10", "+3"}) {
    EXPECT_FALSE(Set(&s, "flag.3", v, &error)) << v;
    EXPECT_EQ(std::string("flag.3: \"") + v + "\" is not a number from 0 to 255", error);
  }
  EXPECT_EQ(0, s.flags[2]);
  EXPECT_FALSE(Set(&s, "card-thickness", "thick", &error));
  EXPECT_EQ("card-thickness: \"thick\" is not \"unset\", \"standard\", \"thin\" or a whole number", error);
  EXPECT_FALSE(Set(&s, "mag-po-mode", "99999999999", &error));
  EXPECT_EQ("mag-po-mode: \"99999999999\" is not \"unset\", \"disabled\", \"enabled\" or a whole number", error);
  EXPECT_TRUE(Set(&s, "flag.3", "255", &error));
  EXPECT_EQ(255, s.flags[2]);
  EXPECT_TRUE(Set(&s, "mag-po-mode", "-7", &error));
  EXPECT_EQ(-7, s.magPOMode);
  EXPECT_TRUE(Set(&s, "card-thickness", "Standard", &error));
  EXPECT_EQ(0, s.cardThickness);
}

TEST_F(SettingsText, NamesMustBePlainFileNames) {
  TBrellianSettings s;
  std::string error;
  EXPECT_FALSE(Set(&s, "uv.2", "../x", &error));
  EXPECT_EQ("uv.2: \"../x\" is not a plain file name (no \"/\", no leading \".\", no control characters, at most "
            "255 bytes)",
            error);
  EXPECT_FALSE(Set(&s, "lut.1", "warm.csv", &error));
  EXPECT_EQ("lut.1: \"warm.csv\" ends in \".csv\": give the table's name without it (the filter adds \".csv\")",
            error);
  EXPECT_FALSE(Set(&s, "plugin", std::string(128, 'p'), &error));
  EXPECT_TRUE(Set(&s, "plugin", std::string(127, 'p'), &error));
  EXPECT_TRUE(Set(&s, "lut.1", "warm", &error));
  EXPECT_EQ("warm", s.lutNames[0]);
}

TEST_F(SettingsText, ShowListsOnlyTheValuesThatAreSet) {
  EXPECT_EQ("(no presets set)\n", Settings_ShowText(TBrellianSettings()));
  TBrellianSettings s;
  s.resinAreas[1][1][0] = "1mm 1mm 2mm 2mm";
  s.flags[0] = 3;
  s.magPOMode = 1;
  EXPECT_EQ("resin.2.exclude.1 = 1mm 1mm 2mm 2mm\nflag.1 = 3\nmag-po-mode = enabled\n", Settings_ShowText(s));
}

TEST_F(SettingsText, QuotedValuesEscapeControlCharacters) {
  EXPECT_EQ("abc", Settings_QuoteValue("abc"));
  EXPECT_EQ("a\"b", Settings_QuoteValue("a\"b"));
  EXPECT_EQ("\"\\x09a\\x7F\"", Settings_QuoteValue("\ta\x7F"));
  std::string v;
  ASSERT_TRUE(Settings_UnquoteValue("\"\\x09a\\x7f\\\\\"", &v));
  EXPECT_EQ("\ta\x7F\\", v);
}
