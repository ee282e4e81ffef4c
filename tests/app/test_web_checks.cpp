// Unit tests of the web pages' checks: loopback names, strict numbers, preset names, multipart bodies, areas.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>

#include "app/job_options.h"
#include "app/presets_store.h"
#include "app/web_access.h"
#include "app/web_multipart.h"

namespace {

TEST(WebAccess, HostIsLoopbackOnlyForTheLoopbackNames) {
  for (const char* host : {"localhost", "localhost:8631", "LOCALHOST.:8631", "127.0.0.1", "127.0.0.1:631", "[::1]",
                           "[::1]:8631"})
    EXPECT_TRUE(Web_HostIsLoopback(host)) << host;
  for (const char* host : {"", "cards.example.com", "cards.example.com:8631", "127.0.0.2:8631", "192.0.2.7",
                           "localhost.example.com", "[::2]:8631", "[::1", "localhostx"})
    EXPECT_FALSE(Web_HostIsLoopback(host)) << host;
}

TEST(WebAccess, NumbersAreDigitsOnlyAndInRange) {
  int v = -1;
  EXPECT_TRUE(Web_ParseNumber("1", 1, 5, &v));
  EXPECT_EQ(v, 1);
  EXPECT_TRUE(Web_ParseNumber("05", 1, 5, &v));
  EXPECT_EQ(v, 5);
  for (const char* bad : {"", "1x", " 1", "1 ", "+1", "-1", "0", "6", "1.0", "0x1", "9999999999"}) {
    v = -1;
    EXPECT_FALSE(Web_ParseNumber(bad, 1, 5, &v)) << bad;
    EXPECT_EQ(v, -1) << bad;
  }
}

TEST(PresetsStore, NamesArePlainAndAtMost128Bytes) {
  std::string error;
  EXPECT_TRUE(Presets_CheckName(std::string(128, 'a'), &error));
  EXPECT_FALSE(Presets_CheckName(std::string(129, 'a'), &error));
  EXPECT_EQ(error, "The name is 129 bytes long; at most 128 bytes are allowed.");
  EXPECT_FALSE(Presets_CheckName(std::string(300, 'a'), &error));
  for (const char* bad : {"", "../x", "a/b", ".hidden", "a\nb"}) EXPECT_FALSE(Presets_CheckName(bad, &error)) << bad;
}

// 'Body()' - A multipart body of the given parts, boundary "XB".
std::string Body(const std::string& parts) { return parts + "--XB--\r\n"; }

TEST(WebMultipart, FieldsAndFilesAreTakenApart) {
  std::string body = Body(
      "--XB\r\nContent-Disposition: form-data; name=\"session\"\r\n\r\ntoken\r\n"
      "--XB\r\nContent-Disposition: form-data; name=\"uv-file\"; filename=\"a.png\"\r\n"
      "Content-Type: image/png\r\n\r\n\x89PNG\r\n--X not the end\r\n"
      "--XB\r\nContent-Disposition: form-data; name=\"lut-file\"\r\n\r\n/etc/shadow\r\n");
  TMultipartForm form;
  ASSERT_TRUE(Web_MultipartParse(body, "multipart/form-data; boundary=XB", 100, &form));
  EXPECT_STREQ(cupsGetOption("session", form.numFields, form.fields), "token");
  ASSERT_EQ(form.files.count("uv-file"), 1u);
  EXPECT_EQ(form.files["uv-file"], "\x89PNG\r\n--X not the end");
  EXPECT_EQ(form.files.count("lut-file"), 0u) << "a text part is never a file, whatever it names";
  EXPECT_STREQ(cupsGetOption("lut-file", form.numFields, form.fields), "/etc/shadow");
  EXPECT_FALSE(form.tooLarge);
  Web_MultipartFree(&form);
}

TEST(WebMultipart, AFileOfTheLimitIsTakenOneMoreByteIsNot) {
  for (size_t size : {size_t{16}, size_t{17}}) {
    std::string body = Body("--XB\r\nContent-Disposition: form-data; name=\"f\"; filename=\"x\"\r\n\r\n" +
                            std::string(size, 'z') + "\r\n");
    TMultipartForm form;
    ASSERT_TRUE(Web_MultipartParse(body, "multipart/form-data; boundary=\"XB\"", 16, &form));
    EXPECT_EQ(form.files.count("f"), size == 16 ? 1u : 0u);
    EXPECT_EQ(form.tooLarge, size == 17);
    Web_MultipartFree(&form);
  }
}

TEST(WebMultipart, OtherBodiesAreNotMultipart) {
  TMultipartForm form;
  EXPECT_FALSE(Web_MultipartParse("a=b", "application/x-www-form-urlencoded", 16, &form));
  EXPECT_FALSE(Web_MultipartParse("--XB--\r\n", "multipart/form-data", 16, &form));
  EXPECT_EQ(form.numFields, 0);
}

TEST(AppJobOptions, SixAreasInAGroupAreRefusedWithTheReason) {
  TCardValues values;
  std::string areas = "resin=1mm 1mm 2mm 2mm";
  for (int i = 0; i < 4; ++i) areas += ";1mm 1mm 2mm 2mm";
  values["brellian-front-custom-areas"] = areas;
  std::string error;
  EXPECT_TRUE(JobOpt_CheckAreas(values, &error)) << error;
  values["brellian-back-custom-areas"] = areas + ";3mm 3mm 2mm 2mm";
  EXPECT_FALSE(JobOpt_CheckAreas(values, &error));
  EXPECT_NE(error.find("brellian-back-custom-areas"), std::string::npos) << error;
  EXPECT_NE(error.find("more than 5 areas for resin"), std::string::npos) << error;
}

}  // namespace
