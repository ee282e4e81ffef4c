// IEEE 1284 device identification strings and the printer's device URI.
// Copyright 2026 The rastertobrellian authors.
#include "status/device_id.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Size of the work buffers of the URI and of its "?serial=" part; longer
// URIs are cut to fit.
constexpr size_t kUriBytes = 1024;

// 'DeviceId_Dup()' - A malloc'd copy of text ("" for null); null when out of
// memory.
char* DeviceId_Dup(const char* text) { return strdup(text ? text : ""); }

// 'DeviceId_Join()' - "MFG MDL" in a new string; null when out of memory.
char* DeviceId_Join(const char* mfg, const char* mdl) {
  size_t size = strlen(mfg) + 1 + strlen(mdl) + 1;
  char* out = static_cast<char*>(malloc(size));
  if (out) snprintf(out, size, "%s %s", mfg, mdl);
  return out;
}

// 'DeviceId_BuildUri()' - "usbbr://MFG/MDL", then "?serial=SERN" when the
// serial is known, bounded by the work buffer.  A missing manufacturer or
// model is written as the empty string.
char* DeviceId_BuildUri(const char* mfg, const char* mdl, const char* sern) {
  char uri[kUriBytes];
  char query[kUriBytes];
  snprintf(uri, sizeof uri, "usbbr://%s/%s", mfg ? mfg : "", mdl ? mdl : "");
  if (sern) {
    snprintf(query, sizeof query, "?serial=%s", sern);
    size_t used = strlen(uri);
    snprintf(uri + used, sizeof uri - used, "%s", query);
  }
  return strdup(uri);
}

}  // namespace

// 'DeviceId_GetValue()' - Plain substring search for key; the value runs to
// the next ";" or the end of deviceId.
char* DeviceId_GetValue(const char* key, const char* deviceId) {
  if (!key || !*key || !deviceId) return nullptr;
  const char* found = strstr(deviceId, key);
  if (!found) return nullptr;
  const char* value = found + strlen(key);
  const char* end = strchr(value, ';');
  size_t length = end ? static_cast<size_t>(end - value) : strlen(value);
  return strndup(value, length);
}

// 'DeviceId_Parse()' - Make and model, model, serial number and URI of a
// device ID, each only when its out pointer is given.
int32_t DeviceId_Parse(const char* deviceId, char** uri, char** makeModel, char** model,
                       char** serial) {
  char* mfg = DeviceId_GetValue("MFG:", deviceId);
  char* mdl = DeviceId_GetValue("MDL:", deviceId);
  char* sern = DeviceId_GetValue("SERN:", deviceId);
  char* desc = DeviceId_GetValue("DESC:", deviceId);

  if (makeModel) {
    if (desc)
      *makeModel = DeviceId_Dup(desc);
    else if (mdl && mfg)
      *makeModel = DeviceId_Join(mfg, mdl);
    else if (mdl)
      *makeModel = DeviceId_Dup(mdl);
    else
      *makeModel = DeviceId_Dup(mfg);
  }
  // In every case above the model is MDL, or empty when MDL is missing.
  if (model) *model = DeviceId_Dup(mdl);
  if (uri) *uri = DeviceId_BuildUri(mfg, mdl, sern);
  if (serial) *serial = DeviceId_Dup(sern);

  free(mfg);
  free(mdl);
  free(sern);
  free(desc);
  return 0;
}
