// Job, card and side framing of the job command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

class TPrintingTask;

// 'Job_ProcessHeader()' - Write ICMD_STARTJOB; sets jobId.  jobIdText and
// title may be null.  Returns 0.
int32_t Job_ProcessHeader(TPrintingTask* task, const char* jobIdText, const char* title);
// 'Job_ProcessFooter()' - Log the framing state and write ICMD_ENDJOB.
int32_t Job_ProcessFooter(TPrintingTask* task);
// 'Job_StartCard()' - Write ICMD_STARTCARD with a new card id.
void Job_StartCard(TPrintingTask* task);
// 'Job_WriteMagEncode()' - Write ICMD_MAGENCODE when a track has data.
void Job_WriteMagEncode(TPrintingTask* task);
// 'Job_StartSide()' - Write ICMD_STARTSIDE for sideIndex.
void Job_StartSide(TPrintingTask* task);
// 'Job_WriteLUTTable()' - Write ICMD_LUTTABLE of the current side.
void Job_WriteLUTTable(TPrintingTask* task);
// 'Job_OpenSide()' - Open the card (Job_StartCard, Job_WriteMagEncode) and
// the side (Job_StartSide, Job_WriteLUTTable) when they are not open: the
// order page processing writes them in before a side's first panel.
void Job_OpenSide(TPrintingTask* task);
// 'Job_EndSide()' - Write ICMD_ENDSIDE; ends the card after its last side.
int32_t Job_EndSide(TPrintingTask* task);
// 'Job_EndCard()' - Write ICMD_ENDCARD.
void Job_EndCard(TPrintingTask* task);
