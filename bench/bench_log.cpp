// Micro-benchmark of one log line written to the system log directory, as
// the filter writes its header dumps (the file kept open between lines).
// Copyright 2026 The rastertobrellian authors.
#include <benchmark/benchmark.h>

#include <string>
#include <unistd.h>

#include "brellian_paths.h"
#include "log/log.h"

namespace {

// 'BM_LogLine' - One ordinary line at the default level to the system
// destination of the benchmark build's system root.
void BM_LogLine(benchmark::State& state) {
  Log_SetFileName("bench-log.log");
  Log_SetOutputMask(LOG_OUT_SYSTEM);
  Log_SetLevel(LOG_LOG);
  int32_t value = 0;
  for (auto _ : state) Log_Write(LOG_LOG, "  cupsBytesPerLine::[%d]", ++value);
  Log_SetOutputMask(0);
  unlink((std::string(BRELLIAN_LOG_DIR) + "/bench-log.log").c_str());
}
BENCHMARK(BM_LogLine)->Unit(benchmark::kMicrosecond);

}  // namespace
