// In-process fixture of the page tests: a task writing to memory, log capture
// and the job command stream read back with the stream reader.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "driver/printing_task.h"
#include "imaging/panel.h"
#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "log/log.h"

// The records and panels as these tests compare them: every record with
// its payload, and each panel with the sizes of its image records.
namespace pagetest {

// One record of the job command stream.
struct TPageRecord {
  uint16_t type;
  std::string payload;
};

// 'Stream_Split()' - The records of a part of a command stream, in order,
// as Stream_ReadPart reads them (image records with their data).  When the
// reader finds a fault, the rest of the stream from the faulty record
// appears as type 0xFFFF.
inline std::vector<TPageRecord> Stream_Split(const std::string& bytes) {
  ::TStreamCheck check;
  int32_t rc = ::Stream_ReadPart(bytes, &check);
  std::vector<TPageRecord> records;
  for (const ::TStreamRecord& r : check.records)
    records.push_back({r.type, bytes.substr(static_cast<size_t>(r.offset) + ICMD_HEADER_BYTES, r.length)});
  if (rc != 0) records.push_back({0xFFFF, bytes.substr(static_cast<size_t>(check.errorOffset))});
  return records;
}

// One panel found in a stream: its ICMD_STARTIMAGE fields, its data and the
// payload sizes of its ICMD_IMAGE records.
struct TPagePanel {
  uint16_t width = 0;
  uint16_t height = 0;
  uint8_t type = 0xFF;
  std::string data;
  std::vector<size_t> chunks;
  bool ended = false;
};

// 'Stream_Panels()' - Every ICMD_STARTIMAGE ... ICMD_ENDIMAGE group.
inline std::vector<TPagePanel> Stream_Panels(const std::vector<TPageRecord>& records) {
  std::vector<TPagePanel> panels;
  for (const TPageRecord& r : records) {
    if (r.type == ICMD_STARTIMAGE && r.payload.size() == ICMD_STARTIMAGE_PAYLOAD) {
      const uint8_t* p = reinterpret_cast<const uint8_t*>(r.payload.data());
      TPagePanel panel;
      panel.width = Rec_Get16(p);
      panel.height = Rec_Get16(p + 2);
      panel.type = p[4];
      panels.push_back(panel);
    } else if (r.type == ICMD_IMAGE && !panels.empty()) {
      panels.back().data += r.payload;
      panels.back().chunks.push_back(r.payload.size());
    } else if (r.type == ICMD_ENDIMAGE && !panels.empty()) {
      panels.back().ended = true;
    }
  }
  return panels;
}

// Fixture: a 1030-model task whose command stream goes to a memory stream
// and whose log lines (at EntryExit) go to a captured standard error.
class TPageTest : public ::testing::Test {
 protected:
  TPageTest() : task(0, nullptr) {}

  void SetUp() override {
    Panel_BuildTables();
    task.printerModel = 1030;
    output = open_memstream(&outBuffer, &outSize);
    ASSERT_NE(nullptr, output);
    task.output = output;
    Log_SetOutputMask(LOG_OUT_STDERR);
    Log_SetLevel(LOG_ENTRYEXIT);
    Log_SetDepth(0);
    testing::internal::CaptureStderr();
    capturing = true;
  }

  void TearDown() override {
    StopLog();
    Log_SetOutputMask(0);
    Log_SetLevel(LOG_LOG);
    Log_SetDepth(0);
    task.output = stdout;
    if (output) fclose(output);
    free(outBuffer);
  }

  // 'Bytes()' - Everything written to the task's output so far.
  std::string Bytes() {
    fflush(output);
    return std::string(outBuffer, outSize);
  }

  std::vector<TPageRecord> Records() { return Stream_Split(Bytes()); }

  // 'StopLog()' - End the capture; the log lines with their leading blanks
  // (the line's space and the nesting indentation) removed.  The spooler's
  // WARNING lines go to warnLines instead.
  std::vector<std::string> StopLog() {
    if (!capturing) return logLines;
    capturing = false;
    std::string text = testing::internal::GetCapturedStderr();
    size_t start = 0;
    while (start < text.size()) {
      size_t end = text.find('\n', start);
      if (end == std::string::npos) end = text.size();
      std::string line = text.substr(start, end - start);
      start = end + 1;
      // The spooler's WARNING lines start the line; the log's lines start
      // with a blank.
      if (line.rfind("WARNING: ", 0) == 0) {
        warnLines.push_back(line);
        continue;
      }
      size_t first = line.find_first_not_of(' ');
      logLines.push_back(first == std::string::npos ? std::string() : line.substr(first));
    }
    return logLines;
  }

  // 'Panel()' - A W x H panel of bpp bytes per dot whose byte i is i * 7 + 1
  // (mod 256), so that any reordering shows.
  std::vector<uint8_t> Panel(uint32_t bpp) {
    TPanelGeometry g = Panel_Geometry(&task);
    std::vector<uint8_t> panel(static_cast<size_t>(g.width) * g.height * bpp);
    for (size_t i = 0; i < panel.size(); ++i) panel[i] = static_cast<uint8_t>(i * 7 + 1);
    return panel;
  }

  TPrintingTask task;
  FILE* output = nullptr;
  char* outBuffer = nullptr;
  size_t outSize = 0;
  bool capturing = false;
  std::vector<std::string> logLines;
  std::vector<std::string> warnLines;
};

// 'Lines_Count()' - How often line occurs in lines.
inline int Lines_Count(const std::vector<std::string>& lines, const std::string& line) {
  int n = 0;
  for (const std::string& l : lines) n += l == line;
  return n;
}

// 'Lines_WithoutWriter()' - The lines without the entry and exit lines of
// the record writer, whose own lines are not the subject of these tests.
inline std::vector<std::string> Lines_WithoutWriter(const std::vector<std::string>& lines) {
  std::vector<std::string> kept;
  for (const std::string& l : lines)
    if (l != ">>>> Job_WriteCommand" && l != "<<<< Job_WriteCommand") kept.push_back(l);
  return kept;
}

// 'Stream_Outline()' - The records as names separated by blanks, each
// ICMD_STARTIMAGE ... ICMD_ENDIMAGE group written as IMAGE and its panel
// type ("STARTCARD STARTSIDE LUTTABLE IMAGE0 ENDSIDE ENDCARD").
inline std::string Stream_Outline(const std::vector<TPageRecord>& records) {
  static const char* const kNames[] = {"?",         "STARTJOB",  "ENDJOB",    "STARTCARD",
                                       "ENDCARD",   "MAGENCODE", "STARTSIDE", "ENDSIDE",
                                       "STARTIMAGE", "ENDIMAGE", "DATA",      "LUTTABLE"};
  std::string outline;
  bool inImage = false;
  for (const TPageRecord& r : records) {
    std::string word;
    if (r.type == ICMD_STARTIMAGE) {
      word = "IMAGE" + std::to_string(r.payload.size() == 5 ? static_cast<uint8_t>(r.payload[4]) : 255);
      inImage = true;
    } else if (r.type == ICMD_IMAGE && inImage) {
      continue;
    } else if (r.type == ICMD_ENDIMAGE && inImage) {
      inImage = false;
      continue;
    } else if (r.type < sizeof kNames / sizeof kNames[0]) {
      word = kNames[r.type];
    } else {
      word = "TYPE" + std::to_string(r.type);
    }
    outline += (outline.empty() ? "" : " ") + word;
  }
  if (inImage) outline += " UNENDED";
  return outline;
}

}  // namespace pagetest
