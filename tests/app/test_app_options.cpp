// Unit tests of the printer application's card attributes, accessories and filter options.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cups/cups.h>

#include <set>

#include "app/accessories.h"
#include "app/pappl_driver.h"
#include "app/job_options.h"
#include "app/models.h"
#include "app/vendor_table.h"

namespace {

const TAppModel& Model(uint32_t id) {
  int32_t n = 0;
  const TAppModel* m = App_Models(&n);
  for (int32_t i = 0; i < n; ++i)
    if (m[i].id == id) return m[i];
  return m[0];
}

TEST(AppVendorTable, FitsPapplsSlotsWithValidNamesAndDefaults) {
  const auto& t = Vendor_Table();
  // 33 attributes, 29 of them with a slot of their own (the slot plan).
  EXPECT_EQ(t.size(), 33u);
  EXPECT_EQ(Vendor_SlotsUsed(), 29);
  EXPECT_LE(Vendor_SlotsUsed(), PAPPL_MAX_VENDOR);
  std::set<std::string> names;
  for (const TVendorAttr& a : t) {
    EXPECT_TRUE(names.insert(a.name).second) << a.name;
    for (char c : a.name) EXPECT_TRUE(isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_') << a.name;
    if (a.kind == VENDOR_KEYWORD) {
      EXPECT_NE(Vendor_FindChoice(a, a.defaultValue), nullptr) << a.name;
    }
  }
  std::string strings = Vendor_StringsText();
  for (const TVendorAttr& a : t) {
    EXPECT_NE(strings.find("\"" + a.name + "\" = "), std::string::npos) << a.name;
    for (const TVendorChoice& c : a.choices)
      EXPECT_NE(strings.find("\"" + a.name + "." + c.keyword + "\" = "), std::string::npos) << c.keyword;
  }
}

TEST(AppAccessories, SerialFromTheDeviceUri) {
  EXPECT_EQ(Acc_SerialFromUri("usb://Brellian/BR-1060?serial=A1B2"), "A1B2");
  EXPECT_EQ(Acc_SerialFromUri("usb://Brellian/BR-1060?interface=0&serial=Z9"), "Z9");
  EXPECT_EQ(Acc_SerialFromUri("socket://192.0.2.1"), "");
  EXPECT_EQ(Acc_SerialFromUri("usb://x?serial=../etc"), "");
  EXPECT_EQ(Acc_SerialFromUri(nullptr), "");
}

TEST(AppAccessories, TextFormRoundTrip) {
  TAccessories a;
  a.ribbonType = "YMCK-UV";
  a.laminator = true;
  a.magEncoder = true;
  a.serial = "AB-12";
  TAccessories b;
  Acc_Parse(Acc_Format(a), &b);
  EXPECT_EQ(Acc_Format(b), Acc_Format(a));
  Acc_Parse("ribbon-type=Purple\nserial=a/b\n", &b);
  EXPECT_EQ(b.ribbonType, "YMCK-UV");
  EXPECT_EQ(b.serial, "");
}

TEST(AppModels, DeviceIdNamesTheModel) {
  const TAppModel* m = App_ModelFromDeviceId("MFG:Brellian;MDL:BR-1035;SERN:77;");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->id, 1035u);
  EXPECT_EQ(App_ModelFromDeviceId("MFG:Other;MDL:BR-1035;"), nullptr);
  EXPECT_EQ(App_ModelFromDeviceId("MFG:Brellian;MDL:X9;"), nullptr);
  EXPECT_EQ(App_ModelFromDeviceId(""), nullptr);
}

TEST(AppDriver, AccessoriesNarrowTheChoices) {
  TAccessories ymck;
  ymck.flipTurn = true;
  EXPECT_FALSE(Driver_Offered(Model(1060), ymck, "brellian-front-uv", "page"));
  EXPECT_TRUE(Driver_Offered(Model(1060), ymck, "brellian-front-uv", "none"));
  EXPECT_FALSE(Driver_Offered(Model(1060), ymck, "brellian-back-overlay", "preset-2"));
  TAccessories uv = ymck;
  uv.ribbonType = "YMCK-UV";
  EXPECT_TRUE(Driver_Offered(Model(1060), uv, "brellian-front-uv", "preset-3"));
  TAccessories black = ymck;
  black.ribbonType = "Black";
  EXPECT_FALSE(Driver_Offered(Model(1060), black, "brellian-front-ribbon", "color"));
  EXPECT_TRUE(Driver_Offered(Model(1060), black, "brellian-front-ribbon", "monochrome"));
  EXPECT_TRUE(Driver_Offered(Model(1060), ymck, "brellian-back-ribbon", ""));
  EXPECT_FALSE(Driver_Offered(Model(1030), ymck, "brellian-back-ribbon", ""));
  TAccessories noFlip;
  EXPECT_FALSE(Driver_Offered(Model(1060), noFlip, "brellian-back-ribbon", ""));
  EXPECT_FALSE(Driver_Offered(Model(1060), ymck, "brellian-mag-track-1-data", ""));
  EXPECT_FALSE(Driver_Offered(Model(1060), ymck, "brellian-laminate", ""));
  EXPECT_FALSE(Driver_Offered(Model(1060), ymck, "no-such-attribute", ""));
}

TEST(AppJobOptions, CustomAreasText) {
  std::map<std::string, std::string> out;
  std::string error;
  ASSERT_TRUE(JobOpt_ParseAreas("resin=1mm 1mm 5mm 5mm; 2mm 2mm 3mm 3mm |overlay-keep=0in 0in 1in 1in", 1, &out, &error));
  EXPECT_EQ(out.size(), 3u);
  EXPECT_EQ(out["backResinInclude1"], "1mm 1mm 5mm 5mm");
  EXPECT_EQ(out["backResinInclude2"], "2mm 2mm 3mm 3mm");
  EXPECT_EQ(out["backNonPeelOff1"], "0in 0in 1in 1in");
  out.clear();
  EXPECT_FALSE(JobOpt_ParseAreas("stripes=1mm 1mm 1mm 1mm", 0, &out, &error));
  EXPECT_NE(error.find("stripes"), std::string::npos);
  EXPECT_FALSE(JobOpt_ParseAreas("resin=1px 1px 1px 1px;2px 2px 2px 2px;3px 3px 3px 3px;4px 4px 4px 4px;"
                                 "5px 5px 5px 5px;6px 6px 6px 6px",
                                 0, &out, &error));
  out.clear();
  EXPECT_TRUE(JobOpt_ParseAreas("", 0, &out, &error));
  EXPECT_TRUE(out.empty());
}

TEST(AppJobOptions, PagesOfOneSideAsTheFilterReadsThem) {
  TCardValues v;
  EXPECT_EQ(JobOpt_PagesPerSide(v, 0), 1);
  v["brellian-front-ribbon"] = "color-k";
  v["brellian-front-resin"] = "card";
  EXPECT_EQ(JobOpt_PagesPerSide(v, 0), 1);
  v["brellian-front-resin"] = "page";
  EXPECT_EQ(JobOpt_PagesPerSide(v, 0), 2);
  v["brellian-front-resin"] = "preset-1";
  EXPECT_EQ(JobOpt_PagesPerSide(v, 0), 1);
  v["brellian-front-uv"] = "page";
  v["brellian-front-overlay"] = "page";
  EXPECT_EQ(JobOpt_PagesPerSide(v, 0), 3);
  v["brellian-back-overlay"] = "preset-2";
  EXPECT_EQ(JobOpt_PagesPerSide(v, 1), 1);
}

TEST(AppJobOptions, OptionsStringParsesBackToTheValues) {
  TAccessories acc;
  acc.ribbonType = "YMCK-PO";
  TCardValues v;
  v["brellian-front-ribbon"] = "grayscale";
  v["brellian-front-rotate"] = "true";
  v["brellian-plugin"] = "odd \"name\" with \\ and 'quotes'";
  v["brellian-front-custom-areas"] = "no-resin=1mm 2mm 3mm 4mm";
  std::string s = JobOpt_FilterOptions(acc, v);
  cups_option_t* opts = nullptr;
  int n = cupsParseOptions(s.c_str(), 0, &opts);
  EXPECT_STREQ(cupsGetOption("ribbonType", n, opts), "YMCK-PO");
  EXPECT_STREQ(cupsGetOption("frontRibbon", n, opts), "Grayscale");
  EXPECT_STREQ(cupsGetOption("frontRotation", n, opts), "Yes");
  EXPECT_STREQ(cupsGetOption("printerPlugin", n, opts), "Custom.odd \"name\" with \\ and 'quotes'");
  EXPECT_STREQ(cupsGetOption("frontResinExclude1", n, opts), "Custom.1mm 2mm 3mm 4mm");
  EXPECT_EQ(cupsGetOption("frontUV", n, opts), nullptr);
  // The black rendering the shipped PPDs default to, for both sides.
  EXPECT_STREQ(cupsGetOption("frontBlackMode", n, opts), "SolidBlack");
  EXPECT_STREQ(cupsGetOption("backBlackMode", n, opts), "SolidBlack");
  cupsFreeOptions(n, opts);
}

TEST(AppJobOptions, JobValueOrPrinterDefaultOrTableDefault) {
  TAccessories acc;
  acc.flipTurn = true;
  ipp_t* attrs = ippNew();
  ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, "brellian-front-ribbon-default", nullptr, "grayscale");
  ippAddBoolean(attrs, IPP_TAG_PRINTER, "brellian-eject-existing-default", 0);
  cups_option_t* job = nullptr;
  int n = cupsAddOption("brellian-back-ribbon", "monochrome", 0, &job);
  n = cupsAddOption("brellian-front-uv", "page", n, &job);
  std::string refused;
  TCardValues v = JobOpt_Collect(Model(1060), acc, n, job, attrs, &refused);
  EXPECT_EQ(v["brellian-front-ribbon"], "grayscale");
  EXPECT_EQ(v["brellian-back-ribbon"], "monochrome");
  EXPECT_EQ(v["brellian-eject-existing"], "false");
  EXPECT_EQ(v["brellian-front-uv"], "none");
  // Colour + resin black takes its resin from the card's own pure black.
  EXPECT_EQ(v["brellian-front-resin"], "card");
  EXPECT_EQ(v["brellian-back-resin"], "card");
  EXPECT_EQ(refused, "brellian-front-uv=page");
  EXPECT_EQ(v.count("brellian-laminate"), 0u);
  cupsFreeOptions(n, job);
  ippDelete(attrs);
}

}  // namespace
