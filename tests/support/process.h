// Running the built filter and tools as the spooler runs them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <csignal>
#include <cstddef>
#include <cstdint>

struct TProcessResult {
  int status = -1;         // exit status, or 128 + signal number
  std::string out;         // standard output
  std::string err;         // standard error
  bool timedOut = false;   // killed at the deadline
  long maxRssKb = 0;       // peak resident size of the process
};

// How standard output of the process is connected.
enum class TProcessStdout { Pipe, Closed, Full };

struct TProcessOptions {
  std::string input;                              // written to standard input
  std::map<std::string, std::string> env;         // added to or replacing the environment
  std::vector<std::string> unsetEnv;              // removed from the environment
  TProcessStdout stdoutMode = TProcessStdout::Pipe;   // Full: /dev/full
  std::string workDir;                            // working directory (empty: the test's own)
  double deadlineSeconds = 120;                   // the process is killed after this
  // With sigtermOnErr set: once standard error holds that text, wait
  // signalDelayMs and send signal.  Until then no more than holdInputAt
  // bytes of input are written.
  std::string sigtermOnErr;
  size_t holdInputAt = SIZE_MAX;
  int signalDelayMs = 0;
  int signal = SIGTERM;
};

// 'Test_RunProcess()' - Run argv[0] with argv, feed input, collect output.
TProcessResult Test_RunProcess(const std::vector<std::string>& argv,
                               const TProcessOptions& options = TProcessOptions());

// 'Test_RunFilter()' - Run the built filter with the given arguments (argv[0]
// is the filter's path).
TProcessResult Test_RunFilter(const std::vector<std::string>& args,
                              const TProcessOptions& options = TProcessOptions());

// Paths of the test build's stand-ins for the system directories.
std::string Test_ConfDir();      // stands for /etc/brellian
std::string Test_LogDir();       // stands for /var/log/brellian
std::string Test_LogFile();      // the filter's log file
std::string Test_ReadFile(const std::string& path);
void Test_WriteFile(const std::string& path, const std::string& data);
void Test_RemoveTree(const std::string& path);
void Test_MakeDirs(const std::string& path);

// 'Test_Lines()' - The lines of text without their line feeds; text after
// the last line feed is one more line.
std::vector<std::string> Test_Lines(const std::string& text);

// 'Test_GeneratedPPD()' - The build's PPD file of model.
std::string Test_GeneratedPPD(int model = 1060);

// 'Test_Bytes()' - A string literal with its zero bytes, without the final one.
template <size_t N>
std::string Test_Bytes(const char (&text)[N]) {
  return std::string(text, N - 1);
}

// 'Test_ResetLog()' - Remove the filter's log file and log configuration.
void Test_ResetLog();
// 'Test_SetLogLevelWord()' - Write the log configuration file with one line
// "rastertobrellian = <word>".
void Test_SetLogLevelWord(const std::string& word);
// 'Test_LogMessages()' - The filter's log lines without their time stamps
// (the text after "YYMMDD HH:MM:SS ").
std::vector<std::string> Test_LogMessages();
// 'Test_WithoutWarnings()' - Standard error without the "WARNING: " lines
// that name what a job asked for and did not get: the designed lines.
std::string Test_WithoutWarnings(const std::string& err);
// 'Test_Contains()' - True when lines holds line exactly.
bool Test_Contains(const std::vector<std::string>& lines, const std::string& line);
