// The usbbr backend's view of USB printers.
// Copyright 2026 The rastertobrellian authors.
#include "backend/usbbr_device.h"

#include <strings.h>

#include <cstdlib>

#include "status/device_id.h"
#include "status/models.h"

namespace {

// 'Usbbr_Take()' - A malloc'd string as std::string (empty for null), freed.
std::string Usbbr_Take(char* text) {
  std::string out = text ? text : "";
  free(text);
  return out;
}

// 'Usbbr_IsCardPrinter()' - True when the device ID names the maker and a
// model of the model table (Model_FromDeviceId).
bool Usbbr_IsCardPrinter(const std::string& deviceId) { return Model_FromDeviceId(deviceId.c_str()) != nullptr; }

}  // namespace

bool Usbbr_FromLower(const TBackendDevice& lower, TBackendDevice* device) {
  if (!Usbbr_IsCardPrinter(lower.deviceId)) return false;
  std::string id = lower.deviceId;
  std::string usbSerial = Backend_UriQueryValue(lower.uri, "serial");
  if (id.find("SERN:") == std::string::npos && !usbSerial.empty()) {
    if (!id.empty() && id.back() != ';') id += ';';
    id += "SERN:" + usbSerial + ";";
  }
  char *uri = nullptr, *makeModel = nullptr, *serial = nullptr;
  DeviceId_Parse(id.c_str(), &uri, &makeModel, nullptr, &serial);
  TBackendDevice d;
  d.deviceClass = "direct";
  d.uri = Usbbr_Take(uri);
  d.makeModel = Usbbr_Take(makeModel);
  std::string sern = Usbbr_Take(serial);
  d.info = sern.empty() ? d.makeModel : d.makeModel + " (serial " + sern + ")";
  d.deviceId = id;
  d.location = lower.location;
  *device = d;
  return true;
}

bool Usbbr_CheckUri(const std::string& uri, std::string* error) {
  const std::string scheme = "usbbr://";
  if (uri.compare(0, scheme.size(), scheme) != 0) {
    *error = "the device URI \"" + uri + "\" does not start with \"usbbr://\"";
    return false;
  }
  size_t query = uri.find('?');
  if (query == std::string::npos) query = uri.size();
  std::string path = uri.substr(scheme.size(), query - scheme.size());
  size_t slash = path.find('/');
  if (slash == 0 || slash == std::string::npos || slash + 1 >= path.size()) {
    *error = "the device URI \"" + uri + "\" names no manufacturer and model (usbbr://MAKER/MODEL)";
    return false;
  }
  return true;
}

bool Usbbr_Matches(const std::string& uri, const TBackendDevice& device) {
  if (uri.find("?serial=") != std::string::npos) return uri == device.uri;
  return uri == device.uri.substr(0, device.uri.find('?'));
}
