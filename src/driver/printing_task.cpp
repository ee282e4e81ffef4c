// TPrintingTask construction and destruction.
// Copyright 2026 The rastertobrellian authors.
#include "driver/printing_task.h"

#include <cstdlib>
#include <cstring>

#include "log/log.h"
#include "status/tables.h"

// The model a job prints on when nothing says otherwise.
constexpr uint32_t kDefaultModel = 1060;

TPrintingTask::TPrintingTask(int32_t argcIn, char** argvIn)
    : argc(argcIn),
      argv(argvIn),
      pageHeader(nullptr),
      pageBuffer(nullptr),
      scratchRow(nullptr),
      scratchRowBytes(0),
      modelName(Status_ModelName(kDefaultModel)),
      cardId(0),
      jobId(0),
      copies(0),
      pageCount(0),
      subPage(0),
      sideIndex(0),
      jobComplete(0),
      cardOpen(0),
      sideOpen(0),
      duplex(0),
      tumble(0),
      printerModel(0),
      frontRibbon(2),
      backRibbon(2),
      frontResin(1),
      backResin(1),
      frontUV(0),
      backUV(0),
      frontPO(0),
      backPO(0),
      frontRotation(0),
      backRotation(0),
      frontLUTTable(0),
      backLUTTable(0),
      cardEjectExisting(0),
      cardThickness(0),
      cardLaminate(0),
      entryCardFlip(0),
      magEncode(0),
      magEncodeCardFlip(0),
      magPOMode(0),
      frontUVMAC(0),
      backUVMAC(0),
      frontSecureErase(0),
      backSecureErase(0),
      ribbonType(0),
      flipTurn(0),
      laminator(0),
      magEncoder(0),
      icEncoder(0),
      output(stdout) {
  for (auto& side : lutTable)
    for (auto& channel : side)
      for (int i = 0; i < 256; ++i) channel[i] = static_cast<uint8_t>(i);
  memset(resinFlag, 0, sizeof resinFlag);
  memset(resinAreas, 0, sizeof resinAreas);
  memset(poAreas, 0, sizeof poAreas);
  memset(magTracks, 0, sizeof magTracks);
}

TPrintingTask::~TPrintingTask() {
  Log_Write(LOG_LOG, "~TPrintingTask --> gracefull exit.");
  free(pageBuffer);
  pageBuffer = nullptr;
  free(scratchRow);
  scratchRow = nullptr;
}
