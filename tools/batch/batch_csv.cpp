// Reading a CSV file one row at a time.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_csv.h"

#include <cerrno>
#include <cstring>

// Longest field taken: a longer one is a malformed file, not card data.
constexpr size_t CSV_MAX_FIELD = 64 * 1024;

TCsvReader::~TCsvReader() {
  if (file_) fclose(file_);
}

// 'TCsvReader::Open()' - Open path; *error names the file and the reason.
bool TCsvReader::Open(const std::string& path, std::string* error) {
  file_ = fopen(path.c_str(), "rb");
  if (!file_) {
    *error = path + ": " + strerror(errno);
    return false;
  }
  return true;
}

// 'TCsvReader::Next()' - One row: 1, end of file: 0, malformed: -1.
int TCsvReader::Next(std::vector<std::string>* fields, std::string* error) {
  fields->clear();
  if (!file_) return 0;
  std::string field;
  bool quoted = false, inQuotes = false, any = false;
  rowLine_ = line_;
  for (;;) {
    int c = fgetc(file_);
    if (first_) {
      first_ = false;
      if (c == 0xEF) {
        int b = fgetc(file_), d = fgetc(file_);
        if (b != 0xBB || d != 0xBF) {
          *error = "line 1: not a text file (a byte-order mark cut short)";
          return -1;
        }
        c = fgetc(file_);
      }
    }
    if (c == EOF) {
      if (inQuotes) {
        *error = "line " + std::to_string(rowLine_) + ": a quoted field is not closed";
        return -1;
      }
      if (!any) return 0;
      fields->push_back(field);
      return 1;
    }
    if (field.size() > CSV_MAX_FIELD) {
      *error = "line " + std::to_string(rowLine_) + ": a field longer than 64 KiB";
      return -1;
    }
    if (inQuotes) {
      if (c == '"') {
        int n = fgetc(file_);
        if (n == '"') {
          field += '"';
        } else {
          inQuotes = false;
          if (n != EOF) ungetc(n, file_);
        }
      } else {
        if (c == '\n') ++line_;
        field += static_cast<char>(c);
      }
      continue;
    }
    if (c == '\r') continue;
    if (c == '\n') {
      ++line_;
      if (!any) {
        rowLine_ = line_;
        continue;  // an empty line
      }
      fields->push_back(field);
      return 1;
    }
    any = true;
    if (c == ',') {
      fields->push_back(field);
      field.clear();
      quoted = false;
    } else if (c == '"' && field.empty() && !quoted) {
      inQuotes = quoted = true;
    } else {
      field += static_cast<char>(c);
    }
  }
}

