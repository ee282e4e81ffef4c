// Model tables (not yet complete).
// Copyright 2026 The rastertobrellian authors.
#include "imaging/panel.h"

std::map<uint32_t, TPanelGeometry> g_panelGeometry;
std::map<uint32_t, uint32_t> g_modelResolution;

void Panel_BuildTables() {}
