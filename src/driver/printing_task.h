// TPrintingTask: the one job object, from raster input to command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include <cups/raster.h>

#include "options/area.h"
#include "options/mag.h"
#include "options/sides.h"

class TPrintingTask {
 public:
  TPrintingTask(int32_t argc, char** argv);
  virtual ~TPrintingTask();

  TPrintingTask(const TPrintingTask&) = delete;
  TPrintingTask& operator=(const TPrintingTask&) = delete;

  // 'run()' - Carry the job from raster input to the job command stream;
  // the result is left in g_exitStatus.
  void run();

  // Per-side accessors of the option fields named front.../back...
  int32_t ribbon(int32_t side) const { return side ? backRibbon : frontRibbon; }
  int32_t resin(int32_t side) const { return side ? backResin : frontResin; }
  int32_t uv(int32_t side) const { return side ? backUV : frontUV; }
  int32_t po(int32_t side) const { return side ? backPO : frontPO; }
  int32_t rotation(int32_t side) const { return side ? backRotation : frontRotation; }
  int32_t lutCode(int32_t side) const { return side ? backLUTTable : frontLUTTable; }
  int32_t uvMAC(int32_t side) const { return side ? backUVMAC : frontUVMAC; }
  int32_t secureErase(int32_t side) const { return side ? backSecureErase : frontSecureErase; }
  int32_t blackMode(int32_t side) const { return side ? backBlackMode : frontBlackMode; }
  const std::string& uvFile(int32_t side) const { return side ? backUVFile : frontUVFile; }

  int32_t argc;
  char** argv;                                  // not owned
  const cups_page_header2_t* pageHeader = nullptr;   // not owned
  uint8_t* pageBuffer = nullptr;                     // owned, may be null
  // One line of raster data, owned: where the rows of pages that are read
  // but never processed go (grown to the longest such line, kept for the
  // job).
  uint8_t* scratchRow = nullptr;
  size_t scratchRowBytes = 0;

  // Job option strings.
  std::string modelName;
  std::string serialNumber;
  std::string printerPlugin;
  std::string printerName;

  // Framing state.
  uint64_t cardId = 0;
  int32_t jobId = 0;
  int32_t copies = 0;
  int32_t pageCount = 0;
  int32_t subPage = 0;
  int32_t sideIndex = 0;
  int32_t jobComplete = 0;
  int32_t cardOpen = 0;
  int32_t sideOpen = 0;
  int32_t duplex = 0;
  int32_t tumble = 0;
  // Pages read after the card was complete: the first one and how many
  // (for the end-of-job warning; they are never printed).
  int32_t firstPageBeyondCard = 0;
  int32_t pagesBeyondCard = 0;
  // 1 once a colour or black panel of the open side holds a printed dot
  // (for the warning about a side that prints nothing).
  int32_t sideHasInk = 0;

  // Job option record.
  int32_t printerModel = 0;
  int32_t frontRibbon = 2, backRibbon = 2;     // colour
  int32_t frontResin = 1, backResin = 1;
  int32_t frontUV = 0, backUV = 0;
  int32_t frontPO = 0, backPO = 0;
  int32_t frontRotation = 0, backRotation = 0;
  int32_t frontLUTTable = 0, backLUTTable = 0;
  int32_t cardEjectExisting = 0;
  int32_t cardThickness = 0;
  int32_t cardLaminate = 0;
  int32_t entryCardFlip = 0;
  int32_t magEncode = 0;
  int32_t magEncodeCardFlip = 0;
  int32_t magPOMode = 0;
  int32_t frontUVMAC = 0, backUVMAC = 0;
  int32_t frontSecureErase = 0, backSecureErase = 0;
  int32_t ribbonType = 0;
  int32_t flipTurn = 0;
  int32_t laminator = 0;
  int32_t magEncoder = 0;
  int32_t icEncoder = 0;
  uint8_t lutTable[2][3][256];                  // [side][red, green, blue][level], identity
  uint8_t resinFlag[2] = {};                    // [side]
  TArea resinAreas[2][2][AREAS_PER_GROUP] = {}; // [side][include, exclude][area]
  TArea poAreas[2][2][AREAS_PER_GROUP] = {};    // [side][peel-off, keep][area]
  std::string frontUVFile, backUVFile;
  TMagTrack magTracks[3] = {};
  // Black rendering of each side (frontBlackMode/backBlackMode):
  // BLACK_MODE_DIFFUSE, the designed one, or BLACK_MODE_SOLID.
  int32_t frontBlackMode = 0, backBlackMode = 0;

  // Where the job command stream goes: standard output in the filter, a
  // memory stream or a file in tests.  Not owned.
  FILE* output = stdout;
};
