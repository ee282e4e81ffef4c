// One destination file of the log, kept open between lines.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

// 'TLogFile' - The descriptor of one destination and what its file looked
// like when it was opened.  The descriptor is used for a line only while
// the path still names that same file, unchanged in owner, group and mode
// and with one link; otherwise the line opens the path again, exactly as a
// fresh open for every line would.
struct TLogFile {
  int fd = -1;
  std::string path;
  dev_t dev = 0;
  ino_t ino = 0;
  mode_t mode = 0;
  uid_t uid = 0;
  gid_t gid = 0;
};

// 'LogFile_Append()' - Append one line to path through file.  With rotate
// set the file is deleted (and closed) once it has grown past
// LOG_ROTATE_BYTES.  The file is opened with File_OpenOwned: no symbolic
// link, FIFO or device, one link, owned by root or the process's user.
// Returns false, with errno set, when the file could not be opened.
bool LogFile_Append(TLogFile* file, const std::string& path, const char* line, size_t length,
                    bool rotate);

// 'LogFile_Close()' - Close the descriptor of file, if open.
void LogFile_Close(TLogFile* file);
