// TPrintingTask: the one job object, from raster input to command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include <cups/raster.h>

#include "options/area.h"
#include "options/mag.h"

// Side indices of the per-side option arrays.
constexpr int32_t SIDE_FRONT = 0;
constexpr int32_t SIDE_BACK = 1;
// Resin area groups and overlay area groups.
constexpr int32_t AREA_GROUP_INCLUDE = 0;   // resin: areas that take resin
constexpr int32_t AREA_GROUP_EXCLUDE = 1;   // resin: areas kept out
constexpr int32_t AREA_GROUP_PEELOFF = 0;   // overlay: areas where it is removed
constexpr int32_t AREA_GROUP_KEEP = 1;      // overlay: areas where it stays
constexpr int32_t AREAS_PER_GROUP = 5;

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
  const std::string& uvFile(int32_t side) const { return side ? backUVFile : frontUVFile; }

  int32_t argc;
  char** argv;                                  // not owned
  const cups_page_header2_t* pageHeader;        // not owned
  uint8_t* pageBuffer;                          // owned, may be null
  // One line of raster data, owned: where the rows of pages that are read
  // but never processed go (grown to the longest such line, kept for the
  // job).
  uint8_t* scratchRow;
  size_t scratchRowBytes;

  // Job option strings.
  std::string modelName;
  std::string serialNumber;
  std::string printerPlugin;
  std::string printerName;

  // Framing state.
  uint64_t cardId;
  int32_t jobId;
  int32_t copies;
  int32_t pageCount;
  int32_t subPage;
  int32_t sideIndex;
  int32_t jobComplete;
  int32_t cardOpen;
  int32_t sideOpen;
  int32_t duplex;
  int32_t tumble;

  // Job option record.
  int32_t printerModel;
  int32_t frontRibbon, backRibbon;
  int32_t frontResin, backResin;
  int32_t frontUV, backUV;
  int32_t frontPO, backPO;
  int32_t frontRotation, backRotation;
  int32_t frontLUTTable, backLUTTable;
  int32_t cardEjectExisting;
  int32_t cardThickness;
  int32_t cardLaminate;
  int32_t entryCardFlip;
  int32_t magEncode;
  int32_t magEncodeCardFlip;
  int32_t magPOMode;
  int32_t frontUVMAC, backUVMAC;
  int32_t frontSecureErase, backSecureErase;
  int32_t ribbonType;
  int32_t flipTurn;
  int32_t laminator;
  int32_t magEncoder;
  int32_t icEncoder;
  uint8_t lutTable[2][3][256];                  // [side][red, green, blue][level]
  uint8_t resinFlag[2];                         // [side]
  TArea resinAreas[2][2][AREAS_PER_GROUP];      // [side][include, exclude][area]
  TArea poAreas[2][2][AREAS_PER_GROUP];         // [side][peel-off, keep][area]
  std::string frontUVFile, backUVFile;
  TMagTrack magTracks[3];

  // Where the job command stream goes: standard output in the filter, a
  // memory stream or a file in tests.  Not owned.
  FILE* output;
};
