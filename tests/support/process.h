// Running the built filter and tools as the spooler runs them.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <map>
#include <string>
#include <vector>

struct TProcessResult {
  int status = -1;         // exit status, or 128 + signal number
  std::string out;         // standard output
  std::string err;         // standard error
};

struct TProcessOptions {
  std::string input;                              // written to standard input
  std::map<std::string, std::string> env;         // added to or replacing the environment
  std::vector<std::string> unsetEnv;              // removed from the environment
  std::string sigtermOnErr;                       // send SIGTERM once stderr holds this text
  bool closeStdout = false;                       // start with descriptor 1 closed
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
