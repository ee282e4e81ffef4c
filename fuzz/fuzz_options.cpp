// Fuzz target: the option reader on a model PPD with arbitrary option
// strings, copies, titles, job ids, device URIs and queue names, and the job
// header that carries them.
// Copyright 2026 The rastertobrellian authors.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "driver/printing_task.h"
#include "fuzz/fuzz_common.h"
#include "jobstream/framing.h"
#include "options/read_options.h"
#include "status/models.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Fuzz_Init();
  static FILE* sink = fopen("/dev/null", "wb");
  // options, copies, title, job id, serial number, queue name
  std::vector<std::string> f = Fuzz_Fields(data, size, 6);
  static const std::string ppd = std::string(BRELLIAN_FUZZ_PPD_DIR) + "/" + Model_Default().ppdName;
  setenv("PPD", ppd.c_str(), 1);
  std::string uri = "usbbr://Brellian/X?serial=" + f[4];
  setenv("DEVICE_URI", uri.c_str(), 1);
  setenv("PRINTER", f[5].c_str(), 1);
  char* argv[] = {nullptr};
  TPrintingTask task(6, argv);
  task.output = sink;
  Job_ReadOptions(&task, f[0].c_str(), f[1].c_str());
  if (task.copies < 1) abort();
  // Whatever the PPD says, the job prints on a model of the table.
  if (!Model_Find(static_cast<uint32_t>(task.printerModel))) abort();
  if (task.frontLUTTable < 0 || task.frontLUTTable > 3) abort();
  if (task.frontUV < 0 || task.frontUV > 6 || task.frontPO < 0 || task.frontPO > 12) abort();
  Job_ProcessHeader(&task, f[3].c_str(), f[2].c_str());
  Job_ProcessFooter(&task);
  return 0;
}
