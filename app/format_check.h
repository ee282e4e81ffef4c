// Documents the printer cannot print are refused at submission, with client-error-document-format-not-supported.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

// 'Format_Refusal()' - Whether a request may go on, given the formats the
// printer lists in document-format-supported ("application/octet-stream"
// among them means only "sniff the data"), the operation, the
// document-format the client sent (nullptr when none) and the format
// PAPPL found in the data (nullptr when it found none or read no data).
// Returns "" when it may, else the message of the refusal (at most 255
// bytes), which names the format and what to send instead.
std::string Format_Refusal(ipp_attribute_t* supported, ipp_op_t op, const char* sent, const char* detected);

// 'Format_Active()' - Whether unprintable documents are refused at
// submission (built against PAPPL 1.3, whose check looks at no list).
// main() calls it, which also keeps the replacement in the executable.
bool Format_Active();
