// Why printers on USB get a usbbr URI: the filter takes everything behind
// "?serial=" as the serial number, so the usb backend's URI of a printer on
// interface 1 loses its presets, and the usbbr URI of the same printer
// keeps them.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "backend/backend_line.h"
#include "options/settings.h"
#include "support/process.h"
#include "support/usb_standin.h"
#include "backend/usbbr_device.h"

namespace {

// 'LogHas()' - True when a line of the filter's log contains text.
bool LogHas(const std::string& text) {
  for (const std::string& line : Test_LogMessages())
    if (line.find(text) != std::string::npos) return true;
  return false;
}

// 'RunWithUri()' - The filter on an empty job with DEVICE_URI uri.
void RunWithUri(const std::string& uri) {
  Test_ResetLog();
  TProcessOptions options;
  options.env["PPD"] = Test_GeneratedPPD(1060);
  options.env["DEVICE_URI"] = uri;
  Test_RunFilter({"3", "u", "t", "1", ""}, options);
}

}  // namespace

TEST(UsbbrSerial, UsbUriWithInterfaceLosesThePresetsAndUsbbrUriKeepsThem) {
  TBrellianSettings presets;
  presets.modelName = "br-1060";
  presets.serialNumber = "abc123";
  presets.plugin = "plugin-of-abc123";
  ASSERT_TRUE(presets.Save());

  TBackendDevice lower, usbbr;
  ASSERT_TRUE(Backend_ParseLine(USB_LINE_1060, &lower));
  ASSERT_TRUE(Usbbr_FromLower(lower, &usbbr));
  ASSERT_EQ("usb://Brellian/BR-1060?serial=ABC123&interface=1", lower.uri);

  RunWithUri(lower.uri);
  EXPECT_TRUE(LogHas("serialNumber::[ABC123&interface=1]"));
  EXPECT_TRUE(LogHas("TBrellianSettings::Load --> failed to open settings file"));
  EXPECT_FALSE(LogHas("plugin-of-abc123"));

  RunWithUri(usbbr.uri);
  EXPECT_TRUE(LogHas("serialNumber::[ABC123]"));
  EXPECT_FALSE(LogHas("TBrellianSettings::Load --> failed"));
  EXPECT_TRUE(LogHas("printerPlugin::[plugin-of-abc123]"));
}

TEST(UsbbrDeviceLine, QuotedFieldsAndQueryValues) {
  TBackendDevice d;
  ASSERT_TRUE(Backend_ParseLine("direct usb://A/B?serial=1&interface=2 \"A \\\"B\\\"\" info \"ID:1;\"", &d));
  EXPECT_EQ("direct", d.deviceClass);
  EXPECT_EQ("usb://A/B?serial=1&interface=2", d.uri);
  EXPECT_EQ("A \"B\"", d.makeModel);
  EXPECT_EQ("info", d.info);
  EXPECT_EQ("ID:1;", d.deviceId);
  EXPECT_EQ("", d.location);
  EXPECT_EQ("1", Backend_UriQueryValue(d.uri, "serial"));
  EXPECT_EQ("2", Backend_UriQueryValue(d.uri, "interface"));
  EXPECT_EQ("", Backend_UriQueryValue(d.uri, "missing"));
  EXPECT_FALSE(Backend_ParseLine("", &d));
  EXPECT_FALSE(Backend_ParseLine("direct", &d));
}

TEST(UsbbrDeviceLine, OnlyTheThreeModelsOfTheMakerAreCardPrinters) {
  TBackendDevice lower, d;
  lower.uri = "usb://x/y?serial=9";
  const char* yes[] = {"MFG:Brellian;MDL:BR-1030;", "MFG:brellian;MDL:br-1035;", "MDL:BR-1060;MFG:BRELLIAN;"};
  for (const char* id : yes) {
    lower.deviceId = id;
    EXPECT_TRUE(Usbbr_FromLower(lower, &d)) << id;
  }
  const char* no[] = {"MFG:Brellian;MDL:BR-1031;", "MFG:Other;MDL:BR-1060;", "MDL:BR-1060;", ""};
  for (const char* id : no) {
    lower.deviceId = id;
    EXPECT_FALSE(Usbbr_FromLower(lower, &d)) << id;
  }
}

TEST(UsbbrDeviceLine, UriMatching) {
  TBackendDevice d;
  d.uri = "usbbr://Brellian/BR-1060?serial=ABC123";
  EXPECT_TRUE(Usbbr_Matches("usbbr://Brellian/BR-1060?serial=ABC123", d));
  EXPECT_TRUE(Usbbr_Matches("usbbr://Brellian/BR-1060", d));
  EXPECT_FALSE(Usbbr_Matches("usbbr://Brellian/BR-1060?serial=ABC12", d));
  EXPECT_FALSE(Usbbr_Matches("usbbr://Brellian/BR-1035", d));
  std::string error;
  EXPECT_TRUE(Usbbr_CheckUri("usbbr://Brellian/BR-1060", &error));
  EXPECT_FALSE(Usbbr_CheckUri("usbbr://Brellian/", &error));
  EXPECT_FALSE(Usbbr_CheckUri("socket://host:9100/?serial=1", &error));
}
