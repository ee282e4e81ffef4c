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
#include "util/safe_file.h"
#include "util/signal_block.h"

namespace {

std::string g_logFileName;
int32_t g_logLevel = LOG_LOG;
uint32_t g_logOutputMask = 0;
int32_t g_logDepth = 0;
std::mutex g_logMutex;

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
// its own or move the terminal.
void Log_AppendEscaped(TLineBuffer* line, const char* msg) {
  for (const char* p = msg; *p; ++p) {
    unsigned char c = static_cast<unsigned char>(*p);
    if (c < 0x20 || c == 0x7F) {
      char esc[5];
      snprintf(esc, sizeof esc, "\\x%02X", c);
      line->Append(esc, 4);
    } else {
      line->Append(p, 1);
    }
  }
}

// 'Log_AppendToFile()' - Append one line to a log file.  With rotate set
// the file is deleted when it has grown past LOG_ROTATE_BYTES.  Returns
// false when the file could not be opened.
bool Log_AppendToFile(const std::string& path, const char* line, size_t length, bool rotate) {
  int fd = File_OpenRegular(path.c_str(), O_RDWR | O_CREAT | O_APPEND, 0666);
  if (fd < 0) return false;
  ssize_t unused = write(fd, line, length);
  (void)unused;
  off_t position = lseek(fd, 0, SEEK_END);
  close(fd);
  if (rotate && position > LOG_ROTATE_BYTES) unlink(path.c_str());
  return true;
}

// 'Log_HomeFilePath()' - "$HOME/Brellian/Logs/<file>", creating both
// directories.  An unset or empty HOME gives no path: the destination is
// skipped rather than written relative to the current directory.
bool Log_HomeFilePath(std::string* path) {
  const char* home = getenv("HOME");
  if (!home || !*home) return false;
  *path = home;
  *path += "/Brellian";
  mkdir(path->c_str(), 0777);
  *path += "/Logs";
  mkdir(path->c_str(), 0777);
  *path += "/";
  *path += g_logFileName;
  return true;
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

  time_t now = time(nullptr);
  struct tm tmNow;
  localtime_r(&now, &tmNow);

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

  char stamped[LOG_MESSAGE_BYTES + 32];
  int stampedLen = snprintf(stamped, sizeof stamped, "%02d%02d%02d %02d:%02d:%02d %s\n",
                            tmNow.tm_year % 100, tmNow.tm_mon + 1, tmNow.tm_mday, tmNow.tm_hour,
                            tmNow.tm_min, tmNow.tm_sec, line.text);
  if (stampedLen < 0) stampedLen = 0;
  if (static_cast<size_t>(stampedLen) >= sizeof stamped) stampedLen = sizeof stamped - 1;

  if (g_logOutputMask & LOG_OUT_STDERR) {
    fprintf(stderr, "%s\n", line.text);
    fflush(stderr);
  }
  if (g_logOutputMask & LOG_OUT_SPOOL) {
    std::string path = std::string(BRELLIAN_SPOOL_TMP_DIR) + "/" + g_logFileName;
    if (!Log_AppendToFile(path, stamped, static_cast<size_t>(stampedLen), true)) {
      if (Log_HomeFilePath(&path)) Log_AppendToFile(path, stamped, static_cast<size_t>(stampedLen), true);
    }
  }
  if (g_logOutputMask & LOG_OUT_HOME) {
    std::string path;
    if (Log_HomeFilePath(&path)) Log_AppendToFile(path, stamped, static_cast<size_t>(stampedLen), true);
  }
  if (g_logOutputMask & LOG_OUT_SYSTEM) {
    mkdir(BRELLIAN_LOG_DIR, 0777);
    std::string path = std::string(BRELLIAN_LOG_DIR) + "/" + g_logFileName;
    Log_AppendToFile(path, stamped, static_cast<size_t>(stampedLen), false);
  }
  errno = savedErrno;
}
