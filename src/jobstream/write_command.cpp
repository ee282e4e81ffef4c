// Job_WriteCommand: logging and writing one command record.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>

#include "driver/printing_task.h"
#include "jobstream/record_out.h"
#include "jobstream/records.h"
#include "log/log.h"

namespace {

// 'Cmd_YesNo()' - "yes" for a non-zero flag byte, "no" for 0.
inline const char* Cmd_YesNo(uint8_t flag) { return flag ? "yes" : "no"; }

// 'Cmd_Int32()' - A little-endian 32-bit field as a signed number.
inline int Cmd_Int32(const uint8_t* p) { return static_cast<int32_t>(Rec_Get32(p)); }

// 'Cmd_LogStartCard()' - The lines of ICMD_STARTCARD.
void Cmd_LogStartCard(const uint8_t* r) {
  Log_Write(LOG_LOG, "CMD: ICMD_STARTCARD");
  Log_Write(LOG_LOG, "     Card ID:         %d", Cmd_Int32(r + STARTCARD_ID));
  Log_Write(LOG_LOG, "     Copies:          %d", Cmd_Int32(r + STARTCARD_COPIES));
  Log_Write(LOG_LOG, "     Card Thickness:  %d", r[STARTCARD_THICKNESS]);
  Log_Write(LOG_LOG, "     Entry Flip:      %s", Cmd_YesNo(r[STARTCARD_ENTRY_FLIP]));
  Log_Write(LOG_LOG, "     Mag Encode Flip: %s", Cmd_YesNo(r[STARTCARD_MAG_FLIP]));
  Log_Write(LOG_LOG, "     Duplex:          %s", Cmd_YesNo(r[STARTCARD_DUPLEX]));
  Log_Write(LOG_LOG, "     Laminate:        %s", Cmd_YesNo(r[STARTCARD_LAMINATE]));
  Log_Write(LOG_LOG, "     Mag Encode:      %s", Cmd_YesNo(r[STARTCARD_MAG_ENCODE]));
  Log_Write(LOG_LOG, "     Mag PO Mode:     %d", r[STARTCARD_MAG_PO_MODE]);
  Log_Write(LOG_LOG, "     Eject Existing:  %d", r[STARTCARD_EJECT]);
}

// 'Cmd_LogStartSide()' - The lines of ICMD_STARTSIDE.
void Cmd_LogStartSide(const uint8_t* r) {
  Log_Write(LOG_LOG, "CMD: ICMD_STARTSIDE");
  Log_Write(LOG_LOG, "     Side: %d", Cmd_Int32(r + STARTSIDE_SIDE));
  Log_Write(LOG_LOG, "     YMC:  %s", Cmd_YesNo(r[STARTSIDE_YMC]));
  Log_Write(LOG_LOG, "     K:    %s", Cmd_YesNo(r[STARTSIDE_K]));
  Log_Write(LOG_LOG, "     UV:   %s", Cmd_YesNo(r[STARTSIDE_UV]));
  Log_Write(LOG_LOG, "     PO:   %s", Cmd_YesNo(r[STARTSIDE_PO]));
  Log_Write(LOG_LOG, "     MAC:  %d", r[STARTSIDE_MAC]);
  Log_Write(LOG_LOG, "     Secure Erase: %s", Cmd_YesNo(r[STARTSIDE_SECURE_ERASE]));
  Log_Write(LOG_LOG, "     LUT:  %d", r[STARTSIDE_LUT]);
}

// 'Cmd_LogRecord()' - The log lines of one record; unknown types log none.
void Cmd_LogRecord(const uint8_t* r, uint16_t type, uint32_t length) {
  switch (type) {
    case ICMD_STARTJOB:
      Log_Write(LOG_LOG, "CMD: ICMD_STARTJOB");
      Log_Write(LOG_LOG, "     Printer: %d", Cmd_Int32(r + STARTJOB_PRINTER));
      Log_Write(LOG_LOG, "     Job ID:  %d", Cmd_Int32(r + STARTJOB_JOBID));
      Log_Write(LOG_LOG, "     Copies:  %d", Cmd_Int32(r + STARTJOB_COPIES));
      break;
    case ICMD_ENDJOB: Log_Write(LOG_LOG, "CMD: ICMD_ENDJOB"); break;
    case ICMD_STARTCARD: Cmd_LogStartCard(r); break;
    case ICMD_ENDCARD: Log_Write(LOG_LOG, "CMD: ICMD_ENDCARD"); break;
    case ICMD_MAGENCODE: Log_Write(LOG_LOG, "CMD: ICMD_MAGENCODE"); break;
    case ICMD_STARTSIDE: Cmd_LogStartSide(r); break;
    case ICMD_ENDSIDE:
      Log_Write(LOG_LOG, "CMD: ICMD_ENDSIDE");
      Log_Write(LOG_LOG, "     Side: %d", Cmd_Int32(r + 6));
      break;
    case ICMD_STARTIMAGE: Log_Write(LOG_LOG, "CMD: ICMD_STARTIMAGE"); break;
    case ICMD_ENDIMAGE: Log_Write(LOG_LOG, "CMD: ICMD_ENDIMAGE"); break;
    case ICMD_IMAGE: Log_Write(LOG_INFO, "CMD: ICMD_IMAGE :: [%d]", static_cast<int>(length)); break;
    case ICMD_LUTTABLE: Log_Write(LOG_LOG, "CMD: ICMD_LUTTABLE"); break;
    default: break;
  }
}

}  // namespace

// 'Job_WriteCommand()' - Log a complete record and write its 6 + length
// bytes to the task's output with one fwrite, then flush; the record goes
// out whole or not at all (Rec_WriteWhole).  Write errors are not checked:
// the job goes on.  Returns 0.
int32_t Job_WriteCommand(TPrintingTask* task, const uint8_t* record) {
  Log_Write(LOG_ENTRYEXIT, ">>>> Job_WriteCommand");
  uint16_t type = Rec_Get16(record);
  uint32_t length = Rec_Get32(record + 2);
  Cmd_LogRecord(record, type, length);
  FILE* out = task->output ? task->output : stdout;
  Rec_WriteWhole(out, record, ICMD_HEADER_BYTES + static_cast<size_t>(length), nullptr, 0, true);
  Log_Write(LOG_ENTRYEXIT, "<<<< Job_WriteCommand");
  return 0;
}
