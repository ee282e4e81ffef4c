// Writing one panel image as records: ICMD_STARTIMAGE, ICMD_IMAGE, ICMD_ENDIMAGE.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>

#include "driver/printing_task.h"
#include "jobstream/record_out.h"
#include "jobstream/records.h"
#include "log/log.h"

uint32_t Job_ImageRowsPerRecord(uint64_t rowBytes) {
  return rowBytes ? static_cast<uint32_t>(IMAGE_CHUNK_BYTES / rowBytes) : 0;
}

// 'Job_WriteImageRecord()' - One ICMD_IMAGE record of n data bytes: its
// header, then the bytes straight from data, neither logged nor flushed,
// the record whole or not at all (Rec_WriteWhole).
void Job_WriteImageRecord(TPrintingTask* task, const uint8_t* data, uint32_t n) {
  uint8_t header[ICMD_HEADER_BYTES];
  Rec_ImageHeader(header, n);
  Rec_WriteWhole(task->output, header, sizeof header, data, n, false);
}

// 'Job_WriteImage()' - ICMD_STARTIMAGE and ICMD_ENDIMAGE go through
// Job_WriteCommand (logged, flushed); between them the rows go out as
// ICMD_IMAGE records of Job_ImageRowsPerRecord whole rows each, the last
// one shorter, written straight from rows without copying.  The flush
// after ICMD_ENDIMAGE pushes them out.  Returns the data bytes written, 0
// when a row does not fit in one record (nothing is written then).
uint32_t Job_WriteImage(TPrintingTask* task,   // I - Job (output)
                        uint32_t width,        // I - Dots per row
                        uint32_t height,       // I - Rows
                        int32_t panelType,     // I - PANEL_COLOR, _K, _UV or _PO
                        uint32_t bytesPerDot,  // I - 3 for PANEL_COLOR, else 1
                        const uint8_t* rows) { // I - height rows, top row first
  const uint64_t rowBytes = static_cast<uint64_t>(bytesPerDot) * width;
  const uint32_t perRecord = Job_ImageRowsPerRecord(rowBytes);
  if (perRecord == 0) return 0;
  uint8_t record[ICMD_STARTIMAGE_BYTES];
  Rec_StartImage(record, width, height, panelType);
  Job_WriteCommand(task, record);

  const uint32_t fullBytes = static_cast<uint32_t>(perRecord * rowBytes);  // at most 61440
  uint32_t total = 0;
  for (uint32_t row = 0; row < height;) {
    uint32_t end = row + perRecord;
    uint32_t n = fullBytes;
    if (end > height) {
      end = height;
      n = static_cast<uint32_t>((height - row) * rowBytes);
    }
    Job_WriteImageRecord(task, rows, n);
    rows += n;
    total += n;
    row = end;
  }

  Log_Write(LOG_LOG, "CMD: ICMD_IMAGE [%d]", static_cast<int>(total));
  Rec_EndImage(record);
  Job_WriteCommand(task, record);
  return total;
}
