// Start-up tables and the printer status vocabulary.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

// Message tables, filled by Status_BuildTables and read-only afterwards.
extern std::map<uint16_t, std::string> g_senseMessages;            // key x 256 + code
extern std::map<uint8_t, std::string> g_printerStatusMessages;     // printer status byte
extern std::map<uint8_t, std::string> g_laminatorStatusMessages;   // laminator status byte
extern std::map<uint8_t, std::string> g_laminatorErrorMessages;    // laminator error byte
extern std::map<uint8_t, std::string> g_ribbonTypeNames;           // ribbon code byte
extern std::map<uint32_t, std::string> g_modelNames;               // model id

// Number and size of the result slots of the lookups.
constexpr int32_t STATUS_SLOTS = 20;
constexpr int32_t STATUS_SLOT_BYTES = 1024;

// 'Status_BuildTables()' - The start-up table builder: message tables, model
// names, panel geometry and resolution, magnetic character sets.  Called
// first thing by main; safe to call again (every table is cleared first).
void Status_BuildTables();

// 'Status_ModelName()' - Display name of a model id; empty when unknown.
const char* Status_ModelName(uint32_t model);

// Lookups.  Each returns a zero-filled result slot holding its text; the
// pointer stays valid until STATUS_SLOTS further lookups have been made.
// Every call takes exactly one slot.

// 'Status_NextSlot()' - Index of the next result slot (0..19, round-robin),
// taken under a mutex.
int32_t Status_NextSlot();
// "<message> (KK,CC)", or "Undefined sense key (KK,CC)".
const char* Status_SenseKeyWithCodes(uint8_t key, uint8_t code);
// Laminator status text; status 0xFF gives the text of the error byte.
const char* Status_LaminatorText(uint8_t status, uint8_t error);
// Text of a sense pair; keys 0xFD, 0xFE, 0xFF carry laminator status,
// laminator error and hardware mismatch.
const char* Status_SenseText(uint8_t key, uint8_t code);
// Status_SenseText of (value >> 8, value & 0xFF).
const char* Status_SenseTextPacked(uint16_t value);
// Printer status text; status 0xFF appends "<br>" and the sense text.
const char* Status_PrinterText(uint8_t status, uint8_t key, uint8_t code);
// Ribbon name, or "UNDEFINED[CC]".
const char* Status_RibbonText(uint8_t code);
// At most length characters of text (stopping at its end), cut to a slot.
const char* Status_CopyText(const char* text, int32_t length);
// value as "%d".
const char* Status_IntText(int32_t value);
// A count of five-minute units as "H:MM:00".
const char* Status_TimeText(int32_t units);

// 'Sys_StdinReady()' - 1 when standard input is readable now, else 0.
int32_t Sys_StdinReady();
