// The record types of a job command stream, read with the stream reader.
// Copyright 2026 The rastertobrellian authors.
#include "support/stream_types.h"

#include "jobstream/stream_reader.h"

std::vector<uint16_t> Test_RecordTypes(const std::string& stream) {
  TStreamCheck check;
  int32_t rc = Stream_Read(stream, &check);
  std::vector<uint16_t> types;
  for (const TStreamRecord& r : check.records) types.push_back(r.type);
  if (rc != 0) types.push_back(0xFFFF);
  return types;
}
