// In-process fixture of the page tests: a task writing to memory, log capture
// and a splitter of the job command stream.
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
#include "log/log.h"

// Kept apart from the job-stream reader's names: these tests read single
// panels that are not framed as a whole job.
namespace pagetest {

// One record of the job command stream.
struct TStreamRecord {
  uint16_t type;
  std::string payload;
};

// 'Stream_Split()' - The records of a command stream, in order.  A record cut
// short appears as type 0xFFFF with what is left.
inline std::vector<TStreamRecord> Stream_Split(const std::string& bytes) {
  std::vector<TStreamRecord> records;
  size_t pos = 0;
  while (pos < bytes.size()) {
    const uint8_t* p = reinterpret_cast<const uint8_t*>(bytes.data()) + pos;
    if (bytes.size() - pos < ICMD_HEADER_BYTES ||
        bytes.size() - pos - ICMD_HEADER_BYTES < Rec_Get32(p + 2)) {
      records.push_back({0xFFFF, bytes.substr(pos)});
      break;
    }
    uint32_t length = Rec_Get32(p + 2);
    records.push_back({Rec_Get16(p), bytes.substr(pos + ICMD_HEADER_BYTES, length)});
    pos += ICMD_HEADER_BYTES + length;
  }
  return records;
}

// One panel found in a stream: its ICMD_STARTIMAGE fields, its data and the
// payload sizes of its ICMD_IMAGE records.
struct TStreamPanel {
  uint16_t width = 0;
  uint16_t height = 0;
  uint8_t type = 0xFF;
  std::string data;
  std::vector<size_t> chunks;
  bool ended = false;
};

// 'Stream_Panels()' - Every ICMD_STARTIMAGE ... ICMD_ENDIMAGE group.
inline std::vector<TStreamPanel> Stream_Panels(const std::vector<TStreamRecord>& records) {
  std::vector<TStreamPanel> panels;
  for (const TStreamRecord& r : records) {
    if (r.type == ICMD_STARTIMAGE && r.payload.size() == ICMD_STARTIMAGE_PAYLOAD) {
      const uint8_t* p = reinterpret_cast<const uint8_t*>(r.payload.data());
      TStreamPanel panel;
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

  std::vector<TStreamRecord> Records() { return Stream_Split(Bytes()); }

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
inline std::string Stream_Outline(const std::vector<TStreamRecord>& records) {
  static const char* const kNames[] = {"?",         "STARTJOB",  "ENDJOB",    "STARTCARD",
                                       "ENDCARD",   "MAGENCODE", "STARTSIDE", "ENDSIDE",
                                       "STARTIMAGE", "ENDIMAGE", "DATA",      "LUTTABLE"};
  std::string outline;
  bool inImage = false;
  for (const TStreamRecord& r : records) {
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
