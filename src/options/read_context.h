// Shared state and helpers of the option reader's steps.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "options/choice_tables.h"
#include "options/lut_file.h"
#include "options/mag.h"
#include "options/settings.h"

class TPrintingTask;
class TOptionSource;

// What every step of Job_ReadOptions works on.
struct TOptionContext {
  TPrintingTask* task;
  TBrellianSettings settings;
  const TOptionSource* ppd;   // null when no PPD could be opened
  bool settingsRead = false;  // the settings file was found and read
};


// 'Opt_Choice()' - The marked choice of keyword, traced as "  kw::[text]"
// ("NULL" for an empty text), or "  kw::OPT::[NULL]" and false when the
// keyword has no marked choice.  custom (may be null) tells whether the
// text is a custom value ("Custom." and the text).
bool Opt_Choice(const TOptionContext* ctx, const char* keyword, std::string* text,
                bool* custom = nullptr);

// 'Opt_Lookup()' - The code of text (any case) in table, else fallback.
int32_t Opt_Lookup(const TChoiceCode* table, size_t count, const std::string& text,
                   int32_t fallback);

// 'Opt_ReadCode()' - Opt_Choice, then Opt_Lookup; fallback for a keyword
// without a marked choice.
int32_t Opt_ReadCode(const TOptionContext* ctx, const char* keyword, const TChoiceCode* table,
                     size_t count, int32_t fallback);

// 'Opt_ReadKeyword()' - Opt_ReadCode with keyword's entry of
// g_choiceKeywords, falling back to the entry's code or to fallback.
int32_t Opt_ReadKeyword(const TOptionContext* ctx, const char* keyword);
int32_t Opt_ReadKeyword(const TOptionContext* ctx, const char* keyword, int32_t fallback);

// 'Opt_ReadAdded()' - Opt_ReadKeyword for a keyword added beside the
// designed ones: a PPD or job without it gets the entry's fallback and no
// log line at all, so that its trace stays the designed one.
int32_t Opt_ReadAdded(const TOptionContext* ctx, const char* keyword);

// 'Opt_Resolution()' - Dots per inch of the task's model, for area strings.
uint32_t Opt_Resolution(const TOptionContext* ctx);

// The steps, in the order Job_ReadOptions calls them.
void Opt_ReadInstalled(TOptionContext* ctx);      // ribbon, accessories, model
void Opt_ReadCardThickness(TOptionContext* ctx);
void Opt_ReadSides(TOptionContext* ctx);          // ribbon, resin, UV, UVMAC, PO, laminate
void Opt_ReadLookupTables(TOptionContext* ctx);
void Opt_ReadYesNo(TOptionContext* ctx);          // secure erase, rotation, card flips
void Opt_ReadAreas(TOptionContext* ctx);          // resin and overlay areas
void Opt_ReadMagPOMode(TOptionContext* ctx);
void Opt_ReadMagTracks(TOptionContext* ctx);
void Opt_ReadPlugin(TOptionContext* ctx);
void Opt_ReadPrinterName(TOptionContext* ctx);
void Opt_ReadCardEject(TOptionContext* ctx);

// WARNING lines for the spooler about options the job asked for and won't
// get (read_warnings.cpp).  They never write to the log.
// 'Opt_PresetReason()' - Why the settings entry named entry is empty.
std::string Opt_PresetReason(const TOptionContext* ctx, const std::string& entry);
void Warn_Areas(const TOptionContext* ctx);                              // resin and overlay areas
void Warn_IgnoredValues(const TOptionContext* ctx, const char* options);  // text options without "Custom."
void Warn_Constraints(const TOptionContext* ctx);  // options the queue's installed options rule out
void Warn_MagTrack(int32_t track, const std::string& format, const std::string& data,
                   const TMagTrack& result);
void Warn_UVPreset(const TOptionContext* ctx, const char* keyword, int32_t uv, const std::string& name,
                   const std::string& path);
void Warn_LutTable(const TOptionContext* ctx, const char* keyword, int32_t code, const std::string& name,
                   const std::string& path, int32_t rc, const TLutError& error);
