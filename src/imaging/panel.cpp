// Page and panel buffers: the model tables of panel size and resolution.
// Copyright 2026 The rastertobrellian authors.
#include "imaging/panel.h"

#include "driver/printing_task.h"
#include "status/models.h"

std::map<uint32_t, TPanelGeometry> g_panelGeometry;
std::map<uint32_t, uint32_t> g_modelResolution;

// 'Panel_BuildTables()' - Fill g_panelGeometry and g_modelResolution from
// the model table; called by the start-up table builder.
void Panel_BuildTables() {
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  for (int32_t i = 0; i < count; ++i) {
    g_panelGeometry[models[i].id] = TPanelGeometry{models[i].panelWidth, models[i].panelHeight};
    g_modelResolution[models[i].id] = models[i].dpi;
  }
}

// 'Panel_ModelGeometry()' - The panel size of model; a model missing from
// the table reads as 0 x 0 (the table is never changed here).
TPanelGeometry Panel_ModelGeometry(uint32_t model) {
  auto it = g_panelGeometry.find(model);
  return it == g_panelGeometry.end() ? TPanelGeometry{0, 0} : it->second;
}

// 'Panel_ModelResolution()' - The dots per inch of model; 0 for a model
// missing from the table.
uint32_t Panel_ModelResolution(uint32_t model) {
  auto it = g_modelResolution.find(model);
  return it == g_modelResolution.end() ? 0 : it->second;
}

TPanelGeometry Panel_Geometry(const TPrintingTask* task) {
  return Panel_ModelGeometry(static_cast<uint32_t>(task->printerModel));
}
