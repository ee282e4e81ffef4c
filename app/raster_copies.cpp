// A streamed raster document kept in an unnamed temporary file, so that its copies can be printed.
// Copyright 2026 The rastertobrellian authors.
#include "app/raster_copies.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

// 'TRasterCopies::~TRasterCopies()' - Close the file (it has no name left).
TRasterCopies::~TRasterCopies() {
  if (writer_) cupsRasterClose(writer_);
  if (fd_ >= 0) close(fd_);
}

// 'TRasterCopies::Open()' - An unnamed file of the server's own.
bool TRasterCopies::Open() {
  const char* dir = getenv("TMPDIR");
  std::string path = std::string(dir && *dir ? dir : "/tmp") + "/brellian-copies-XXXXXX";
  std::vector<char> name(path.begin(), path.end());
  name.push_back('\0');
  fd_ = mkostemp(name.data(), O_CLOEXEC);
  if (fd_ < 0) return false;
  unlink(name.data());
  writer_ = cupsRasterOpen(fd_, CUPS_RASTER_WRITE);
  return writer_ != nullptr;
}

// 'TRasterCopies::WriteHeader()' - One page header.
bool TRasterCopies::WriteHeader(cups_page_header2_t* header) {
  if (!writer_ || broken_) return false;
  if (!cupsRasterWriteHeader2(writer_, header)) broken_ = true;
  return !broken_;
}

// 'TRasterCopies::WriteRow()' - One row.
bool TRasterCopies::WriteRow(const unsigned char* row, unsigned bytes) {
  if (!writer_ || broken_) return false;
  if (cupsRasterWritePixels(writer_, const_cast<unsigned char*>(row), bytes) != bytes) broken_ = true;
  return !broken_;
}

// 'TRasterCopies::Replay()' - The kept pages, from the start.
bool TRasterCopies::Replay(const std::function<bool(cups_page_header2_t*)>& page,
                           const std::function<bool(const unsigned char*, unsigned)>& row,
                           const std::function<bool()>& endPage) {
  if (fd_ < 0 || broken_) return false;
  if (writer_) {
    cupsRasterClose(writer_);
    writer_ = nullptr;
  }
  if (lseek(fd_, 0, SEEK_SET) != 0) return false;
  cups_raster_t* reader = cupsRasterOpen(fd_, CUPS_RASTER_READ);
  if (!reader) return false;
  bool ok = true;
  cups_page_header2_t header;
  std::vector<unsigned char> line;
  while (ok && cupsRasterReadHeader2(reader, &header)) {
    if (!page(&header)) {
      ok = false;
      break;
    }
    line.assign(header.cupsBytesPerLine, 0);
    for (unsigned y = 0; ok && y < header.cupsHeight; ++y) {
      if (cupsRasterReadPixels(reader, line.data(), header.cupsBytesPerLine) != header.cupsBytesPerLine) ok = false;
      else ok = row(line.data(), header.cupsBytesPerLine);
    }
    if (ok) ok = endPage();
  }
  cupsRasterClose(reader);
  return ok;
}
