// Installed accessories of one printer and its serial number, kept in a per-printer file.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

#include "app/models.h"

// What is installed in a printer, as the filter's installable options name it.
struct TAccessories {
  std::string ribbonType = "YMCK";  // YMCK, YMCKK, YMCK-PO, YMCK-UV, Black
  bool flipTurn = false;
  bool laminator = false;
  bool magEncoder = false;
  bool icEncoder = false;
  bool icEncoderContactless = false;
  std::string serial;               // the settings file's serial number
};

// The ribbon types a printer can hold.
extern const char* const g_ribbonTypes[5];
// Their names as the PPD files show them, in the same order.
extern const char* const g_ribbonLabels[5];

// 'Acc_Defaults()' - A new printer of a model: YMCK, a flip-turn unit on
// the two-sided models, the serial from the device URI's "serial=" value.
TAccessories Acc_Defaults(const TAppModel& model, const char* deviceUri);

// 'Acc_Load()' - The printer's saved accessories; the defaults when none
// were saved.
TAccessories Acc_Load(pappl_printer_t* printer, const TAppModel& model);

// 'Acc_Save()' - Write them to the printer's file; false on failure.
bool Acc_Save(pappl_printer_t* printer, const TAccessories& acc);

// 'Acc_Parse()' - "key=value" lines into *acc (unknown keys ignored);
// Acc_Format writes the same form.
void Acc_Parse(const std::string& text, TAccessories* acc);
std::string Acc_Format(const TAccessories& acc);

// 'Acc_IsSafeSerial()' - A serial number that can stand in a file name:
// 1-64 letters, digits, "-" and "_".
bool Acc_IsSafeSerial(const std::string& serial);

// 'Acc_SerialFromUri()' - The value of "serial=" in the URI's query, "".
std::string Acc_SerialFromUri(const char* uri);
