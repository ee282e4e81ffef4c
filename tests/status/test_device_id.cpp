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

namespace {

// Device IDs and the four results of DeviceId_Parse for each.
struct TParseCase {
  const char* what;
  const char* id;
  const char* uri;
  const char* makeModel;
  const char* model;
  const char* serial;
};

const TParseCase kParseCases[] = {
    {"maker, model and serial", "MFG:Maker;MDL:X1;SERN:123;", "usbbr://Maker/X1?serial=123", "Maker X1", "X1", "123"},
    {"without a serial the URI has no query", "MFG:Maker;MDL:X1;", "usbbr://Maker/X1", "Maker X1", "X1", ""},
    {"the description is the make and model", "MFG:Maker;MDL:X1;DESC:Maker Card Printer X1;SERN:9;",
     "usbbr://Maker/X1?serial=9", "Maker Card Printer X1", "X1", "9"},
    {"a description alone", "DESC:Only a description;", "usbbr:///", "Only a description", "", ""},
    {"a key inside another value is found", "MFG:Maker;CMD:MDL:Z9;SERN:5;", "usbbr://Maker/Z9?serial=5", "Maker Z9",
     "Z9", "5"},
    {"no maker: empty in the URI", "MDL:X1;SERN:7;", "usbbr:///X1?serial=7", "X1", "X1", "7"},
    {"no model: empty in the URI", "MFG:Maker;", "usbbr://Maker/", "Maker", "", ""},
    {"nothing", "", "usbbr:///", "", "", ""},
};

}  // namespace

TEST(DeviceIdParse, UriMakeAndModelModelAndSerialOfEachId) {
  for (const TParseCase& c : kParseCases) {
    SCOPED_TRACE(std::string(c.what) + ": \"" + c.id + "\"");
    TParsed p = Parse(c.id);
    EXPECT_EQ(c.uri, p.uri);
    EXPECT_EQ(c.makeModel, p.makeModel);
    EXPECT_EQ(c.model, p.model);
    EXPECT_EQ(c.serial, p.serial);
  }
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
