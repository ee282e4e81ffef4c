// Adding a model: the model table with one line more and the driver
// information with one section more make a model that the filter, its
// tables, the tools' model names and the help texts all know.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>
#include <unistd.h>

#include "imaging/panel.h"
#include "jobstream/stream_reader.h"
#include "lib/raster_writer.h"
#include "lib/tool_model.h"
#include "status/model_text.h"
#include "status/models.h"
#include "status/tables.h"
#include "support/process.h"

namespace {

constexpr uint32_t kModel = 1090;

}  // namespace

TEST(ExtraModel, EveryTableOfTheFilterAndToolsKnowsTheAddedModel) {
  Status_BuildTables();
  const TModelInfo* model = Model_Find(kModel);
  ASSERT_NE(nullptr, model);
  EXPECT_STREQ("BR-1090", Status_ModelName(kModel));
  EXPECT_EQ(1554u, Panel_ModelGeometry(kModel).width);
  EXPECT_EQ(996u, Panel_ModelGeometry(kModel).height);
  EXPECT_EQ(450u, Panel_ModelResolution(kModel));
  uint32_t parsed = 0;
  EXPECT_TRUE(Tool_ParseModel("br-1090", &parsed));
  EXPECT_EQ(kModel, parsed);
  EXPECT_EQ(model, Model_FromDeviceId("MFG:Brellian;MDL:BR-1090;CLS:PRINTER;"));
  EXPECT_EQ("1030, 1035, 1060 and 1090", Model_Expand("{ids-and}"));
  EXPECT_EQ("br1030.ppd, br1035.ppd, br1060.ppd, br1090.ppd", Model_Expand("{ppds}"));
  // The default model is chosen by name, so a model added at the end
  // leaves it alone.
  EXPECT_EQ(1060u, Model_Default().id);
}

TEST(ExtraModel, TheFilterPrintsBothSidesAtTheAddedModelsPanelSize) {
  std::string ppd = std::string(BRELLIAN_EXTRA_PPD_DIR) + "/br1090.ppd";
  ASSERT_EQ(0, access(ppd.c_str(), R_OK)) << ppd;
  std::vector<TRasterPage> pages;
  for (int i = 0; i < 2; ++i) {
    TRasterPage page = Raster_MakeRGBPage(1554, 996, 450, 200, 100, 50);
    page.header.Duplex = CUPS_TRUE;
    pages.push_back(page);
  }
  std::string raster;
  ASSERT_TRUE(Raster_WriteStream(pages, false, &raster));
  TProcessOptions options;
  options.input = raster;
  options.env["PPD"] = ppd;
  options.env["DEVICE_URI"] = "usbbr://Brellian/BR-1090?serial=EXTRA1";
  options.env["PRINTER"] = "extra";
  TProcessResult r = Test_RunProcess(
      {BRELLIAN_EXTRA_FILTER, "7", "user", "title", "1", "frontRibbon=Color backRibbon=Color"}, options);
  EXPECT_EQ(0, r.status) << r.err;
  TStreamCheck stream;
  EXPECT_EQ(0, Stream_Read(r.out, &stream)) << stream.error;
  EXPECT_TRUE(stream.complete);
  ASSERT_EQ(2u, stream.panels.size()) << r.err;
  for (const TStreamPanel& panel : stream.panels) {
    EXPECT_EQ(1554u, panel.width);
    EXPECT_EQ(996u, panel.height);
  }
  EXPECT_EQ(0, stream.panels[0].side);
  EXPECT_EQ(1, stream.panels[1].side);
}
