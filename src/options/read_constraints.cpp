// Option reader: WARNING lines for options the queue's installed options rule out.
// Copyright 2026 The rastertobrellian authors.
//
// The PPD's constraints pair an installed option (ribbon, laminator,
// magnetic encoder, flip-turn unit) with the job options it rules out; the
// spooler does not enforce them, so such a job reaches the filter as it
// was asked.  The filter still prints it as asked (the queue's installed
// options may simply be unset while the printer has the part); it says so
// in one line per reason, naming every option that reason rules out.
#include <string>
#include <utility>
#include <vector>

#include "driver/printing_task.h"
#include "driver/warning.h"
#include "options/option_source.h"
#include "options/read_context.h"

namespace {

// Why an installed option rules a job option out, and the installed choice
// that would allow it.  asked: the end of the job option's keyword this
// reason is for, empty for any.
struct TInstalledReason {
  const char* installed;
  const char* asked;
  const char* why;
  const char* allows;
};

const TInstalledReason kReasons[] = {
    {"laminator", "", "no laminator is installed", "Installed"},
    {"magEncoder", "", "no magnetic stripe encoder is installed", "Installed"},
    {"flipTurn", "", "no flip-turn unit is installed, so the card has no back side", "Installed"},
    {"ribbonType", "Ribbon", "the loaded ribbon has no colour panels", "YMCK"},
    {"ribbonType", "UV", "the loaded ribbon has no UV panel", "YMCK-UV"},
    {"ribbonType", "PO", "the loaded ribbon has no overlay panel", "YMCK-PO"},
};

// 'Constraint_IsData()' - True for an option whose value is card data
// (track data): it is named without its value.
bool Constraint_IsData(const std::string& keyword) { return keyword.compare(0, 13, "magEncodeData") == 0; }

// 'Constraint_TrackUnsent()' - True for the format or data option of a
// magnetic track that is not encoded anyway (no data, format None, or
// data the format refuses, each with its own warning): nothing of it
// reaches the printer, so the encoder is not missed.
bool Constraint_TrackUnsent(const TPrintingTask* task, const std::string& keyword) {
  for (const char* prefix : {"magEncodeFormat", "magEncodeData"}) {
    std::string p = prefix;
    if (keyword.size() != p.size() + 1 || keyword.compare(0, p.size(), p) != 0) continue;
    int track = keyword.back() - '1';
    if (track < 0 || track > 2) return false;
    uint8_t format = task->magTracks[track].format;
    return format == 0 || format == MAG_STATUS_FORMAT || format == MAG_STATUS_TOO_LONG ||
           format == MAG_STATUS_BAD_CHAR;
  }
  return false;
}

// 'Constraint_EndsWith()' - True when text ends with tail.
bool Constraint_EndsWith(const std::string& text, const char* tail) {
  std::string t = tail;
  return text.size() >= t.size() && text.compare(text.size() - t.size(), t.size(), t) == 0;
}

// One warning: an installed option's choice, a reason, the options it rules out.
struct TConstraintLine {
  std::string installed, choice;
  const TInstalledReason* reason;
  std::string asked;
};

// 'Constraint_Line()' - The WARNING line of one reason.
void Constraint_Line(const TOptionContext* ctx, const TConstraintLine& line) {
  const char* why = line.reason ? line.reason->why : "the queue's installed options rule it out";
  std::string fix;
  const char* allows = line.reason ? line.reason->allows : nullptr;
  if (allows && ctx->ppd->HasChoice(line.installed.c_str(), allows)) {
    std::string queue = ctx->task->printerName.empty() ? "<queue>" : ctx->task->printerName;
    fix = "leave it out, or, if the printer has what it needs, set the queue's installed option: lpadmin -p " +
          queue + " -o " + line.installed + "=" + allows;
  } else {
    fix = "leave it out: the " + ctx->task->modelName + " can't have it";
  }
  Warn_Write("%s can't be printed as asked: %s (%s=%s); it is sent to the printer as asked, which may refuse "
             "the card: %s", line.asked.c_str(), why, line.installed.c_str(), line.choice.c_str(), fix.c_str());
}

}  // namespace

// 'Warn_Constraints()' - One WARNING line for each reason the queue's
// installed options give against the options of the job.
void Warn_Constraints(const TOptionContext* ctx) {
  if (!ctx->ppd) return;
  std::vector<TConstraintLine> lines;
  for (const auto& hit : ctx->ppd->ViolatedConstraints()) {
    // The installed option is the one the option reader reads as such.
    const std::pair<std::string, std::string>* installed = nullptr;
    for (const auto& option : hit)
      for (const char* k : {"ribbonType", "flipTurn", "laminator", "magEncoder", "icEncoder", "icEncoderContactless"})
        if (option.first == k) installed = &option;
    if (!installed) continue;
    for (const auto& option : hit) {
      if (&option == installed || Constraint_TrackUnsent(ctx->task, option.first)) continue;
      const TInstalledReason* reason = nullptr;
      for (const TInstalledReason& r : kReasons)
        if (installed->first == r.installed && (!*r.asked || Constraint_EndsWith(option.first, r.asked)))
          reason = &r;
      std::string asked = Constraint_IsData(option.first) ? option.first : option.first + "=" + option.second;
      TConstraintLine* line = nullptr;
      for (TConstraintLine& l : lines)
        if (l.installed == installed->first && l.reason == reason) line = &l;
      if (!line) {
        lines.push_back({installed->first, installed->second, reason, std::string()});
        line = &lines.back();
      }
      if (line->asked.find(asked) == std::string::npos) line->asked += (line->asked.empty() ? "" : ", ") + asked;
    }
  }
  for (const TConstraintLine& line : lines) Constraint_Line(ctx, line);
}
