#include <gtest/gtest.h>

#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::CapturedStderr;
using support::Device;
using support::NetworkManagerPath;
using support::Request;

class HostSettings : public testing::Test {
 protected:
  HostSettings() { device.BuildClients(); }

  void Answer(const std::string& method, bool success) {
    nm::Success reply;
    reply.set_success(success);
    device.network_manager->Script(NetworkManagerPath(method), support::Reply(reply));
  }

  Device device;
  CapturedStderr captured;
};

TEST_F(HostSettings, EmptyHostname_IsAHostname) {
  device.network_manager->Script(NetworkManagerPath("GetHostname"), {""});
  std::string hostname = "before";

  EXPECT_TRUE(NetworkgRPC::GetHostname(hostname));
  EXPECT_EQ(hostname, "");
}

TEST_F(HostSettings, EmptyGateway_IsAGateway) {
  device.network_manager->Script(NetworkManagerPath("GetRouting"), {""});
  std::string gateway = "before";

  EXPECT_TRUE(NetworkgRPC::GetDefaultGateway(gateway));
  EXPECT_EQ(gateway, "");
}

TEST_F(HostSettings, SetHostname_PassesEveryTextThrough) {
  Answer("SetHostname", true);
  for (const std::string& name :
       {std::string(), std::string("Amp-1.Stage_Left"), std::string("B\xc3\xbchne \xe2\x99\xab"),
        std::string("a\0b", 3), std::string(65536, 'x')}) {
    nm::Hostname request;
    request.set_hostname(name);

    EXPECT_TRUE(NetworkgRPC::SetHostname(name));
    EXPECT_EQ(
        device.TakeRequests(),
        (std::vector<Request>{{NetworkManagerPath("SetHostname"), request.SerializeAsString()}}));
  }
}

TEST_F(HostSettings, NoNtpServer_FailsSilently) {
  device.network_manager->Script(NetworkManagerPath("GetNTPServer"), {""});
  std::string server = "before";

  EXPECT_FALSE(NetworkgRPC::GetNTPServer(server));
  EXPECT_EQ(server, "before");
  EXPECT_EQ(captured.Take(), "");
}

TEST_F(HostSettings, NoDnsServer_FailsSilently) {
  device.network_manager->Script(NetworkManagerPath("GetDNSList"), {""});
  std::string dns = "before";

  EXPECT_FALSE(NetworkgRPC::GetCurrentDNS(dns));
  EXPECT_EQ(dns, "before");
  EXPECT_EQ(captured.Take(), "");
}

TEST_F(HostSettings, EmptyFirstEntry_IsAServer) {
  // Field 1 of both messages: an empty string, then "x".
  for (const char* method : {"GetNTPServer", "GetDNSList"})
    device.network_manager->Script(NetworkManagerPath(method),
                                   {std::string("\x0a\x00\x0a\x01x", 5)});
  std::string server = "before";
  std::string dns = "before";

  EXPECT_TRUE(NetworkgRPC::GetNTPServer(server));
  EXPECT_TRUE(NetworkgRPC::GetCurrentDNS(dns));
  EXPECT_EQ(server, "");
  EXPECT_EQ(dns, "");
}

TEST_F(HostSettings, SetNtpServer_SendsExactlyOneEntry) {
  Answer("SetNTPServer", true);

  EXPECT_TRUE(NetworkgRPC::SetNTPServer("", false));
  EXPECT_TRUE(NetworkgRPC::SetNTPServer("a b,c", false));

  const std::string path = NetworkManagerPath("SetNTPServer");
  EXPECT_EQ(device.TakeRequests(), (std::vector<Request>{{path, std::string("\x0a\x00", 2)},
                                                         {path,
                                                          "\x0a\x05"
                                                          "a b,c"}}));
}

TEST_F(HostSettings, SetNtpServer_SetFailsAndReloadSucceeds_PrintsTheSetLineOnly) {
  Answer("SetNTPServer", false);
  Answer("ReloadNTPConfig", true);

  EXPECT_FALSE(NetworkgRPC::SetNTPServer("a", true));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: SetNTPServer: error while setting NTP server via gRPC\n");
  EXPECT_EQ(device.TakeRequests().size(), 2U);
}

TEST_F(HostSettings, SetNtpServer_SetSucceedsAndReloadFails_PrintsTheReloadLineOnly) {
  Answer("SetNTPServer", true);
  Answer("ReloadNTPConfig", false);

  EXPECT_TRUE(NetworkgRPC::SetNTPServer("a", true));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while reloading NTP config in SetNTPServer\n");
}

TEST_F(HostSettings, SetNtpServer_WithoutReload_RequestsNone) {
  Answer("SetNTPServer", true);

  EXPECT_TRUE(NetworkgRPC::SetNTPServer("a", false));
  EXPECT_EQ(device.TakeRequests().size(), 1U);
}

}  // namespace
