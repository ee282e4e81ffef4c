// The option reader's choice tables, one entry per keyword read as a code.
// Copyright 2026 The rastertobrellian authors.
#include "options/choice_tables.h"

#include <cstring>

namespace {

const TChoiceCode kRibbonTypes[] = {
    {"Black", 4}, {"YMCK", 0}, {"YMCKK", 1}, {"YMCK-UV", 3}, {"YMCK-PO", 2},
};
const TChoiceCode kInstalled[] = {{"Installed", 1}};
const TChoiceCode kThickness[] = {{"Thin", 1}, {"Standard", 2}};
const TChoiceCode kYes[] = {{"Yes", 1}};
const TChoiceCode kMagPOModes[] = {{"Auto", 1}, {"Disabled", 2}, {"Enabled", 3}};
const TChoiceCode kEject[] = {{"No", 0}, {"False", 0}};
const TChoiceCode kLUTs[] = {{"Firmware", 0}, {"LUT1", 1}, {"LUT2", 2}, {"LUT3", 3}};
const TChoiceCode kRibbons[] = {{"Monochrome", 0}, {"Grayscale", 1}, {"ColorK", 3}};
const TChoiceCode kResins[] = {
    {"Page", 0},     {"Preset1", 1}, {"Preset2", 2}, {"Preset3", 3}, {"Preset4", 4},
    {"Preset5", 5},  {"Preset6", 6}, {"Preset7", 7}, {"Preset8", 8}, {"Preset9", 9},
    {"Preset10", 10}, {"CustomAreas", 11}, {"Card", 12},
};
const TChoiceCode kBlackModes[] = {{"Diffuse", 0}, {"SolidBlack", 1}};
const TChoiceCode kUVs[] = {
    {"Page", 1}, {"Preset1", 2}, {"Preset2", 3}, {"Preset3", 4}, {"Preset4", 5}, {"Preset5", 6},
};
const TChoiceCode kUVMACs[] = {{"LowerLeft", 1}};
const TChoiceCode kPOs[] = {
    {"Page", 1},      {"Preset1", 2},  {"Preset2", 3}, {"Preset3", 4}, {"Preset4", 5},
    {"Preset5", 6},   {"Preset6", 7},  {"Preset7", 8}, {"Preset8", 9}, {"Preset9", 10},
    {"Preset10", 11}, {"CustomAreas", 12},
};

#define CHOICES(table) table, sizeof table / sizeof table[0]

}  // namespace

const TChoiceKeyword g_choiceKeywords[] = {
    {"ribbonType", CHOICES(kRibbonTypes), 0},
    {"flipTurn", CHOICES(kInstalled), 0},
    {"laminator", CHOICES(kInstalled), 0},
    {"magEncoder", CHOICES(kInstalled), 0},
    {"icEncoder", CHOICES(kInstalled), 0},
    {"icEncoderContactless", CHOICES(kInstalled), 0},
    {"cardThickness", CHOICES(kThickness), 0},
    {"frontSecureErase", CHOICES(kYes), 0},
    {"backSecureErase", CHOICES(kYes), 0},
    {"frontRotation", CHOICES(kYes), 0},
    {"backRotation", CHOICES(kYes), 0},
    {"entryCardFlip", CHOICES(kYes), 0},
    {"magEncodeCardFlip", CHOICES(kYes), 0},
    {"magPOMode", CHOICES(kMagPOModes), 0},
    {"cardEjectExisting", CHOICES(kEject), 1},
    {"frontLUTTable", CHOICES(kLUTs), 0},
    {"backLUTTable", CHOICES(kLUTs), 0},
    {"frontRibbon", CHOICES(kRibbons), 2},
    {"backRibbon", CHOICES(kRibbons), 2},
    {"frontResin", CHOICES(kResins), 0},
    {"backResin", CHOICES(kResins), 0},
    {"frontUV", CHOICES(kUVs), 0},
    {"backUV", CHOICES(kUVs), 0},
    {"frontUVMAC", CHOICES(kUVMACs), 0},
    {"backUVMAC", CHOICES(kUVMACs), 0},
    {"frontPO", CHOICES(kPOs), 0},
    {"backPO", CHOICES(kPOs), 0},
    {"cardLaminate", CHOICES(kYes), 0},
    {"frontBlackMode", CHOICES(kBlackModes), 0},
    {"backBlackMode", CHOICES(kBlackModes), 0},
};
const size_t g_choiceKeywordCount = sizeof g_choiceKeywords / sizeof g_choiceKeywords[0];

const TChoiceKeyword* Opt_ChoiceKeyword(const char* keyword) {
  for (size_t i = 0; i < g_choiceKeywordCount; ++i)
    if (strcmp(g_choiceKeywords[i].keyword, keyword) == 0) return &g_choiceKeywords[i];
  return nullptr;
}
