// Running the filter on hostile input: a deadline, memory and file checks.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/stream_types.h"

struct THostileRun {
  std::vector<std::string> args = {"7", "user", "title", "1", ""};
  std::string input;                          // standard input through a pipe
  std::map<std::string, std::string> env;     // added to or replacing the environment
  TProcessStdout stdoutMode = TProcessStdout::Pipe;
  double deadlineSeconds = 20;                // the process is killed after this
  // With sigtermOnErr set: write only the first sigtermAfterBytes of input,
  // wait until standard error holds sigtermOnErr, wait sigtermDelayMs, send
  // the signal, then write the rest of the input.
  std::string sigtermOnErr;
  size_t sigtermAfterBytes = 0;
  int sigtermDelayMs = 200;
  int signal = 15;                            // the signal sent (SIGTERM)
};

struct THostileResult : TProcessResult {
  std::vector<std::string> strayFiles;   // files written outside the two directories
};

// 'Hostile_Run()' - Run the built filter with the given case in an empty
// working directory, HOME and TMPDIR of its own; report every file that
// appeared anywhere in those or in the test system tree outside the
// configuration and log directories.
THostileResult Hostile_Run(const THostileRun& run);

// 'Hostile_Scratch()' - A fresh empty directory for one case's own files
// (inside the test build, outside the two system directories).
std::string Hostile_Scratch(const std::string& name);

// 'Hostile_Header()' - A hand-made version-3 (uncompressed) raster page
// header of 1796 bytes with the given words; the rest zero.
struct THostileHeader {
  uint32_t width = 8, height = 2, bytesPerLine = 24, bitsPerColor = 8, bitsPerPixel = 24;
  uint32_t colorSpace = 1, colorOrder = 0, numCopies = 1, duplex = 0, tumble = 0;
  bool terminateStrings = true;   // false: every string field full, no zero
};
std::string Hostile_HeaderBytes(const THostileHeader& h);
// 'Hostile_Stream()' - The uncompressed sync word (little-endian) followed by pages of header and data.
std::string Hostile_Stream(const std::vector<std::string>& pages);

// Peak resident size any case may reach: the largest page buffer the caps
// allow (256 MiB), the panel images and, in the sanitizer build, shadow
// memory.
constexpr long HOSTILE_MAX_RSS_KB = 900L * 1024L;

// 'Hostile_Clean()' - No timeout, no sanitizer report, bounded memory and no
// file written outside the two system directories.
bool Hostile_Clean(const THostileResult& r, std::string* why);

// 'Hostile_ProgressErr()' - The standard error of a job whose pages have
// the given heights and are all read whole, ending "INFO: Ready to print.".
std::string Hostile_ProgressErr(const std::vector<uint32_t>& heights);


// 'Hostile_LogHas()' - True when a log line, without its leading space and
// indentation, is text.
bool Hostile_LogHas(const std::vector<std::string>& log, const std::string& text);

// 'Hostile_ExpectLogLines()' - The filter's log holds every line of present
// and none of absent (compared as Hostile_LogHas does).
void Hostile_ExpectLogLines(const std::vector<std::string>& present,
                            const std::vector<std::string>& absent = {});

// 'Hostile_ExpectPrintedWithDefaults()' - A run on one valid page of two
// rows that left nothing behind, ended with status 0 and the page's
// progress lines, and logged every line of present and none of absent.
void Hostile_ExpectPrintedWithDefaults(const THostileResult& r, const std::vector<std::string>& present,
                                       const std::vector<std::string>& absent);

// 'Hostile_SimplexColorCard()' - Record types of a job of one simplex
// colour card whose panel of the given height goes out in records of
// rowsPerRecord rows.
std::vector<uint16_t> Hostile_SimplexColorCard(uint32_t height, uint32_t rowsPerRecord);

// 'Hostile_ValidPage()' - A raster stream of one valid 8 x 2 white RGB
// page at 300 dpi.
std::string Hostile_ValidPage();
