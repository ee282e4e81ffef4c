// Choice lookup and trace lines shared by the option reader's steps.
// Copyright 2026 The rastertobrellian authors.
#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "log/log.h"
#include "options/option_source.h"
#include "options/read_context.h"
#include "util/str.h"

bool Opt_Choice(const TOptionContext* ctx, const char* keyword, std::string* text, bool* custom) {
  text->clear();
  if (custom) *custom = false;
  if (!ctx->ppd || !ctx->ppd->Choice(keyword, text, custom)) {
    Log_Write(LOG_LOG, "  %s::OPT::[NULL]", keyword);
    return false;
  }
  Log_Write(LOG_LOG, "  %s::[%s]", keyword, text->empty() ? "NULL" : text->c_str());
  return true;
}

int32_t Opt_Lookup(const TChoiceCode* table, size_t count, const std::string& text,
                   int32_t fallback) {
  for (size_t i = 0; i < count; ++i)
    if (Str_EqualNoCase(text.c_str(), table[i].text)) return table[i].code;
  return fallback;
}

int32_t Opt_ReadCode(const TOptionContext* ctx, const char* keyword, const TChoiceCode* table,
                     size_t count, int32_t fallback) {
  std::string text;
  if (!Opt_Choice(ctx, keyword, &text)) return fallback;
  return Opt_Lookup(table, count, text, fallback);
}

int32_t Opt_ReadKeyword(const TOptionContext* ctx, const char* keyword, int32_t fallback) {
  const TChoiceKeyword* entry = Opt_ChoiceKeyword(keyword);
  return Opt_ReadCode(ctx, keyword, entry ? entry->choices : nullptr, entry ? entry->count : 0,
                      fallback);
}

int32_t Opt_ReadKeyword(const TOptionContext* ctx, const char* keyword) {
  const TChoiceKeyword* entry = Opt_ChoiceKeyword(keyword);
  return Opt_ReadKeyword(ctx, keyword, entry ? entry->fallback : 0);
}

uint32_t Opt_Resolution(const TOptionContext* ctx) {
  return Panel_ModelResolution(static_cast<uint32_t>(ctx->task->printerModel));
}

int32_t Opt_ReadAdded(const TOptionContext* ctx, const char* keyword) {
  const TChoiceKeyword* entry = Opt_ChoiceKeyword(keyword);
  int32_t fallback = entry ? entry->fallback : 0;
  std::string text;
  if (!ctx->ppd || !ctx->ppd->Choice(keyword, &text, nullptr)) return fallback;
  Log_Write(LOG_LOG, "  %s::[%s]", keyword, text.empty() ? "NULL" : text.c_str());
  return entry ? Opt_Lookup(entry->choices, entry->count, text, fallback) : fallback;
}
