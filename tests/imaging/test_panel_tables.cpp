// Tests of the model table lookups: a model missing from the tables reads
// as nothing and is never added to them.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "status/tables.h"

TEST(PanelTables, LookupsOfAMissingModelAddNothing) {
  Status_BuildTables();
  const size_t models = g_panelGeometry.size(), resolutions = g_modelResolution.size();
  ASSERT_EQ(3u, models);
  EXPECT_EQ(0u, Panel_ModelGeometry(4242).width);
  EXPECT_EQ(0u, Panel_ModelGeometry(4242).height);
  EXPECT_EQ(0u, Panel_ModelResolution(4242));
  TPrintingTask task(0, nullptr);
  task.printerModel = 4242;
  EXPECT_EQ(0u, Panel_Geometry(&task).width);
  EXPECT_EQ(models, g_panelGeometry.size());
  EXPECT_EQ(resolutions, g_modelResolution.size());
  EXPECT_EQ(g_panelGeometry.end(), g_panelGeometry.find(4242));
}

TEST(PanelTables, LookupsOfKnownModels) {
  Status_BuildTables();
  EXPECT_EQ(2072u, Panel_ModelGeometry(1060).width);
  EXPECT_EQ(1328u, Panel_ModelGeometry(1060).height);
  EXPECT_EQ(600u, Panel_ModelResolution(1060));
  EXPECT_EQ(300u, Panel_ModelResolution(1035));
}
