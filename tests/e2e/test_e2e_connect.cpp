// Connecting printers through a running spooler: the usbbr backend over a
// stand-in for the usb backend (lpinfo -v, lpinfo --device-id, a job with
// the presets of its serial) and a network queue on the socket backend,
// each added with the lpadmin lines of the user guide.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "jobstream/stream_reader.h"
#include "options/settings.h"
#include "support/cups_env.h"
#include "support/process.h"
#include "support/usb_standin.h"

namespace {

// The lines of docs/user-guide.md run here, as they stand in the guide.
const char* const GUIDE_USB =
    "sudo lpadmin -p cards -E -v 'usbbr://Brellian/BR-1060?serial=ABC123' -P "
    "/usr/share/ppd/brellian/br1060.ppd";
const char* const GUIDE_NET =
    "sudo lpadmin -p cardsnet -E -v 'socket://192.168.1.50:9100/?serial=ABC123' -P "
    "/usr/share/ppd/brellian/br1060.ppd";
const char* const GUIDE_NET_REFUSED = "socket://192.168.1.50:9100?serial=ABC123";
const char* const GUIDE_DEVICE_ID = "sudo lpinfo --device-id 'MFG:Brellian;MDL:BR-1060;CLS:PRINTER;SERN:ABC123;' -m";

// 'Replace()' - text with every from replaced by to.
std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (size_t pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size()))
    text.replace(pos, from.size(), to);
  return text;
}

// 'FromGuide()' - A guide line as run against the test spooler: without
// sudo, with the build's PPD files.
std::string FromGuide(const std::string& line) {
  EXPECT_NE(std::string::npos, Test_ReadFile(std::string(BRELLIAN_SOURCE_DIR) + "/docs/user-guide.md").find(line))
      << "not in the user guide: " << line;
  return Replace(Replace(line, "sudo ", ""), "/usr/share/ppd/brellian/", std::string(BRELLIAN_BINARY_DIR) + "/ppd/");
}

// 'SavePresets()' - A settings file for serial ABC123 whose plug-in name and
// card thickness show up in the job stream.
void SavePresets() {
  TBrellianSettings s;
  s.modelName = "br-1060";
  s.serialNumber = "abc123";
  s.plugin = "plugin-of-abc123";
  s.cardThickness = 7;  // any number but 0: "Thin"
  ASSERT_TRUE(s.Save());
}

// 'ExpectPresetJob()' - bytes are a complete job of the queue that uses the
// presets of ABC123.
void ExpectPresetJob(const std::string& bytes, const std::string& queue) {
  TStreamCheck stream;
  Stream_Read(bytes, &stream);
  ASSERT_TRUE(stream.complete) << stream.error << stream.openLevel;
  TStartJobFields job;
  ASSERT_TRUE(Stream_DecodeStartJob(stream.records.front(), &job));
  EXPECT_EQ(1060u, job.printer);
  EXPECT_EQ(queue, job.queue);
  EXPECT_EQ("plugin-of-abc123", job.plugin);
  TStartCardFields card;
  ASSERT_TRUE(Stream_DecodeStartCard(stream.records[1], &card));
  EXPECT_EQ(1, card.cardThickness);
  ASSERT_EQ(2u, stream.panels.size());  // front: colour and resin black
}

class Connect : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
    if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  }
};

}  // namespace

TEST_F(Connect, UsbbrPrinterIsListedMatchedToItsPpdAndPrintsWithItsPresets) {
  std::string dir = Cups_WorkDir("connect-usb");
  TUsbStandIn lower = Usb_MakeStandIn(dir + "/usb", {USB_LINE_OTHER, USB_LINE_1060, USB_LINE_1035});
  TTestSpooler spooler(dir);
  spooler.AddBackend("usbbr", Usb_UsbbrPath(), 0700);
  spooler.SetEnv("BRELLIAN_USBBR_LOWER", lower.program);
  spooler.AddModels("brellian", std::string(BRELLIAN_BINARY_DIR) + "/ppd");
  std::string error, out;
  ASSERT_TRUE(spooler.Start(&error)) << error;

  ASSERT_EQ(0, spooler.Run("lpinfo -v", &out)) << out;
  EXPECT_NE(std::string::npos, out.find("direct usbbr://Brellian/BR-1060?serial=ABC123\n")) << out;
  EXPECT_NE(std::string::npos, out.find("direct usbbr://Brellian/BR-1035?serial=K35\n")) << out;
  EXPECT_EQ(std::string::npos, out.find("usbbr://Acme")) << out;

  ASSERT_EQ(0, spooler.Run(FromGuide(GUIDE_DEVICE_ID), &out)) << out;
  EXPECT_EQ(0u, out.find("brellian/br1060.ppd ")) << out;
  for (int model : {1030, 1035}) {
    std::string id = "MFG:Brellian;MDL:BR-" + std::to_string(model) + ";CLS:PRINTER;SERN:X;";
    ASSERT_EQ(0, spooler.Run("lpinfo --device-id '" + id + "' -m", &out)) << out;
    EXPECT_EQ(0u, out.find("brellian/br" + std::to_string(model) + ".ppd ")) << out;
  }

  SavePresets();
  ASSERT_EQ(0, spooler.Run(FromGuide(GUIDE_USB), &out)) << out;
  ASSERT_EQ(0, spooler.Run("lp -d cards -o frontRibbon=ColorK " + Cups_SampleCardPdf(), &out)) << out;
  ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
  ASSERT_FALSE(lower.Capture().empty()) << spooler.ErrorLog();
  EXPECT_EQ("usb://Brellian/BR-1060?serial=ABC123&interface=1", lower.CaptureArgs().substr(0, 48));
  ExpectPresetJob(lower.Capture(), "cards");
}

TEST_F(Connect, NetworkQueueOnTheSocketBackendPrintsWithItsPresets) {
  int listener = socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_GE(listener, 0);
  sockaddr_in addr = {};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof addr;
  ASSERT_EQ(0, bind(listener, reinterpret_cast<sockaddr*>(&addr), sizeof addr));
  ASSERT_EQ(0, listen(listener, 1));
  ASSERT_EQ(0, getsockname(listener, reinterpret_cast<sockaddr*>(&addr), &len));
  std::string port = std::to_string(ntohs(addr.sin_port)), received;
  std::thread printer([&] {
    int c = accept(listener, nullptr, nullptr);
    char buf[65536];
    ssize_t n;
    while (c >= 0 && (n = read(c, buf, sizeof buf)) > 0) received.append(buf, static_cast<size_t>(n));
    if (c >= 0) close(c);
  });

  std::string dir = Cups_WorkDir("connect-net");
  TTestSpooler spooler(dir);
  std::string error, out;
  bool started = spooler.Start(&error);
  if (started) {
    SavePresets();
    std::string add = Replace(FromGuide(GUIDE_NET), "192.168.1.50:9100", "127.0.0.1:" + port);
    EXPECT_EQ(0, spooler.Run(add, &out)) << out;
    EXPECT_EQ(0, spooler.Run("lp -d cardsnet -o frontRibbon=ColorK " + Cups_SampleCardPdf(), &out)) << out;
    EXPECT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
  }
  shutdown(listener, SHUT_RDWR);  // ends a wait in accept when nothing came
  printer.join();
  close(listener);
  ASSERT_TRUE(started) << error;
  ExpectPresetJob(received, "cardsnet");

  // The same URI without "/" before the query is refused, as the guide says.
  EXPECT_NE(std::string::npos, Test_ReadFile(std::string(BRELLIAN_SOURCE_DIR) + "/docs/user-guide.md")
                                   .find(GUIDE_NET_REFUSED));
  std::string refused = Replace(GUIDE_NET_REFUSED, "192.168.1.50:9100", "127.0.0.1:" + port);
  EXPECT_NE(0, spooler.Run("lpadmin -p cardsbad -E -v '" + refused + "' -P " + Cups_PpdPath(1060), &out));
  EXPECT_NE(std::string::npos, out.find("Bad device-uri")) << out;
}

TEST_F(Connect, APrinterNotConnectedStaysOnTheStatusLineWhileTheJobWaits) {
  // The job's filters end within seconds and write their own INFO: lines;
  // usbbr, still waiting, says it again on its next look (1, 3, 7, 15 s),
  // so that lpstat -p shows the wait rather than the filters' last word.
  std::string dir = Cups_WorkDir("connect-wait");
  TUsbStandIn lower = Usb_MakeStandIn(dir + "/usb", {USB_LINE_1035});
  TTestSpooler spooler(dir);
  spooler.AddBackend("usbbr", Usb_UsbbrPath(), 0700);
  spooler.SetEnv("BRELLIAN_USBBR_LOWER", lower.program);
  std::string error, out;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_EQ(0, spooler.Run(FromGuide(GUIDE_USB), &out)) << out;
  ASSERT_EQ(0, spooler.Run("lp -d cards " + Cups_SampleCardPdf(), &out)) << out;
  sleep(12);
  ASSERT_EQ(0, spooler.Run("lpstat -l -p cards", &out)) << out;
  EXPECT_NE(std::string::npos,
            out.find("Waiting for printer usbbr://Brellian/BR-1060?serial=ABC123 to be connected."))
      << out << spooler.ErrorLog();
  EXPECT_NE(std::string::npos, out.find("connecting-to-device")) << out;
  EXPECT_TRUE(lower.Capture().empty());
  spooler.Run("cancel -a cards", &out);
}
