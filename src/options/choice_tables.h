// The option reader's choice tables: each PPD keyword read as a code, the
// choice texts it recognises and the code each gives.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// A recognised choice text and the code it gives.
struct TChoiceCode {
  const char* text;
  int32_t code;
};

// A keyword read as a code: its recognised choices (compared without regard
// to case) and the code of any other choice or of no choice at all (which
// the settings file replaces for cardThickness and magPOMode).
struct TChoiceKeyword {
  const char* keyword;
  const TChoiceCode* choices;
  size_t count;
  int32_t fallback;
};

// Every keyword the option reader reads as a code.
extern const TChoiceKeyword g_choiceKeywords[];
extern const size_t g_choiceKeywordCount;

// 'Opt_ChoiceKeyword()' - The table entry of keyword, or null.
const TChoiceKeyword* Opt_ChoiceKeyword(const char* keyword);
