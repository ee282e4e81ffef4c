// One device line of a CUPS backend's discovery output, parsed and written.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// A device as a backend lists it: class URI "make and model" "info"
// "device ID" "location".
struct TBackendDevice {
  std::string deviceClass;  // "direct", "network", ...
  std::string uri;
  std::string makeModel;
  std::string info;
  std::string deviceId;     // IEEE 1284 device ID, may be empty
  std::string location;
};

// 'Backend_ParseLine()' - Split one discovery line.  The class and URI are
// words; the other fields are double-quoted, a backslash quoting the next
// character.  Missing trailing fields stay empty.  False when the line has
// no class or no URI (for example a blank line).
bool Backend_ParseLine(const std::string& line, TBackendDevice* device);

// 'Backend_UriQueryValue()' - The value of name in the query of uri ("?a=1&b=2"),
// up to the next "&"; empty when absent.
std::string Backend_UriQueryValue(const std::string& uri, const std::string& name);
