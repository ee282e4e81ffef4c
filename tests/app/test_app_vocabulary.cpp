// The application speaks the filter's vocabulary: every value of every card
// attribute, as the application writes it into the filter's options, read
// by the filter's own option reader; and the slot plan of the attributes.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cups/ppd.h>
#include <pappl/pappl.h>

#include <unistd.h>

#include <map>
#include <string>

#include "app/accessories.h"
#include "app/job_options.h"
#include "app/models.h"
#include "app/vendor_table.h"
#include "options/choice_tables.h"
#include "options/lut_format.h"
#include "options/mag.h"
#include "options/read_context.h"
#include "support/process.h"
#include "support/read_options_harness.h"

namespace {

// The field of the job option record that each keyword fills.
const std::map<std::string, int32_t TPrintingTask::*>& Fields() {
  static const std::map<std::string, int32_t TPrintingTask::*> fields = {
      {"frontRibbon", &TPrintingTask::frontRibbon},        {"backRibbon", &TPrintingTask::backRibbon},
      {"frontResin", &TPrintingTask::frontResin},          {"backResin", &TPrintingTask::backResin},
      {"frontUV", &TPrintingTask::frontUV},                {"backUV", &TPrintingTask::backUV},
      {"frontUVMAC", &TPrintingTask::frontUVMAC},          {"backUVMAC", &TPrintingTask::backUVMAC},
      {"frontPO", &TPrintingTask::frontPO},                {"backPO", &TPrintingTask::backPO},
      {"frontLUTTable", &TPrintingTask::frontLUTTable},    {"backLUTTable", &TPrintingTask::backLUTTable},
      {"frontSecureErase", &TPrintingTask::frontSecureErase}, {"backSecureErase", &TPrintingTask::backSecureErase},
      {"frontRotation", &TPrintingTask::frontRotation},    {"backRotation", &TPrintingTask::backRotation},
      {"frontBlackMode", &TPrintingTask::frontBlackMode},  {"backBlackMode", &TPrintingTask::backBlackMode},
      {"cardThickness", &TPrintingTask::cardThickness},    {"magPOMode", &TPrintingTask::magPOMode},
      {"cardLaminate", &TPrintingTask::cardLaminate},      {"entryCardFlip", &TPrintingTask::entryCardFlip},
      {"cardEjectExisting", &TPrintingTask::cardEjectExisting},
      {"magEncodeCardFlip", &TPrintingTask::magEncodeCardFlip},
  };
  return fields;
}

class AppVocabulary : public ReadOptionsTest {
 protected:
  // Every UV preset and colour table named in the printer's settings and
  // present, so that the filter keeps each preset a job chooses.
  void SetUp() override {
    ReadOptionsTest::SetUp();
    std::string uvDir = std::string(BRELLIAN_CONF_DIR) + "/uv";
    Test_MakeDirs(uvDir);
    Test_MakeDirs(BRELLIAN_LUT_DIR);
    uint8_t identity[3][LUT_ENTRIES];
    Lut_MakeIdentity(identity);
    TBrellianSettings s;
    for (int i = 0; i < SETTINGS_NAMES; ++i) {
      s.uvNames[i] = "vocabulary-" + std::to_string(i) + ".uv";
      Test_WriteFile(uvDir + "/" + s.uvNames[i], "uv");
      s.lutNames[i] = "vocabulary-" + std::to_string(i);
      Test_WriteFile(std::string(BRELLIAN_LUT_DIR) + "/" + s.lutNames[i] + ".csv", Lut_Format(identity, "identity"));
    }
    SaveSettings(s, "VOCABULARY");
    UseSerial("VOCABULARY");
  }

  // The presets made above go with the test: the sysroot is shared by
  // every test of the build.
  void TearDown() override {
    for (int i = 0; i < SETTINGS_NAMES; ++i) {
      unlink((std::string(BRELLIAN_CONF_DIR) + "/uv/vocabulary-" + std::to_string(i) + ".uv").c_str());
      unlink((std::string(BRELLIAN_LUT_DIR) + "/vocabulary-" + std::to_string(i) + ".csv").c_str());
    }
    ReadOptionsTest::TearDown();
  }

  // 'FilterCode()' - The field value the filter reads from the options
  // string the application writes for attribute a set to value, on a
  // 1060 with every accessory and the ribbon the value needs.
  int32_t FilterCode(const TVendorAttr& a, const std::string& value, const std::string& ribbon) {
    TAccessories acc;
    acc.ribbonType = ribbon;
    acc.flipTurn = acc.laminator = acc.magEncoder = true;
    TCardValues values = {{a.name, value}};
    Run(JobOpt_FilterOptions(acc, values).c_str());
    return task_->*Fields().at(a.ppdKeyword);
  }
};

// 'RibbonFor()' - A ribbon that allows a value.
std::string RibbonFor(TRibbonNeed need) {
  return need == RIBBON_UV ? "YMCK-UV" : need == RIBBON_PO ? "YMCK-PO" : "YMCK";
}

}  // namespace

TEST_F(AppVocabulary, EveryValueOfEveryCardAttributeGivesTheFiltersCode) {
  UsePPD(GeneratedPPD(1060));
  int checked = 0;
  for (const TVendorAttr& a : Vendor_Table()) {
    if (a.kind != VENDOR_KEYWORD && a.kind != VENDOR_BOOLEAN) continue;
    if (a.ppdKeyword.compare(0, 15, "magEncodeFormat") == 0) continue;  // the next test
    SCOPED_TRACE(a.name);
    ASSERT_EQ(1u, Fields().count(a.ppdKeyword)) << "no field for " << a.ppdKeyword;
    const TChoiceKeyword* entry = Opt_ChoiceKeyword(a.ppdKeyword.c_str());
    ASSERT_NE(nullptr, entry) << a.ppdKeyword << " is not read as a code";
    std::vector<TVendorChoice> choices = a.choices;
    if (a.kind == VENDOR_BOOLEAN) choices = {{"true", "Yes", ""}, {"false", "No", ""}};
    for (const TVendorChoice& c : choices) {
      SCOPED_TRACE(c.keyword);
      int32_t got = FilterCode(a, c.keyword, RibbonFor(c.ribbon));
      // The PPD holds the choice: the reader traces it as marked.
      EXPECT_TRUE(Logged("  " + a.ppdKeyword + "::[" + c.ppdChoice + "]"));
      if (a.ppdKeyword == "cardThickness" || a.ppdKeyword == "magPOMode") {
        // "printer-setting" leaves the value to the settings file: the
        // same as a job that names no choice.
        if (c.keyword == "printer-setting") {
          Run("");
          EXPECT_EQ(task_->*Fields().at(a.ppdKeyword), got);
          ++checked;
          continue;
        }
      }
      EXPECT_EQ(Opt_Lookup(entry->choices, entry->count, c.ppdChoice, entry->fallback), got);
      ++checked;
    }
  }
  EXPECT_GT(checked, 60);
}

TEST_F(AppVocabulary, EveryTrackFormatIsOneTheFilterEncodesOnThatTrack) {
  int checked = 0;
  for (int32_t track = 1; track <= 3; ++track) {
    const TVendorAttr* a = Vendor_Find("brellian-mag-track-" + std::to_string(track) + "-format");
    ASSERT_NE(nullptr, a);
    EXPECT_EQ("magEncodeFormat" + std::to_string(track), a->ppdKeyword);
    for (const TVendorChoice& c : a->choices) {
      if (c.keyword == "none") continue;
      TMagTrack record{};
      Mag_EncodeTrack(track, c.ppdChoice.c_str(), "1", &record);
      EXPECT_NE(MAG_STATUS_FORMAT, record.format) << c.ppdChoice << " on track " << track;
      ++checked;
    }
  }
  EXPECT_EQ(7, checked);
}

TEST(AppSlotPlan, TheAttributesWithASlotFitPapplsSlotsWithRoomToSpare) {
  EXPECT_EQ(PAPPL_MAX_VENDOR, APP_VENDOR_SLOTS);
  // Room for one more option on each side even if it took slots of its own
  // (a new per-side option joins the carriers and takes none).
  EXPECT_LE(Vendor_SlotsUsed() + 2, APP_VENDOR_SLOTS);
  for (const TVendorAttr& a : Vendor_Table()) {
    if (a.carrier.empty()) continue;
    SCOPED_TRACE(a.name);
    const TVendorAttr* carrier = Vendor_Find(a.carrier);
    ASSERT_NE(nullptr, carrier);
    EXPECT_EQ(VENDOR_CARRIER, carrier->kind);
    EXPECT_TRUE(carrier->carrier.empty());
    EXPECT_EQ(a.side, carrier->side);
    EXPECT_EQ(a.name, std::string(a.side == 0 ? "brellian-front-" : "brellian-back-") + a.carrierKey);
  }
}

TEST(AppSlotPlan, ACarriedOptionReachesTheFilterAndABadItemIsRefused) {
  int32_t count = 0;
  const TAppModel* models = App_Models(&count);
  const TAppModel* model = App_FindModel("brellian_1060");
  ASSERT_NE(nullptr, model);
  TAccessories acc = Acc_Defaults(*model, "usb://x");
  cups_option_t* vendor = nullptr;
  int n = cupsAddOption("brellian-back-options", "secure-erase=true, uv-mark-corner=lower-left;shine=1", 0, &vendor);
  std::string refused;
  TCardValues values = JobOpt_Collect(*model, acc, n, vendor, nullptr, &refused);
  cupsFreeOptions(n, vendor);
  EXPECT_EQ("true", values["brellian-back-secure-erase"]);
  EXPECT_EQ("false", values["brellian-front-secure-erase"]);
  EXPECT_EQ("lower-left", values["brellian-back-uv-mark-corner"]);
  EXPECT_EQ("brellian-back-options:shine", refused);
  std::string options = JobOpt_FilterOptions(acc, values);
  EXPECT_NE(std::string::npos, options.find(" backSecureErase=Yes"));
  EXPECT_NE(std::string::npos, options.find(" backUVMAC=LowerLeft"));
  EXPECT_NE(std::string::npos, options.find(" frontSecureErase=No"));
  EXPECT_EQ(std::string::npos, options.find("options")) << options;
  (void)models;
}

// The PPD interface of libcups is deprecated but is what the spooler uses
// for these files.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
TEST(AppVocabularyRibbons, TheDeviceSettingsRibbonsAreThePpdsChoicesWithTheirNames) {
  for (int model : {1030, 1060}) {
    SCOPED_TRACE(model);
    ppd_file_t* ppd = ppdOpenFile(Test_GeneratedPPD(model).c_str());
    ASSERT_NE(nullptr, ppd);
    ppd_option_t* option = ppdFindOption(ppd, "ribbonType");
    ASSERT_NE(nullptr, option);
    ASSERT_EQ(static_cast<int>(sizeof(g_ribbonTypes) / sizeof(g_ribbonTypes[0])), option->num_choices);
    for (int i = 0; i < option->num_choices; ++i) {
      EXPECT_STREQ(option->choices[i].choice, g_ribbonTypes[i]);
      EXPECT_STREQ(option->choices[i].text, g_ribbonLabels[i]);
    }
    ppdClose(ppd);
  }
}
#pragma GCC diagnostic pop
