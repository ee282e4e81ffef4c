// Unit tests of the printer application's network device, device state, format refusal and URI attribute agreement.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cups/cups.h>

#include <string>

#include "app/device_state.h"
#include "app/format_check.h"
#include "app/socket_device.h"
#include "app/uri_security.h"

namespace {

// 'Test_ListeningPort()' - A socket listening on a loopback port; its port in *port.
int Test_ListeningPort(int* port) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a = {};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof(a);
  if (bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof(a)) != 0 || listen(fd, 1) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len) != 0)
    return -1;
  *port = ntohs(a.sin_port);
  return fd;
}

TEST(AppSocketDevice, ARefusedConnectionIsNamedAsSuchAndAListenerIsReached) {
  int port = 0;
  int listener = Test_ListeningPort(&port);
  ASSERT_GE(listener, 0);
  std::string message;
  int fd = SockDev_Connect("127.0.0.1", port, 5, &message);
  EXPECT_GE(fd, 0) << message;
  if (fd >= 0) close(fd);
  close(listener);  // nothing listens there any more
  fd = SockDev_Connect("127.0.0.1", port, 5, &message);
  EXPECT_LT(fd, 0);
  EXPECT_EQ(message.rfind("Cannot connect to 127.0.0.1:" + std::to_string(port) + ": Connection refused.", 0), 0u)
      << message;
  EXPECT_NE(message.find("switched on"), std::string::npos) << "it says what to do: " << message;
}

TEST(AppSocketDevice, TheOpenTakesTheBackgroundConnectionsOutcome) {
  int port = 0;
  int listener = Test_ListeningPort(&port);
  ASSERT_GE(listener, 0);
  const std::string uri = "socket://127.0.0.1:" + std::to_string(port);
  int fd = -1;
  std::string message;
  EXPECT_EQ(SockDev_Take(uri, "127.0.0.1", port, &fd, &message), TConnectOutcome::CONNECTED) << message;
  EXPECT_GE(fd, 0);
  if (fd >= 0) close(fd);
  close(listener);
  fd = -1;
  EXPECT_EQ(SockDev_Take(uri, "127.0.0.1", port, &fd, &message), TConnectOutcome::FAILED);
  EXPECT_LT(fd, 0);
  EXPECT_NE(message.find("Connection refused"), std::string::npos) << message;
}

TEST(AppDeviceState, AFailureCountsUntilTheDeviceOpens) {
  const char* uri = "socket://192.0.2.20:9100";
  EXPECT_EQ(DevState_Message(uri), "");
  DevState_Opening(uri);
  EXPECT_EQ(DevState_Message(uri), "") << "a first attempt has no failure to show yet";
  DevState_Failed(uri, "Cannot connect.");
  EXPECT_EQ(DevState_Message(uri), "Cannot connect.");
  DevState_Opening(uri);
  EXPECT_EQ(DevState_Message(uri), "Cannot connect.") << "kept while the next attempt runs";
  EXPECT_EQ(DevState_Message("socket://192.0.2.21:9100"), "") << "per device";
  DevState_Opened(uri);
  EXPECT_EQ(DevState_Message(uri), "");
}

// 'Test_Supported()' - A document-format-supported attribute as PAPPL makes the printer's.
ipp_attribute_t* Test_Supported(ipp_t* ipp) {
  static const char* const formats[] = {"application/octet-stream", "image/pwg-raster", "image/urf",
                                        "application/vnd.brellian-job", "application/pdf", "image/jpeg", "image/png"};
  return ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_TAG_MIMETYPE, "document-format-supported", 7, nullptr, formats);
}

TEST(AppFormatCheck, UnprintableFormatsAreRefusedNamedOrFoundInTheData) {
  ipp_t* ipp = ippNew();
  ipp_attribute_t* s = Test_Supported(ipp);
  EXPECT_EQ(Format_Refusal(s, IPP_OP_PRINT_JOB, "application/pdf", nullptr), "");
  EXPECT_EQ(Format_Refusal(s, IPP_OP_PRINT_JOB, "application/octet-stream", "image/jpeg"), "");
  EXPECT_EQ(Format_Refusal(s, IPP_OP_VALIDATE_JOB, "application/octet-stream", nullptr), "") << "no data yet";
  EXPECT_EQ(Format_Refusal(s, IPP_OP_CREATE_JOB, nullptr, nullptr), "");
  std::string r = Format_Refusal(s, IPP_OP_PRINT_JOB, "text/plain", nullptr);
  EXPECT_EQ(r.rfind("Documents of the format text/plain cannot be printed. This printer prints PWG raster, Apple "
                    "raster, card job streams, PDF, JPEG, PNG;", 0), 0u) << r;
  EXPECT_NE(Format_Refusal(s, IPP_OP_VALIDATE_JOB, "text/plain", nullptr), "");
  EXPECT_NE(Format_Refusal(s, IPP_OP_CREATE_JOB, "application/postscript", nullptr), "");
  EXPECT_NE(Format_Refusal(s, IPP_OP_SEND_DOCUMENT, "application/octet-stream", "application/postscript")
                .find("application/postscript"), std::string::npos);
  EXPECT_NE(Format_Refusal(s, IPP_OP_PRINT_JOB, "application/octet-stream", nullptr).find("not recognised"),
            std::string::npos);
  std::string longType(300, 'x');
  EXPECT_LE(Format_Refusal(s, IPP_OP_PRINT_JOB, longType.c_str(), nullptr).size(), 255u) << "an IPP status-message";
  ippDelete(ipp);
}

// 'Test_Values()' - The values of a keyword attribute, joined by commas.
std::string Test_Values(ipp_t* ipp, const char* name) {
  ipp_attribute_t* a = ippFindAttribute(ipp, name, IPP_TAG_KEYWORD);
  std::string out;
  for (int i = 0; i < ippGetCount(a); ++i) out += (i ? "," : "") + std::string(ippGetString(a, i, nullptr));
  return out;
}

TEST(AppUriSecurity, SecurityAndAuthenticationFollowTheUris) {
  static const char* const two[] = {"none", "tls"};
  static const char* const twoAuth[] = {"none", "none"};
  ipp_t* ipp = ippNew();
  ippAddString(ipp, IPP_TAG_OPERATION, IPP_TAG_CHARSET, "attributes-charset", nullptr, "utf-8");
  ipp_attribute_t* before = ippAddString(ipp, IPP_TAG_OPERATION, IPP_TAG_LANGUAGE, "attributes-natural-language",
                                         nullptr, "en");
  ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-security-supported", 2, nullptr, two);
  ippAddString(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-authentication-supported", nullptr, "none");
  const bool local[] = {false};  // a client on the loopback address: ipp only
  UriSec_Agree(ipp, before, local, 1);
  EXPECT_EQ(Test_Values(ipp, "uri-security-supported"), "none");
  EXPECT_EQ(Test_Values(ipp, "uri-authentication-supported"), "none");
  ippDelete(ipp);

  ipp = ippNew();
  ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-security-supported", 2, nullptr, two);
  ippAddStrings(ipp, IPP_TAG_PRINTER, IPP_CONST_TAG(IPP_TAG_KEYWORD), "uri-authentication-supported", 2, nullptr,
                twoAuth);
  const bool remote[] = {false, true};  // ipp then ipps
  UriSec_Agree(ipp, nullptr, remote, 2);
  EXPECT_EQ(Test_Values(ipp, "uri-security-supported"), "none,tls");
  EXPECT_EQ(Test_Values(ipp, "uri-authentication-supported"), "none,none");
  const bool tlsOnly[] = {true};
  UriSec_Agree(ipp, nullptr, tlsOnly, 1);
  EXPECT_EQ(Test_Values(ipp, "uri-security-supported"), "tls");
  EXPECT_EQ(Test_Values(ipp, "uri-authentication-supported"), "none");
  ippDelete(ipp);
}

}  // namespace
