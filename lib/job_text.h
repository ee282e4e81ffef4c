// Text of a checked job command stream: one line per record and a verdict.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

// 'Inspect_PanelTypeName()' - "color", "k", "uv", "po", or "unknown".
const char* Inspect_PanelTypeName(uint32_t panelType);

// 'Inspect_Fields()' - The decoded fields of one record (not ICMD_IMAGE) as
// "name=value" words, e.g. "side=0 YMC=yes K=no UV=no PO=no MAC=0
// secureErase=no LUT=0".
std::string Inspect_Fields(const TStreamRecord& rec);

// 'Inspect_Listing()' - One line per record: offset (10 columns), record name
// (16 columns) and fields.  The ICMD_IMAGE records of one image are
// summarised in one line at the offset of the first, unless eachChunk is
// set, which gives every chunk its own line.
std::vector<std::string> Inspect_Listing(const TStreamCheck& check, bool eachChunk);

// 'Inspect_Verdict()' - "OK: ...", "CUT: ..." or "ERROR at offset N: ...".
std::string Inspect_Verdict(const TStreamCheck& check);
