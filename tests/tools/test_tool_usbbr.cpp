// The usbbr backend run as the spooler runs it, over a stand-in for the usb
// backend: discovery lines, the printer a URI names, the job handed over,
// waiting for a printer that is not connected, cancel, and bad input.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/process.h"
#include "support/usb_standin.h"

namespace {

std::string WorkDir(const std::string& name) {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/usbbr-tests/" + name;
  Test_RemoveTree(dir);
  return dir;
}

// 'RunUsbbr()' - usbbr with args over the stand-in, DEVICE_URI uri.
TProcessResult RunUsbbr(const TUsbStandIn& lower, const std::vector<std::string>& args,
                        const std::string& uri, TProcessOptions options = TProcessOptions()) {
  std::vector<std::string> argv = {Usb_UsbbrPath()};
  argv.insert(argv.end(), args.begin(), args.end());
  options.env["BRELLIAN_USBBR_LOWER"] = lower.program;
  if (uri.empty()) options.unsetEnv.push_back("DEVICE_URI");
  else options.env["DEVICE_URI"] = uri;
  return Test_RunProcess(argv, options);
}

const std::vector<std::string> kJobArgs = {"12", "alice", "Badge", "1", "frontRibbon=ColorK"};

}  // namespace

TEST(UsbbrBackend, DiscoveryListsTheCardPrintersAsUsbbrUris) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("discover"),
                                      {USB_LINE_OTHER, USB_LINE_1060, USB_LINE_1035, USB_LINE_1030});
  TProcessResult r = RunUsbbr(lower, {}, "");
  EXPECT_EQ(0, r.status) << r.err;
  std::vector<std::string> expected = {
      "direct usbbr://Brellian/BR-1060?serial=ABC123 \"Brellian BR-1060\" \"Brellian BR-1060 (serial ABC123)\" "
      "\"MFG:Brellian;MDL:BR-1060;CMD:BRCS;CLS:PRINTER;SERN:ABC123;\" \"\"",
      "direct usbbr://Brellian/BR-1035?serial=K35 \"Brellian BR-1035\" \"Brellian BR-1035 (serial K35)\" "
      "\"MFG:Brellian;MDL:BR-1035;CLS:PRINTER;SERN:K35;\" \"\"",
      // No SERN: in the device ID: the serial of the usb URI is added.
      "direct usbbr://Brellian/BR-1030?serial=S30 \"Brellian BR-1030\" \"Brellian BR-1030 (serial S30)\" "
      "\"MFG:Brellian;MDL:BR-1030;CLS:PRINTER;SERN:S30;\" \"\"",
  };
  EXPECT_EQ(expected, Test_Lines(r.out));
}

TEST(UsbbrBackend, DiscoveryWithNoCardPrinterListsNothing) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("discover-none"), {USB_LINE_OTHER});
  TProcessResult r = RunUsbbr(lower, {}, "");
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.out);
}

TEST(UsbbrBackend, JobOnStandardInputGoesToThePrinterWithItsInterface) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-stdin"), {USB_LINE_OTHER, USB_LINE_1035, USB_LINE_1060});
  TProcessOptions options;
  options.input = std::string("job\0stream\xff", 11);
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ(options.input, lower.Capture());
  std::vector<std::string> args = Test_Lines(lower.CaptureArgs());
  ASSERT_EQ(7u, args.size()) << lower.CaptureArgs();
  EXPECT_EQ("usb://Brellian/BR-1060?serial=ABC123&interface=1", args[0]);  // DEVICE_URI
  EXPECT_EQ(lower.program, args[1]);
  EXPECT_EQ(kJobArgs, std::vector<std::string>(args.begin() + 2, args.end()));
  EXPECT_EQ(std::string::npos, r.err.find("connecting-to-device")) << r.err;
}

TEST(UsbbrBackend, JobFileGoesToThePrinterOfItsSerial) {
  std::string dir = WorkDir("print-file");
  TUsbStandIn lower = Usb_MakeStandIn(dir, {USB_LINE_1060, USB_LINE_1035});
  Test_WriteFile(dir + "/job.bin", "file job");
  std::vector<std::string> args = kJobArgs;
  args.push_back(dir + "/job.bin");
  TProcessResult r = RunUsbbr(lower, args, "usbbr://Brellian/BR-1035?serial=K35");
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("file job", lower.Capture());
  EXPECT_EQ("usb://Brellian/BR-1035?serial=K35", Test_Lines(lower.CaptureArgs())[0]);
  EXPECT_EQ(dir + "/job.bin", Test_Lines(lower.CaptureArgs()).back());
}

TEST(UsbbrBackend, UriWithoutSerialTakesTheFirstPrinterOfItsModel) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-noserial"), {USB_LINE_1035, USB_LINE_1060});
  TProcessOptions options;
  options.input = "x";
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060", options);
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("usb://Brellian/BR-1060?serial=ABC123&interface=1", Test_Lines(lower.CaptureArgs())[0]);
}

TEST(UsbbrBackend, ExitStatusOfTheUsbBackendIsPassedOn) {
  std::string dir = WorkDir("print-status");
  TUsbStandIn lower = Usb_MakeStandIn(dir, {USB_LINE_1060});
  Test_WriteFile(dir + "/exit-status", "6\n");  // CUPS_BACKEND_RETRY
  TProcessOptions options;
  options.input = "x";
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(6, r.status) << r.err;
}

TEST(UsbbrBackend, WaitsUntilThePrinterIsConnected) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-wait"), {USB_LINE_1060}, 2);
  TProcessOptions options;
  options.input = "late job";
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("late job", lower.Capture());
  EXPECT_EQ(3, lower.Looks());
  std::vector<std::string> err = Test_Lines(r.err);
  EXPECT_TRUE(Test_Contains(err, "STATE: +connecting-to-device")) << r.err;
  EXPECT_TRUE(Test_Contains(err, "INFO: Waiting for printer usbbr://Brellian/BR-1060?serial=ABC123 to be connected."))
      << r.err;
  EXPECT_TRUE(Test_Contains(err, "STATE: -connecting-to-device")) << r.err;
}

TEST(UsbbrBackend, TheWaitingStateIsSaidAgainOnEveryLook) {
  // Two looks find nothing, the third finds the printer: the waiting state
  // and its INFO: line come after each of the two empty looks, so that
  // the spooler's status line keeps saying it while the job waits.
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-wait-again"), {USB_LINE_1060}, 2);
  TProcessOptions options;
  options.input = "late job";
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(0, r.status) << r.err;
  int states = 0, infos = 0;
  for (const std::string& line : Test_Lines(r.err)) {
    states += line == "STATE: +connecting-to-device";
    infos += line == "INFO: Waiting for printer usbbr://Brellian/BR-1060?serial=ABC123 to be connected.";
  }
  EXPECT_EQ(2, states) << r.err;
  EXPECT_EQ(2, infos) << r.err;
  // The state is cleared once, after the last look that found nothing.
  size_t lastSet = r.err.rfind("STATE: +connecting-to-device"), cleared = r.err.find("STATE: -connecting-to-device");
  ASSERT_NE(std::string::npos, cleared) << r.err;
  EXPECT_LT(lastSet, cleared) << r.err;
}

TEST(UsbbrBackend, SigtermWhileWaitingCancelsWithoutSending) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-cancel"), {USB_LINE_1035});
  TProcessOptions options;
  options.input = "never sent";
  options.sigtermOnErr = "STATE: +connecting-to-device";
  TProcessResult r = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(0, r.status) << r.err;  // CUPS_BACKEND_OK: nothing to undo
  EXPECT_TRUE(Test_Contains(Test_Lines(r.err), "INFO: Job cancelled before it reached the printer.")) << r.err;
  EXPECT_EQ("", lower.Capture());
}

TEST(UsbbrBackend, ABadDeviceUriStopsTheQueue) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-baduri"), {USB_LINE_1060});
  const char* bad[] = {"usb://Brellian/BR-1060?serial=ABC123", "usbbr://Brellian", "usbbr:///BR-1060", ""};
  for (const char* uri : bad) {
    TProcessResult r = RunUsbbr(lower, kJobArgs, uri);
    EXPECT_EQ(4, r.status) << uri;  // CUPS_BACKEND_STOP
    EXPECT_EQ(0u, r.err.find("ERROR: usbbr: the device URI")) << uri << ": " << r.err;
  }
  EXPECT_EQ(0, lower.Looks());
}

TEST(UsbbrBackend, AMissingUsbBackendIsAnError) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-nolower"), {});
  lower.program += "-missing";
  TProcessResult listing = RunUsbbr(lower, {}, "");
  EXPECT_EQ(1, listing.status);
  EXPECT_EQ(0u, listing.err.find("ERROR: cannot run the USB backend " + lower.program)) << listing.err;
  TProcessOptions options;
  options.input = "x";
  TProcessResult job = RunUsbbr(lower, kJobArgs, "usbbr://Brellian/BR-1060?serial=ABC123", options);
  EXPECT_EQ(4, job.status);
  EXPECT_EQ(0u, job.err.find("ERROR: usbbr: cannot run the USB backend")) << job.err;
}

TEST(UsbbrBackend, UnreadablePrintFileFailsTheJob) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("print-nofile"), {USB_LINE_1060});
  std::vector<std::string> args = kJobArgs;
  args.push_back(lower.dir + "/no-such-file");
  TProcessResult r = RunUsbbr(lower, args, "usbbr://Brellian/BR-1060?serial=ABC123");
  EXPECT_EQ(1, r.status);
  EXPECT_EQ(0u, r.err.find("ERROR: Unable to open print file")) << r.err;
  EXPECT_EQ(0, lower.Looks());
}

TEST(UsbbrBackend, WrongArgumentCountGivesTheUsage) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("usage"), {USB_LINE_1060});
  TProcessResult r = RunUsbbr(lower, {"1", "alice"}, "usbbr://Brellian/BR-1060?serial=ABC123");
  EXPECT_EQ(1, r.status);
  EXPECT_EQ("Usage: usbbr job-id user title copies options [file]\n", r.err);
  EXPECT_EQ(0, lower.Looks());
}

TEST(UsbbrBackend, HelpDescribesTheBackend) {
  TUsbStandIn lower = Usb_MakeStandIn(WorkDir("help"), {USB_LINE_1060});
  TProcessResult r = RunUsbbr(lower, {"--help"}, "");
  EXPECT_EQ(0, r.status);
  EXPECT_EQ(0u, r.out.find("Usage: usbbr\n"));
  for (const char* text : {"usbbr://MAKER/MODEL?serial=SERIAL", "STATE: +connecting-to-device",
                           "&interface=N", "Exit status", "mode 0700", "lpadmin -p cards"})
    EXPECT_NE(std::string::npos, r.out.find(text)) << text;
  EXPECT_EQ(0, lower.Looks());
}

TEST(UsbbrBackend, SigtermWhileListingStopsTheUsbBackendToo) {
  std::string dir = WorkDir("discover-cancel");
  TUsbStandIn lower = Usb_MakeStandIn(dir, {USB_LINE_1060});
  // A usb backend that hangs while listing, says so, and notes a SIGTERM
  // (its sleep holds no pipe of the test open after it is gone).
  Test_WriteFile(lower.program, "#!/bin/sh\ntrap 'echo killed > " + dir +
                                    "/killed; exit 143' TERM\necho listing >&2\nsleep 60 >/dev/null 2>&1 &\nwait\n");
  TProcessOptions options;
  options.sigtermOnErr = "listing";
  TProcessResult r = RunUsbbr(lower, {}, "", options);
  EXPECT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.out);
  EXPECT_EQ("killed\n", Test_ReadFile(dir + "/killed"));
}
