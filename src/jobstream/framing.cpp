// Job, card and side framing of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#include "jobstream/framing.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "driver/printing_task.h"
#include "jobstream/records.h"
#include "log/log.h"
#include "util/sys.h"

namespace {

// Card ids keep the low 31 bits of the millisecond clock.
constexpr uint64_t CARD_ID_MASK = 0x7FFFFFFF;

// 'Job_ParseJobId()' - The job-id argument as a decimal number: 0 when it is
// missing, not a number, or outside the 32-bit signed range.
int32_t Job_ParseJobId(const char* text) {
  if (!text) return 0;
  errno = 0;
  long value = strtol(text, nullptr, 10);
  if (errno == ERANGE || value > INT32_MAX || value < INT32_MIN) return 0;
  return static_cast<int32_t>(value);
}

}  // namespace

// 'Job_ProcessHeader()' - Store the job id and write ICMD_STARTJOB.
int32_t Job_ProcessHeader(TPrintingTask* task, const char* jobIdText, const char* title) {
  Log_Write(LOG_ENTRYEXIT, ">>>> Job_ProcessHeader");
  task->jobId = Job_ParseJobId(jobIdText);
  uint8_t record[ICMD_STARTJOB_BYTES];
  Rec_StartJob(record, task->printerModel, task->jobId, task->copies,
               (title && *title) ? title : nullptr, task->printerPlugin.c_str(),
               task->printerName.c_str());
  Job_WriteCommand(task, record);
  Log_Write(LOG_ENTRYEXIT, "<<<< Job_ProcessHeader");
  return 0;
}

// 'Job_ProcessFooter()' - Log the framing state and write ICMD_ENDJOB.
int32_t Job_ProcessFooter(TPrintingTask* task) {
  Log_Write(LOG_ENTRYEXIT, ">>>> Job_ProcessFooter");
  Log_Write(LOG_LOG, "SIDE:    %d", task->sideIndex);
  Log_Write(LOG_LOG, "PAGE:    %d", task->pageCount);
  Log_Write(LOG_LOG, "SUBPAGE: %d", task->subPage);
  Log_Write(LOG_LOG, "JCOMP:   %d", task->jobComplete);
  uint8_t record[ICMD_ENDJOB_BYTES];
  Rec_EndJob(record, task->jobId);
  Job_WriteCommand(task, record);
  Log_Write(LOG_ENTRYEXIT, "<<<< Job_ProcessFooter");
  return 0;
}

// 'Job_StartCard()' - Open the card with a new id from the millisecond
// clock; the duplex flag is the task's current one.
void Job_StartCard(TPrintingTask* task) {
  task->cardId = Sys_NowMs() & CARD_ID_MASK;
  task->cardOpen = 1;
  task->sideIndex = 0;
  task->subPage = 0;
  TCardFields fields;
  fields.copies = task->copies;
  fields.entryCardFlip = task->entryCardFlip;
  fields.magEncodeCardFlip = task->magEncodeCardFlip;
  fields.duplex = task->duplex;
  fields.cardLaminate = task->cardLaminate;
  fields.magEncode = task->magEncode;
  fields.magPOMode = task->magPOMode;
  fields.cardThickness = task->cardThickness;
  fields.cardEjectExisting = task->cardEjectExisting;
  uint8_t record[ICMD_STARTCARD_BYTES];
  Rec_StartCard(record, task->cardId, fields);
  Job_WriteCommand(task, record);
}

// 'Job_WriteMagEncode()' - Write ICMD_MAGENCODE with the tracks that hold
// something; nothing at all when none does.
void Job_WriteMagEncode(TPrintingTask* task) {
  uint8_t record[ICMD_MAGENCODE_BYTES];
  if (Rec_MagEncode(record, task->magTracks) > 0) Job_WriteCommand(task, record);
}

// 'Job_StartSide()' - Open side sideIndex.  A monochrome side has no colour
// panel, so it begins with its black panel.
void Job_StartSide(TPrintingTask* task) {
  int32_t side = task->sideIndex;
  TSideFields fields;
  fields.side = side;
  fields.ribbon = task->ribbon(side);
  fields.uv = task->uv(side);
  fields.po = task->po(side);
  fields.uvMAC = task->uvMAC(side);
  fields.secureErase = task->secureErase(side);
  fields.lutCode = task->lutCode(side);
  uint8_t record[ICMD_STARTSIDE_BYTES];
  Rec_StartSide(record, fields);
  task->cardOpen = 1;
  task->sideOpen = 1;
  task->subPage = fields.ribbon == 0 ? 1 : 0;
  Job_WriteCommand(task, record);
}

// 'Job_WriteLUTTable()' - Write the lookup table of the current side.
void Job_WriteLUTTable(TPrintingTask* task) {
  uint8_t record[ICMD_LUTTABLE_BYTES];
  Rec_LUTTable(record, task->lutTable[task->sideIndex ? 1 : 0]);
  Job_WriteCommand(task, record);
}

// 'Job_EndSide()' - Close the side.  The duplex flag is read now: a simplex
// job, or the back side of a duplex one, also closes the card.  Returns 0.
int32_t Job_EndSide(TPrintingTask* task) {
  uint8_t record[ICMD_ENDSIDE_BYTES];
  Rec_EndSide(record, task->sideIndex);
  Job_WriteCommand(task, record);
  task->sideOpen = 0;
  task->subPage = 0;
  if (task->duplex == 0) {
    Job_EndCard(task);
  } else if (++task->sideIndex >= 2) {
    Job_EndCard(task);
  }
  return 0;
}

// 'Job_EndCard()' - Close the card.
void Job_EndCard(TPrintingTask* task) {
  task->cardOpen = 0;
  task->sideIndex = 0;
  task->subPage = 0;
  uint8_t record[ICMD_ENDCARD_BYTES];
  Rec_EndCard(record, task->cardId);
  Job_WriteCommand(task, record);
}

// 'Job_OpenSide()' - What is not open yet: the card with its magnetic
// record, then the side with its lookup table.
void Job_OpenSide(TPrintingTask* task) {
  if (task->cardOpen == 0) {
    Job_StartCard(task);
    Job_WriteMagEncode(task);
  }
  if (task->sideOpen == 0) {
    Job_StartSide(task);
    Job_WriteLUTTable(task);
  }
}
