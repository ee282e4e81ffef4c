// A stand-in for the spooler's usb backend, which the test build's usbbr
// backend runs instead of the real one (BRELLIAN_USBBR_LOWER): it lists the
// printers written into a file and captures what it is asked to print.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

// Discovery lines of the stand-in's printers, as the usb backend writes them.
extern const char* const USB_LINE_1060;   // BR-1060, serial ABC123, print interface 1
extern const char* const USB_LINE_1035;   // BR-1035, serial K35, interface 0
extern const char* const USB_LINE_1030;   // BR-1030, device ID without SERN:, serial S30 in the URI
extern const char* const USB_LINE_OTHER;  // another maker's printer

// The stand-in in dir: dir/usb (the program), dir/listing (its discovery
// output), dir/capture.bin (the last job it printed), dir/capture.args
// (DEVICE_URI and arguments of that job), dir/looks (one line per
// discovery run), dir/exit-status (its exit status when printing, 0 if
// absent).
struct TUsbStandIn {
  std::string dir;
  std::string program;
  std::string Capture() const;
  std::string CaptureArgs() const;
  int Looks() const;
};

// 'Usb_MakeStandIn()' - Write the stand-in into dir (created) listing lines.
// With hiddenLooks > 0 the first hiddenLooks discovery runs list nothing,
// as if the printers were not yet connected.
TUsbStandIn Usb_MakeStandIn(const std::string& dir, const std::vector<std::string>& lines,
                            int hiddenLooks = 0);

// 'Usb_UsbbrPath()' - The built usbbr backend.
std::string Usb_UsbbrPath();
