// Reading the log level from the log configuration file.
// Copyright 2026 The rastertobrellian authors.
#include <cstring>
#include <fcntl.h>
#include <string>

#include "brellian_paths.h"
#include "log/log.h"
#include "util/safe_file.h"
#include "util/str.h"
#include "util/trusted_file.h"

namespace {

struct TLevelWord {
  const char* word;
  int32_t level;
};

const TLevelWord kLevelWords[] = {
    {"none", LOG_NONE},       {"log", LOG_LOG},         {"fatal", LOG_FATAL},
    {"error", LOG_ERROR},     {"warning", LOG_WARNING}, {"info", LOG_INFO},
    {"trace", LOG_TRACE},     {"EntryExit", LOG_ENTRYEXIT},
};

// The configuration file is a few lines; anything larger is not read.
constexpr size_t kMaxConfigBytes = 1024 * 1024;
constexpr size_t kLineBytes = 1024;
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// 'Log_MatchLine()' - Apply one configuration line.  Returns true and sets
// *level when the line names programName.
bool Log_MatchLine(char* line, const char* programName, int32_t defaultLevel, int32_t* level) {
  Str_StripEOL(line);
  // The position of "=" is taken before the blanks are trimmed, so a key
  // must begin in the first column.
  const char* eq = strchr(line, '=');
  size_t eqIndex = eq ? static_cast<size_t>(eq - line) : 0;
  Str_TrimSpaces(line);
  size_t len = strlen(line);
  if (len == 0 || line[0] == '#' || !eq) return false;
  if (eqIndex >= len) return false;  // the "=" was trimmed away: no value
  line[eqIndex] = '\0';
  char* key = line;
  size_t keyLen = strlen(key);
  while (keyLen > 0 && key[keyLen - 1] == ' ') key[--keyLen] = '\0';
  char* value = line + eqIndex + 1;
  while (*value == ' ') ++value;
  if (*value == '\0') return false;
  if (!Str_EqualNoCase(key, programName)) return false;
  int32_t mapped = Log_LevelFromWord(value);
  *level = mapped < 0 ? defaultLevel : mapped;
  return true;
}

}  // namespace

int32_t Log_LevelFromWord(const char* word) {
  for (const TLevelWord& w : kLevelWords)
    if (Str_EqualNoCase(word, w.word)) return w.level;
  return -1;
}

int32_t Log_ReadLevelFromText(const char* text, size_t length, const char* programName,
                              int32_t defaultLevel) {
  size_t pos = 0;
  // A UTF-8 byte-order mark before the first line is not part of its key.
  const size_t markLen = sizeof kByteOrderMark - 1;
  if (length >= markLen && memcmp(text, kByteOrderMark, markLen) == 0) pos = markLen;
  char line[kLineBytes];
  while (pos < length) {
    const char* start = text + pos;
    const void* nl = memchr(start, '\n', length - pos);
    size_t lineLen = nl ? static_cast<size_t>(static_cast<const char*>(nl) - start) + 1 : length - pos;
    pos += lineLen;
    // A line that does not fit the line buffer is skipped whole rather than
    // read in pieces, so that its tail can never pass for a setting.
    if (lineLen >= kLineBytes) continue;
    memcpy(line, start, lineLen);
    line[lineLen] = '\0';
    if (strlen(line) != lineLen) continue;  // embedded zero byte: not text
    int32_t level;
    if (Log_MatchLine(line, programName, defaultLevel, &level)) return level;
  }
  return defaultLevel;
}

int32_t Log_ReadLevel(const char* programName, int32_t defaultLevel) {
  std::string text;
  int fd = File_OpenOwned(BRELLIAN_LOG_CONFIG_FILE, O_RDONLY);
  if (fd < 0 || File_ReadAll(fd, kMaxConfigBytes, &text) != 0) return defaultLevel;
  return Log_ReadLevelFromText(text.data(), text.size(), programName, defaultLevel);
}
