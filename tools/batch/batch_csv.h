// Reading a CSV file one row at a time, so that a batch of any size takes the same memory.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// Rows of a comma-separated file (RFC 4180): fields may be quoted with
// double quotes, a quoted field may hold commas, line breaks and doubled
// quotes; a row ends at LF or CRLF; a UTF-8 byte-order mark before the first
// row is skipped; empty lines are skipped.
class TCsvReader {
 public:
  TCsvReader() = default;
  ~TCsvReader();
  TCsvReader(const TCsvReader&) = delete;
  TCsvReader& operator=(const TCsvReader&) = delete;

  // 'Open()' - Open path for reading; false (with *error) when it cannot.
  bool Open(const std::string& path, std::string* error);
  // 'Next()' - Read the next row into *fields.  Returns 1 for a row, 0 at
  // the end of the file, -1 for a malformed row (*error says where).
  int Next(std::vector<std::string>* fields, std::string* error);
  // 'Line()' - The line number where the last row read began (from 1).
  long Line() const { return rowLine_; }

 private:
  FILE* file_ = nullptr;
  long line_ = 1;
  long rowLine_ = 0;
  bool first_ = true;
};

