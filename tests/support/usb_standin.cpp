// A stand-in for the spooler's usb backend.
// Copyright 2026 The rastertobrellian authors.
#include "support/usb_standin.h"

#include <sys/stat.h>

#include <sstream>

#include "support/process.h"

const char* const USB_LINE_1060 =
    "direct usb://Brellian/BR-1060?serial=ABC123&interface=1 \"Brellian BR-1060\" "
    "\"Brellian BR-1060\" \"MFG:Brellian;MDL:BR-1060;CMD:BRCS;CLS:PRINTER;SERN:ABC123;\" \"\"";
const char* const USB_LINE_1035 =
    "direct usb://Brellian/BR-1035?serial=K35 \"Brellian BR-1035\" \"Brellian BR-1035\" "
    "\"MFG:Brellian;MDL:BR-1035;CLS:PRINTER;SERN:K35;\" \"\"";
const char* const USB_LINE_1030 =
    "direct usb://Brellian/BR-1030?serial=S30 \"Brellian BR-1030\" \"Brellian BR-1030\" "
    "\"MFG:Brellian;MDL:BR-1030;CLS:PRINTER\" \"\"";
const char* const USB_LINE_OTHER =
    "direct usb://Acme/Laser%20200?serial=77 \"Acme Laser 200\" \"Acme Laser 200\" "
    "\"MFG:Acme;MDL:Laser 200;CLS:PRINTER;SERN:77;\" \"\"";

std::string TUsbStandIn::Capture() const { return Test_ReadFile(dir + "/capture.bin"); }
std::string TUsbStandIn::CaptureArgs() const { return Test_ReadFile(dir + "/capture.args"); }

int TUsbStandIn::Looks() const {
  std::string text = Test_ReadFile(dir + "/looks");
  int n = 0;
  for (char c : text) n += c == '\n';
  return n;
}

TUsbStandIn Usb_MakeStandIn(const std::string& dir, const std::vector<std::string>& lines,
                            int hiddenLooks) {
  Test_MakeDirs(dir);
  chmod(dir.c_str(), 0777);
  TUsbStandIn s{dir, dir + "/usb"};
  std::string listing;
  for (const std::string& l : lines) listing += l + "\n";
  Test_WriteFile(dir + "/listing", listing);
  std::ostringstream script;
  script << "#!/bin/sh\n"
            "# Stand-in for the usb backend.\n"
            "d='" << dir << "'\n"
            "if [ $# -eq 0 ]; then\n"
            "  echo look >> \"$d/looks\"\n"
            "  [ \"$(wc -l < \"$d/looks\")\" -le " << hiddenLooks << " ] && exit 0\n"
            "  cat \"$d/listing\"\n"
            "  exit 0\n"
            "fi\n"
            "printf '%s\\n' \"$DEVICE_URI\" \"$0\" \"$@\" > \"$d/capture.args\"\n"
            "if [ -n \"$6\" ]; then cat \"$6\" > \"$d/capture.part\"; else cat > \"$d/capture.part\"; fi\n"
            "mv \"$d/capture.part\" \"$d/capture.bin\"\n"
            "[ -f \"$d/exit-status\" ] && exit \"$(cat \"$d/exit-status\")\"\n"
            "exit 0\n";
  Test_WriteFile(s.program, script.str());
  chmod(s.program.c_str(), 0755);
  return s;
}

std::string Usb_UsbbrPath() { return std::string(BRELLIAN_BACKEND_DIR) + "/usbbr"; }
