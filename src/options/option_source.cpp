// TOptionSource: PPD access through libcups.
// Copyright 2026 The rastertobrellian authors.
//
// The PPD interface of libcups is deprecated in favour of IPP Everywhere but
// is the interface the spooler's PPD-based queues use; its warnings are
// silenced here and only here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include "options/option_source.h"

#include <cstdio>
#include <fcntl.h>
#include <strings.h>

#include <cups/cups.h>
#include <cups/ppd.h>

#include "log/log.h"
#include "util/safe_file.h"

namespace {

ppd_file_t* Ppd(void* p) { return static_cast<ppd_file_t*>(p); }

// 'Source_CustomText()' - The value of a custom option's parameter "Text"
// (else its first parameter) as text: strings as given, numbers printed.
std::string Source_CustomText(ppd_file_t* ppd, const char* keyword) {
  ppd_coption_t* coption = ppdFindCustomOption(ppd, keyword);
  if (!coption) return std::string();
  ppd_cparam_t* param = ppdFindCustomParam(coption, "Text");
  if (!param) param = ppdFirstCustomParam(coption);
  if (!param) return std::string();
  char number[64];
  switch (param->type) {
    case PPD_CUSTOM_STRING:
    case PPD_CUSTOM_PASSWORD:
    case PPD_CUSTOM_PASSCODE:
      return param->current.custom_string ? param->current.custom_string : "";
    case PPD_CUSTOM_INT:
      snprintf(number, sizeof number, "%d", param->current.custom_int);
      return number;
    case PPD_CUSTOM_POINTS:
      snprintf(number, sizeof number, "%g", static_cast<double>(param->current.custom_points));
      return number;
    case PPD_CUSTOM_REAL:
      snprintf(number, sizeof number, "%g", static_cast<double>(param->current.custom_real));
      return number;
    default:
      return std::string();
  }
}

// 'Source_Meets()' - True when keyword is marked with choice, or, for an
// empty choice, with anything but None, Off or False (the constraint rule
// of PPD files).  *marked receives the marked choice.
bool Source_Meets(ppd_file_t* ppd, const std::string& keyword, const std::string& choice,
                  std::string* marked) {
  ppd_choice_t* c = ppdFindMarkedChoice(ppd, keyword.c_str());
  if (!c) return false;
  *marked = c->choice;
  if (!choice.empty()) return strcasecmp(c->choice, choice.c_str()) == 0;
  return strcasecmp(c->choice, "None") != 0 && strcasecmp(c->choice, "Off") != 0 &&
         strcasecmp(c->choice, "False") != 0;
}

}  // namespace

TOptionSource::~TOptionSource() { Close(); }

bool TOptionSource::Open(const char* path) {
  Close();
  if (!path || !*path) return false;
  // A regular file only: a FIFO would block the job and a symbolic link
  // could point the filter at any file.  ppdOpenFd closes the descriptor.
  int fd = File_OpenRegular(path, O_RDONLY);
  if (fd < 0) return false;
  ppd_ = ppdOpenFd(fd);
  return ppd_ != nullptr;
}

// 'MarkOptions()' - cupsParseOptions, ppdMarkDefaults, cupsMarkOptions, then
// the trace of the command line options in the order given.
void TOptionSource::MarkOptions(const char* options) {
  if (!ppd_) return;
  cups_option_t* parsed = nullptr;
  int count = cupsParseOptions(options ? options : "", 0, &parsed);
  ppdMarkDefaults(Ppd(ppd_));
  cupsMarkOptions(Ppd(ppd_), count, parsed);
  Log_Write(LOG_LOG, "Command line PPD options");
  if (count == 0) Log_Write(LOG_LOG, "  NONE");
  for (int i = 0; i < count; ++i) Log_Write(LOG_LOG, "  %s::[%s]", parsed[i].name, parsed[i].value);
  cupsFreeOptions(count, parsed);
}

bool TOptionSource::Choice(const char* keyword, std::string* text, bool* custom) const {
  text->clear();
  if (custom) *custom = false;
  if (!ppd_ || !keyword) return false;
  ppd_choice_t* choice = ppdFindMarkedChoice(Ppd(ppd_), keyword);
  if (!choice) return false;
  if (strcasecmp(choice->choice, "Custom") == 0 && ppdFindCustomOption(Ppd(ppd_), keyword)) {
    *text = "Custom." + Source_CustomText(Ppd(ppd_), keyword);
    if (custom) *custom = true;
  } else {
    *text = choice->choice;
  }
  return true;
}

std::vector<std::pair<std::string, std::string>> TOptionSource::IgnoredTextValues(
    const char* options) const {
  std::vector<std::pair<std::string, std::string>> ignored;
  if (!ppd_) return ignored;
  cups_option_t* parsed = nullptr;
  int count = cupsParseOptions(options ? options : "", 0, &parsed);
  for (int i = 0; i < count; ++i) {
    ppd_option_t* option = ppdFindOption(Ppd(ppd_), parsed[i].name);
    ppd_coption_t* coption = option ? ppdFindCustomOption(Ppd(ppd_), parsed[i].name) : nullptr;
    ppd_cparam_t* param = coption ? ppdFirstCustomParam(coption) : nullptr;
    if (!param || (param->type != PPD_CUSTOM_STRING && param->type != PPD_CUSTOM_PASSWORD &&
                   param->type != PPD_CUSTOM_PASSCODE))
      continue;
    const char* value = parsed[i].value ? parsed[i].value : "";
    if (strncasecmp(value, "Custom.", 7) == 0 || value[0] == '{' || ppdFindChoice(option, value))
      continue;
    ignored.emplace_back(parsed[i].name, value);
  }
  cupsFreeOptions(count, parsed);
  return ignored;
}

std::vector<std::vector<std::pair<std::string, std::string>>> TOptionSource::ViolatedConstraints() const {
  std::vector<std::vector<std::pair<std::string, std::string>>> hits;
  if (!ppd_) return hits;
  for (ppd_attr_t* attr = ppdFindAttr(Ppd(ppd_), "cupsUIConstraints", nullptr); attr;
       attr = ppdFindNextAttr(Ppd(ppd_), "cupsUIConstraints", nullptr)) {
    if (!attr->value) continue;
    // "*kw1 choice1 *kw2 *kw3 choice3": a choice follows its keyword or not.
    std::vector<std::pair<std::string, std::string>> named;
    const char* p = attr->value;
    while (*p) {
      while (*p == ' ' || *p == '\t') ++p;
      const char* start = p;
      while (*p && *p != ' ' && *p != '\t') ++p;
      std::string token(start, static_cast<size_t>(p - start));
      if (token.empty()) break;
      if (token[0] == '*') named.emplace_back(token.substr(1), std::string());
      else if (!named.empty() && named.back().second.empty()) named.back().second = token;
    }
    if (named.size() < 2) continue;
    std::vector<std::pair<std::string, std::string>> marked;
    bool all = true;
    for (const auto& option : named) {
      std::string choice;
      all = all && Source_Meets(Ppd(ppd_), option.first, option.second, &choice);
      if (!all) break;
      marked.emplace_back(option.first, choice);
    }
    bool seen = false;
    for (const auto& hit : hits) seen = seen || hit == marked;
    if (all && !seen) hits.push_back(marked);
  }
  return hits;
}

bool TOptionSource::HasChoice(const char* keyword, const char* choice) const {
  if (!ppd_) return false;
  ppd_option_t* option = ppdFindOption(Ppd(ppd_), keyword);
  return option && ppdFindChoice(option, choice) != nullptr;
}

int32_t TOptionSource::ModelNumber() const { return ppd_ ? Ppd(ppd_)->model_number : 0; }

void TOptionSource::Close() {
  if (ppd_) ppdClose(Ppd(ppd_));
  ppd_ = nullptr;
}

#pragma GCC diagnostic pop
