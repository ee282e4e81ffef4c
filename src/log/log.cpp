// Log_Write and the log facility's state.
// Copyright 2026 The rastertobrellian authors.
#include "log/log.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log_file.h"
#include "util/safe_file.h"
#include "util/signal_block.h"

namespace {

std::string g_logFileName;
int32_t g_logLevel = LOG_LOG;
uint32_t g_logOutputMask = 0;
int32_t g_logDepth = 0;
std::mutex g_logMutex;
// The destination files, kept open between lines (log/log_file.h).
TLogFile g_spoolFile;
TLogFile g_homeFile;
TLogFile g_systemFile;

// Appends text to a bounded line; what does not fit is cut.
struct TLineBuffer {
  char text[LOG_MESSAGE_BYTES];
  size_t length = 0;

  void Append(const char* s, size_t n) {
    size_t room = sizeof text - 1 - length;
    if (n > room) n = room;
    memcpy(text + length, s, n);
    length += n;
    text[length] = '\0';
  }
  void Append(const char* s) { Append(s, strlen(s)); }
};

// 'Log_AppendEscaped()' - Append a message with every control character
// written as "\xNN", so that no text reaching the log can start a line of
// its own or move the terminal.  Runs of plain characters go in one copy.
void Log_AppendEscaped(TLineBuffer* line, const char* msg) {
  const char* run = msg;
  for (const char* p = msg;; ++p) {
    unsigned char c = static_cast<unsigned char>(*p);
    if (c >= 0x20 && c != 0x7F) continue;
    line->Append(run, static_cast<size_t>(p - run));
    if (c == 0) return;
    char esc[5];
    snprintf(esc, sizeof esc, "\\x%02X", c);
    line->Append(esc, 4);
    run = p + 1;
  }
}

// Length of the time stamp "YYMMDD HH:MM:SS " that begins every file line.
constexpr size_t LOG_STAMP_BYTES = 16;

// 'Log_Stamp()' - The time stamp of the current second in local time.  It
// is made again only when the second changes: lines are written far more
// often than once a second, and the local time of one second is one text.
const char* Log_Stamp() {
  static time_t s_second = -1;
  static char s_stamp[64];  // room for any int the compiler assumes
  time_t now = time(nullptr);
  if (now != s_second) {
    struct tm tmNow;
    localtime_r(&now, &tmNow);
    snprintf(s_stamp, sizeof s_stamp, "%02d%02d%02d %02d:%02d:%02d ", tmNow.tm_year % 100,
             tmNow.tm_mon + 1, tmNow.tm_mday, tmNow.tm_hour, tmNow.tm_min, tmNow.tm_sec);
    s_second = now;
  }
  return s_stamp;
}

// 'Log_AppendInDirectory()' - Append one line to dir/<file>, creating
// parent (when given) and dir, mode FILE_DIRECTORY_MODE (0777), when they
// are missing.  The directories usually exist, so the file is opened first
// and they are made only when the open finds them missing: the outcome is
// that of making them before every line, without a failing call on every
// line.
bool Log_AppendInDirectory(TLogFile* file, const std::string& dir, const char* line, size_t length,
                           bool rotate, const char* parent = nullptr) {
  std::string path = dir + "/" + g_logFileName;
  if (LogFile_Append(file, path, line, length, rotate)) return true;
  if (errno != ENOENT) return false;
  if (parent) mkdir(parent, FILE_DIRECTORY_MODE);
  mkdir(dir.c_str(), FILE_DIRECTORY_MODE);
  return LogFile_Append(file, path, line, length, rotate);
}

// 'Log_AppendToHome()' - Append one line to "$HOME/Brellian/Logs/<file>",
// which is rotated.  An unset or empty HOME skips the destination rather
// than writing relative to the current directory.
void Log_AppendToHome(const char* line, size_t length) {
  const char* home = getenv("HOME");
  if (!home || !*home) return;
  std::string brellian = std::string(home) + "/Brellian";
  Log_AppendInDirectory(&g_homeFile, brellian + "/Logs", line, length, true, brellian.c_str());
}

}  // namespace

void Log_SetFileName(const char* name) { g_logFileName = name ? name : ""; }
const char* Log_GetFileName() { return g_logFileName.c_str(); }
void Log_SetLevel(int32_t level) { g_logLevel = level; }
int32_t Log_GetLevel() { return g_logLevel; }
void Log_SetOutputMask(uint32_t mask) { g_logOutputMask = mask; }
uint32_t Log_GetOutputMask() { return g_logOutputMask; }
int32_t Log_GetDepth() { return g_logDepth; }
void Log_SetDepth(int32_t depth) { g_logDepth = depth; }

void Log_Write(int32_t level, const char* format, ...) {
  if (level > g_logLevel) return;
  int savedErrno = errno;
  // Signals whose handlers may log (through the task's destructor) are held
  // while a line is written, so that the mutex is never taken twice.
  TSignalBlock block;
  std::lock_guard<std::mutex> lock(g_logMutex);

  const char* stamp = Log_Stamp();

  char message[LOG_MESSAGE_BYTES];
  va_list args;
  va_start(args, format);
  vsnprintf(message, sizeof message, format, args);
  va_end(args);

  TLineBuffer line;
  line.Append(" ");
  if (strncmp(format, "<<<<", 4) == 0) --g_logDepth;
  for (int32_t i = 0; i < g_logDepth && line.length < sizeof line.text - 1; ++i) line.Append("     ");
  if (strncmp(format, ">>>>", 4) == 0) ++g_logDepth;
  if (level == LOG_FATAL) line.Append("FATAL: ");
  else if (level == LOG_ERROR) line.Append("ERROR: ");
  else if (level == LOG_WARNING) line.Append("WARNING: ");
  Log_AppendEscaped(&line, message);

  // The stamped line: "YYMMDD HH:MM:SS ", the line and a line feed.
  char stamped[LOG_STAMP_BYTES + LOG_MESSAGE_BYTES + 1];
  memcpy(stamped, stamp, LOG_STAMP_BYTES);
  memcpy(stamped + LOG_STAMP_BYTES, line.text, line.length);
  stamped[LOG_STAMP_BYTES + line.length] = '\n';
  const size_t stampedLen = LOG_STAMP_BYTES + line.length + 1;

  if (g_logOutputMask & LOG_OUT_STDERR) {
    fprintf(stderr, "%s\n", line.text);
    fflush(stderr);
  }
  size_t length = stampedLen;
  if (g_logOutputMask & LOG_OUT_SPOOL) {
    std::string path = std::string(BRELLIAN_SPOOL_TMP_DIR) + "/" + g_logFileName;
    if (!LogFile_Append(&g_spoolFile, path, stamped, length, true)) Log_AppendToHome(stamped, length);
  }
  if (g_logOutputMask & LOG_OUT_HOME) Log_AppendToHome(stamped, length);
  if (g_logOutputMask & LOG_OUT_SYSTEM)
    Log_AppendInDirectory(&g_systemFile, BRELLIAN_LOG_DIR, stamped, length, false);
  errno = savedErrno;
}
