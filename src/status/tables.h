// Start-up tables and the printer status vocabulary.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

extern std::map<uint16_t, std::string> g_senseMessages;
extern std::map<uint8_t, std::string> g_printerStatusMessages;
extern std::map<uint8_t, std::string> g_laminatorStatusMessages;
extern std::map<uint8_t, std::string> g_laminatorErrorMessages;
extern std::map<uint8_t, std::string> g_ribbonTypeNames;
extern std::map<uint32_t, std::string> g_modelNames;

// Number and size of the result slots of the lookups.
constexpr int32_t STATUS_SLOTS = 20;
constexpr int32_t STATUS_SLOT_BYTES = 1024;

// 'Status_BuildTables()' - The start-up table builder: message tables, model
// names, panel geometry and resolution, magnetic character sets.  Called
// first thing by main; safe to call again.
void Status_BuildTables();

// 'Status_ModelName()' - Display name of a model id; empty when unknown.
const char* Status_ModelName(uint32_t model);

int32_t Status_NextSlot();
const char* Status_SenseKeyWithCodes(uint8_t key, uint8_t code);
const char* Status_LaminatorText(uint8_t status, uint8_t error);
const char* Status_SenseText(uint8_t key, uint8_t code);
const char* Status_SenseTextPacked(uint16_t value);
const char* Status_PrinterText(uint8_t status, uint8_t key, uint8_t code);
const char* Status_RibbonText(uint8_t code);
const char* Status_CopyText(const char* text, int32_t length);
const char* Status_IntText(int32_t value);
const char* Status_TimeText(int32_t units);

// 'Sys_StdinReady()' - 1 when standard input is readable now, else 0.
int32_t Sys_StdinReady();
