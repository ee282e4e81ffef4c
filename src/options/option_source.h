// TOptionSource: the queue's PPD with the job's options marked in it.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// The only interface to the PPD; the libcups types stay inside
// option_source.cpp.
class TOptionSource {
 public:
  TOptionSource() = default;
  ~TOptionSource();
  TOptionSource(const TOptionSource&) = delete;
  TOptionSource& operator=(const TOptionSource&) = delete;

  // 'Open()' - Open the PPD file at path (a regular file, not through a
  // symbolic link); false when it can't be read.
  bool Open(const char* path);
  bool IsOpen() const { return ppd_ != nullptr; }

  // 'MarkOptions()' - Parse the job's option string, mark the PPD's
  // defaults, then the job's options, and log the options as parsed.
  void MarkOptions(const char* options);

  // 'Choice()' - The marked choice of keyword: its name as written in the
  // PPD, or, when the "Custom" choice of a custom text option is marked,
  // "Custom." followed by the custom text (*custom then true).  False when
  // the keyword has no marked choice or no PPD is open.
  bool Choice(const char* keyword, std::string* text, bool* custom) const;

  // 'IgnoredTextValues()' - The options of the job's option string that name
  // a text option of the PPD (one whose custom value is a string) with a
  // value that is neither one of its choices nor a "Custom." value: libcups
  // leaves such a value unmarked and the option keeps its default.  Each as
  // its keyword and value, in the order given.
  std::vector<std::pair<std::string, std::string>> IgnoredTextValues(const char* options) const;

  // 'ViolatedConstraints()' - The PPD's cupsUIConstraints that the marked
  // choices meet in full: every option a constraint names is marked with
  // the choice it names, or, where it names none, with a choice other than
  // None, Off or False.  Each as the options it names (keyword and marked
  // choice, a custom value as "Custom"), in its own order, in the PPD's
  // order; a constraint repeated under another name counts once.
  std::vector<std::vector<std::pair<std::string, std::string>>> ViolatedConstraints() const;

  // 'HasChoice()' - True when the PPD's option keyword has the choice.
  bool HasChoice(const char* keyword, const char* choice) const;

  // 'ModelNumber()' - The PPD's *cupsModelNumber (0 when absent).
  int32_t ModelNumber() const;

  // 'Close()' - Close the PPD; safe to call more than once.
  void Close();

 private:
  void* ppd_ = nullptr;   // ppd_file_t
};
