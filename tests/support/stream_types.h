// The record types of a job command stream, read with the stream reader.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// 'Test_RecordTypes()' - The types of the records of stream, in order, as
// Stream_Read finds them.  When the reader finds a fault (a record cut
// short, a record out of order or of the wrong length) the types read
// before it are followed by 0xFFFF.
std::vector<uint16_t> Test_RecordTypes(const std::string& stream);
