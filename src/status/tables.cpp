// Start-up table builder (not yet complete: model names only).
// Copyright 2026 The rastertobrellian authors.
#include "status/tables.h"

#include "imaging/panel.h"
#include "options/mag.h"

std::map<uint32_t, std::string> g_modelNames;

void Status_BuildTables() {
  g_modelNames[1030] = "BR-1030";
  g_modelNames[1035] = "BR-1035";
  g_modelNames[1060] = "BR-1060";
  Panel_BuildTables();
  Mag_BuildCharsets();
}

const char* Status_ModelName(uint32_t model) {
  auto it = g_modelNames.find(model);
  return it == g_modelNames.end() ? "" : it->second.c_str();
}
