// Device identification strings: values, make and model, serial and URI.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "status/device_id.h"

namespace {

// The four results of DeviceId_Parse, copied and freed.
struct TParsed {
  std::string uri, makeModel, model, serial;
};

std::string Take(char* s) {
  EXPECT_NE(nullptr, s);
  std::string out = s ? s : "<null>";
  free(s);
  return out;
}

TParsed Parse(const std::string& id) {
  char *uri = nullptr, *makeModel = nullptr, *model = nullptr, *serial = nullptr;
  EXPECT_EQ(0, DeviceId_Parse(id.c_str(), &uri, &makeModel, &model, &serial));
  TParsed p;
  p.uri = Take(uri);
  p.makeModel = Take(makeModel);
  p.model = Take(model);
  p.serial = Take(serial);
  return p;
}

std::string Value(const char* key, const char* id) {
  char* v = DeviceId_GetValue(key, id);
  if (!v) return "<null>";
  std::string out = v;
  free(v);
  return out;
}

}  // namespace

TEST(DeviceIdValue, ValueRunsToTheNextSemicolonOrTheEnd) {
  EXPECT_EQ("Maker", Value("MFG:", "MFG:Maker;MDL:X1;"));
  EXPECT_EQ("X1", Value("MDL:", "MFG:Maker;MDL:X1"));
  EXPECT_EQ("", Value("MDL:", "MDL:;MFG:Maker;"));
  EXPECT_EQ("<null>", Value("SERN:", "MFG:Maker;MDL:X1;"));
  EXPECT_EQ("first", Value("MFG:", "MFG:first;MFG:second;"));
  EXPECT_EQ("<null>", Value("MFG:", nullptr));
  EXPECT_EQ("<null>", Value(nullptr, "MFG:Maker;"));
  EXPECT_EQ("<null>", Value("", "MFG:Maker;"));
}

TEST(DeviceIdParse, MakerModelAndSerial) {
  TParsed p = Parse("MFG:Maker;MDL:X1;SERN:123;");
  EXPECT_EQ("usbbr://Maker/X1?serial=123", p.uri);
  EXPECT_EQ("Maker X1", p.makeModel);
  EXPECT_EQ("X1", p.model);
  EXPECT_EQ("123", p.serial);
}

TEST(DeviceIdParse, WithoutSerialTheUriHasNoQuery) {
  TParsed p = Parse("MFG:Maker;MDL:X1;");
  EXPECT_EQ("usbbr://Maker/X1", p.uri);
  EXPECT_EQ("", p.serial);
}

TEST(DeviceIdParse, DescriptionIsTheMakeAndModel) {
  TParsed p = Parse("MFG:Maker;MDL:X1;DESC:Maker Card Printer X1;SERN:9;");
  EXPECT_EQ("Maker Card Printer X1", p.makeModel);
  EXPECT_EQ("X1", p.model);
  EXPECT_EQ("usbbr://Maker/X1?serial=9", p.uri);
  TParsed q = Parse("DESC:Only a description;");
  EXPECT_EQ("Only a description", q.makeModel);
  EXPECT_EQ("", q.model);
}

TEST(DeviceIdParse, KeyInsideAnotherValueIsFound) {
  TParsed p = Parse("MFG:Maker;CMD:MDL:Z9;SERN:5;");
  EXPECT_EQ("Z9", p.model);
  EXPECT_EQ("Maker Z9", p.makeModel);
  EXPECT_EQ("usbbr://Maker/Z9?serial=5", p.uri);
}

TEST(DeviceIdParse, MissingMakerOrModelIsEmptyInTheUri) {
  TParsed noMaker = Parse("MDL:X1;SERN:7;");
  EXPECT_EQ("usbbr:///X1?serial=7", noMaker.uri);
  EXPECT_EQ("X1", noMaker.makeModel);
  EXPECT_EQ("X1", noMaker.model);
  TParsed noModel = Parse("MFG:Maker;");
  EXPECT_EQ("usbbr://Maker/", noModel.uri);
  EXPECT_EQ("Maker", noModel.makeModel);
  EXPECT_EQ("", noModel.model);
  TParsed nothing = Parse("");
  EXPECT_EQ("usbbr:///", nothing.uri);
  EXPECT_EQ("", nothing.makeModel);
  EXPECT_EQ("", nothing.model);
  EXPECT_EQ("", nothing.serial);
}

TEST(DeviceIdParse, LongUriIsCutToTheWorkBuffer) {
  std::string mfg(600, 'M'), mdl(600, 'D');
  TParsed p = Parse("MFG:" + mfg + ";MDL:" + mdl + ";SERN:1;");
  ASSERT_EQ(1023u, p.uri.size());
  EXPECT_EQ("usbbr://" + mfg + "/" + mdl.substr(0, 1023 - 8 - 600 - 1), p.uri);
  std::string sern(2000, '5');
  TParsed q = Parse("MFG:M;MDL:D;SERN:" + sern + ";");
  ASSERT_EQ(1023u, q.uri.size());
  EXPECT_EQ("usbbr://M/D?serial=" + sern.substr(0, 1023 - 19), q.uri);
  EXPECT_EQ(sern, q.serial);  // the serial itself is not cut
}

TEST(DeviceIdParse, NullOutPointersAreNotWanted) {
  EXPECT_EQ(0, DeviceId_Parse("MFG:Maker;MDL:X1;SERN:1;", nullptr, nullptr, nullptr, nullptr));
  char* model = nullptr;
  EXPECT_EQ(0, DeviceId_Parse("MFG:Maker;MDL:X1;DESC:d;", nullptr, nullptr, &model, nullptr));
  EXPECT_EQ("X1", Take(model));
  char* uri = nullptr;
  EXPECT_EQ(0, DeviceId_Parse("MFG:Maker;MDL:X1;", &uri, nullptr, nullptr, nullptr));
  EXPECT_EQ("usbbr://Maker/X1", Take(uri));
}
