// Unit tests of the application's own sub-commands: document formats, job options, the option list.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cups/cups.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "app/cli_commands.h"
#include "app/cli_options.h"

namespace {

// 'WriteTemp()' - A temporary file holding bytes; its path.
std::string WriteTemp(const std::string& bytes, const char* suffix) {
  std::string path = std::string(testing::TempDir()) + "/cli-" + std::to_string(getpid()) + suffix;
  FILE* f = fopen(path.c_str(), "wb");
  fwrite(bytes.data(), 1, bytes.size(), f);
  fclose(f);
  return path;
}

TEST(CliDocumentFormat, ComesFromTheFirstBytesThenTheExtension) {
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("RaS2PwgRaster", ".bin").c_str()), "image/pwg-raster");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("UNIRAST\0", ".x").c_str()), "image/urf");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("\xff\xd8\xff\xe0", ".png").c_str()), "image/jpeg");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp(std::string("\x89PNG\r\n\x1a\n", 8), ".jpg").c_str()), "image/png");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("%PDF-1.7", ".ps").c_str()), "application/pdf");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("%!PS-Adobe", "").c_str()), "application/postscript");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp(std::string("\x01\x00\x00\x00", 4), ".brj").c_str()),
               "application/vnd.brellian-job");
  EXPECT_STREQ(Cli_DocumentFormat(WriteTemp("plain", ".txt").c_str()), "application/octet-stream");
}

TEST(CliJobOptions, CardOptionsTakeTheSyntaxOfTheirAttribute) {
  cups_option_t* options = nullptr;
  int n = cupsParseOptions("brellian-front-ribbon=monochrome brellian-laminate=yes "
                           "brellian-plugin='My plugin' sides=two-sided-long-edge",
                           0, &options);
  ipp_t* request = ippNewRequest(IPP_OP_PRINT_JOB);
  Cli_AddJobOptions(request, n, options);
  ipp_attribute_t* a = ippFindAttribute(request, "brellian-front-ribbon", IPP_TAG_KEYWORD);
  ASSERT_NE(a, nullptr);
  EXPECT_STREQ(ippGetString(a, 0, nullptr), "monochrome");
  a = ippFindAttribute(request, "brellian-laminate", IPP_TAG_BOOLEAN);
  ASSERT_NE(a, nullptr);
  EXPECT_TRUE(ippGetBoolean(a, 0));
  a = ippFindAttribute(request, "brellian-plugin", IPP_TAG_TEXT);
  ASSERT_NE(a, nullptr);
  EXPECT_STREQ(ippGetString(a, 0, nullptr), "My plugin");
  EXPECT_NE(ippFindAttribute(request, "sides", IPP_TAG_KEYWORD), nullptr);
  ippDelete(request);
  cupsFreeOptions(n, options);
}

TEST(CliPrintOptions, ListsTheCardOptionsWithTheirDefaults) {
  ipp_t* attrs = ippNew();
  ippAddRange(attrs, IPP_TAG_PRINTER, "copies-supported", 1, 999);
  static const char* const ribbons[] = {"color", "monochrome"};
  ippAddStrings(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "brellian-front-ribbon-supported", 2, nullptr, ribbons);
  ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "brellian-front-ribbon-default", nullptr, "monochrome");
  ippAddBoolean(attrs, IPP_TAG_PRINTER, "brellian-laminate-supported", 1);
  ippAddBoolean(attrs, IPP_TAG_PRINTER, "brellian-laminate-default", 0);
  ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_TEXT, "brellian-plugin-default", nullptr, "");
  char* text = nullptr;
  size_t size = 0;
  FILE* out = open_memstream(&text, &size);
  Cli_PrintOptions(attrs, out);
  fclose(out);
  std::string s(text, size);
  free(text);
  ippDelete(attrs);
  EXPECT_NE(s.find("  -n COPIES (1 to 999)\n"), std::string::npos) << s;
  EXPECT_NE(s.find("Card options:\n  -o brellian-front-ribbon=color\n  -o brellian-front-ribbon=monochrome (default)\n"),
            std::string::npos) << s;
  EXPECT_NE(s.find("  -o brellian-laminate=true|false (default: false)\n"), std::string::npos) << s;
  EXPECT_NE(s.find("  -o brellian-plugin='TEXT' (default: '')\n"), std::string::npos) << s;
  EXPECT_EQ(s.find("brellian-back-ribbon"), std::string::npos) << "only what the printer offers";
}

TEST(CliHandles, OnlyTheThreeSubCommandsPapplGetsWrong) {
  EXPECT_TRUE(Cli_Handles("delete"));
  EXPECT_TRUE(Cli_Handles("submit"));
  EXPECT_TRUE(Cli_Handles("options"));
  EXPECT_FALSE(Cli_Handles("add"));
  EXPECT_FALSE(Cli_Handles("server"));
  EXPECT_FALSE(Cli_Handles(nullptr));
}

}  // namespace
