// The filter's trace log: levels, output mask, file and configuration.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstddef>
#include <cstdint>

// Log levels.  A line is written when its level is at or below the current
// level; the words are those of the log configuration file.
constexpr int32_t LOG_NONE = 0;
constexpr int32_t LOG_LOG = 2;
constexpr int32_t LOG_FATAL = 4;
constexpr int32_t LOG_ERROR = 8;
constexpr int32_t LOG_WARNING = 12;
constexpr int32_t LOG_INFO = 16;
constexpr int32_t LOG_TRACE = 20;
constexpr int32_t LOG_ENTRYEXIT = 24;

// Output mask bits.
constexpr uint32_t LOG_OUT_STDERR = 2;   // standard error, without time stamp
constexpr uint32_t LOG_OUT_SPOOL = 4;    // spooler temporary directory, else HOME
constexpr uint32_t LOG_OUT_HOME = 8;     // $HOME/Brellian/Logs
constexpr uint32_t LOG_OUT_SYSTEM = 16;  // the system log directory

// Size of the message buffer; longer messages and lines are cut.
constexpr int LOG_MESSAGE_BYTES = 1024;
// A log file of bits 4 and 8 is deleted once it grows past this size.
constexpr long LOG_ROTATE_BYTES = 16777216L;

void Log_SetFileName(const char* name);
const char* Log_GetFileName();
void Log_SetLevel(int32_t level);
int32_t Log_GetLevel();
void Log_SetOutputMask(uint32_t mask);
uint32_t Log_GetOutputMask();

// 'Log_GetDepth()'/'Log_SetDepth()' - Current nesting of ">>>>"/"<<<<"
// lines (tests reset it between cases).
int32_t Log_GetDepth();
void Log_SetDepth(int32_t depth);

// 'Log_LevelFromWord()' - Map a level word of the configuration file,
// ignoring case, to its number; -1 when the word is not a level.
int32_t Log_LevelFromWord(const char* word);

// 'Log_ReadLevel()' - The level configured for programName in the log
// configuration file, or defaultLevel when the file, the key or the word is
// missing.
int32_t Log_ReadLevel(const char* programName, int32_t defaultLevel);

// 'Log_ReadLevelFromText()' - The same, on the text of a configuration file.
int32_t Log_ReadLevelFromText(const char* text, size_t length, const char* programName,
                              int32_t defaultLevel);

// 'Log_Write()' - Write one line at level (printf rules for format).
void Log_Write(int32_t level, const char* format, ...) __attribute__((format(printf, 2, 3)));
