// The model table: lookups, the default model, the device-ID match, the
// help-text tokens, and the driver information checked against it.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "status/model_text.h"
#include "status/models.h"

namespace {

// One model section of the driver information.
struct TDrvModel {
  std::string name;
  uint32_t number = 0;
  std::string ppd;
  std::string deviceId;
  uint32_t dpi = 0;
  bool duplex = false;
};

// 'DrvModels()' - The model sections ("{ ... }" at the top level) of
// ppd/brellian.drv, in file order.
std::vector<TDrvModel> DrvModels() {
  std::ifstream in(std::string(BRELLIAN_SOURCE_DIR) + "/ppd/brellian.drv");
  std::stringstream text;
  text << in.rdbuf();
  std::vector<TDrvModel> out;
  std::smatch m;
  std::string line;
  int depth = 0;
  while (std::getline(text, line)) {
    if (line == "{") {
      ++depth;
      out.emplace_back();
      continue;
    }
    if (line == "}") --depth;
    if (depth != 1) continue;
    TDrvModel& model = out.back();
    if (std::regex_search(line, m, std::regex("^  ModelName \"([^\"]*)\""))) model.name = m[1];
    if (std::regex_search(line, m, std::regex("^  ModelNumber ([0-9]+)"))) model.number = std::stoul(m[1]);
    if (std::regex_search(line, m, std::regex("^  PCFileName \"([^\"]*)\""))) model.ppd = m[1];
    if (std::regex_search(line, m, std::regex("^  Attribute \"1284DeviceID\" \"\" \"([^\"]*)\""))) model.deviceId = m[1];
    if (std::regex_search(line, m, std::regex("^  Resolution - 8 0 0 0 \"([0-9]+)dpi/"))) model.dpi = std::stoul(m[1]);
    if (line == "  Duplex normal") model.duplex = true;
  }
  return out;
}

}  // namespace

TEST(ModelTable, TheDriverInformationDescribesEveryModelOfTheTableAndNoOther) {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  std::vector<TDrvModel> drv = DrvModels();
  ASSERT_EQ(static_cast<size_t>(count), drv.size());
  for (int32_t i = 0; i < count; ++i) {
    SCOPED_TRACE(models[i].name);
    EXPECT_EQ(models[i].name, drv[i].name);
    EXPECT_EQ(models[i].id, drv[i].number);
    EXPECT_EQ(models[i].ppdName, drv[i].ppd);
    EXPECT_EQ(Model_DeviceId(models[i]) + "CLS:PRINTER;", drv[i].deviceId);
    EXPECT_EQ(models[i].dpi, drv[i].dpi);
    EXPECT_EQ(models[i].twoSided, drv[i].duplex);
  }
}

TEST(ModelTable, EntriesAreUniqueAndTheirPanelsAreTheWholePageAtTheirResolution) {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  std::set<std::string> names, ppds, drivers;
  std::set<uint32_t> ids;
  for (int32_t i = 0; i < count; ++i) {
    const TModelInfo& m = models[i];
    EXPECT_TRUE(ids.insert(m.id).second) << m.id;
    EXPECT_TRUE(names.insert(m.name).second) << m.name;
    EXPECT_TRUE(ppds.insert(m.ppdName).second) << m.ppdName;
    EXPECT_TRUE(drivers.insert(m.driverName).second) << m.driverName;
    // Display names become part of settings file names.
    EXPECT_EQ(std::string::npos, std::string(m.name).find_first_of(" /")) << m.name;
    // Every model prints the same page sizes (248.64 x 159.36 points).
    EXPECT_EQ(m.panelWidth, (24864u * m.dpi + 3600u) / 7200u) << m.name;
    EXPECT_EQ(m.panelHeight, (15936u * m.dpi + 3600u) / 7200u) << m.name;
  }
}

TEST(ModelTable, LookupsByNumberNameAndDefaultName) {
  const TModelInfo* m = Model_Find(1035);
  ASSERT_NE(nullptr, m);
  EXPECT_STREQ("BR-1035", m->name);
  EXPECT_EQ(m, Model_FindName("br-1035"));
  EXPECT_EQ(nullptr, Model_Find(1040));
  EXPECT_EQ(nullptr, Model_FindName("BR-10"));
  EXPECT_EQ(nullptr, Model_FindName(nullptr));
  EXPECT_STREQ(MODEL_DEFAULT_NAME, Model_Default().name);
  EXPECT_EQ(1060u, Model_Default().id);
}

TEST(ModelTable, ADeviceIdMatchesByMakerAndDisplayNameOnly) {
  EXPECT_EQ(Model_Find(1035), Model_FromDeviceId("MFG:Brellian;MDL:BR-1035;SERN:77;"));
  EXPECT_EQ(Model_Find(1060), Model_FromDeviceId("MFG:BRELLIAN;MDL:br-1060;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId("MFG:Other;MDL:BR-1035;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId("MFG:Brellian;MDL:X9;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId("MFG:Brellian;MDL:BR-1035 Plus;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId("MFG:Brellian Inc;MDL:BR-1035;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId("MDL:BR-1035;"));
  EXPECT_EQ(nullptr, Model_FromDeviceId(""));
  EXPECT_EQ(nullptr, Model_FromDeviceId(nullptr));
  EXPECT_EQ("MFG:Brellian;MDL:BR-1030;", Model_DeviceId(*Model_Find(1030)));
}

TEST(ModelTable, HelpTextTokensAreWrittenFromTheTable) {
  EXPECT_EQ("models 1030, 1035 and 1060", Model_Expand("models {ids-and}"));
  EXPECT_EQ("1030, 1035, 1060 or a name", Model_Expand("{ids} or a name"));
  EXPECT_EQ("BR-1030, BR-1035 or BR-1060", Model_Expand("{names-or}"));
  EXPECT_EQ("brellian_1030, brellian_1035, brellian_1060", Model_Expand("{drivers}"));
  EXPECT_EQ("br1060.ppd for BR-1060 (brellian_br-1060)",
            Model_Expand("{default-ppd} for {default-name} (brellian_{default-name-lower})"));
  EXPECT_EQ("1036 x 664 dots at 300 dpi for models 1030 and 1035, 2072 x 1328 dots at 600 dpi for model 1060",
            Model_Expand("{panel-sizes}"));
  // Braces that are no token stay as they are.
  EXPECT_EQ("{x} {ids-and {", Model_Expand("{x} {ids-and {"));
}
