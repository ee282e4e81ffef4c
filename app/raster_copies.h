// A streamed raster document kept in an unnamed temporary file, so that its copies can be printed.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cups/raster.h>

#include <functional>

// PAPPL hands a PWG or Apple raster document to the raster callbacks once,
// whatever "copies" says (JPEG and PNG come once per copy).  The pages are
// kept here as they arrive and read back for each further copy.
class TRasterCopies {
 public:
  TRasterCopies() = default;
  TRasterCopies(const TRasterCopies&) = delete;
  TRasterCopies& operator=(const TRasterCopies&) = delete;
  ~TRasterCopies();

  // 'Open()' - Create the file: in $TMPDIR (else /tmp), removed from its
  // directory at once, close-on-exec.  False (errno set) on failure.
  bool Open();
  // 'WriteHeader()'/'WriteRow()' - One page header, one row.  False once
  // the file cannot take more (a full disk): the copies then fail.
  bool WriteHeader(cups_page_header2_t* header);
  bool WriteRow(const unsigned char* row, unsigned bytes);
  // 'Replay()' - Read the document back: page() for each header, row()
  // for each of its rows, endPage() after them.  Stops, returning false,
  // when a callback returns false or the file cannot be read.
  bool Replay(const std::function<bool(cups_page_header2_t*)>& page,
              const std::function<bool(const unsigned char*, unsigned)>& row, const std::function<bool()>& endPage);

 private:
  int fd_ = -1;
  cups_raster_t* writer_ = nullptr;
  bool broken_ = false;
};
