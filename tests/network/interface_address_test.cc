// What is sent for an interface's address.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

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

NetworkgRPC::InterfaceInfo Static(const std::string& ip, const std::string& netmask) {
  NetworkgRPC::InterfaceInfo info;
  info.mode = 1;
  info.ip = ip;
  info.netmask = netmask;
  return info;
}

class InterfaceAddress : public testing::Test {
 protected:
  InterfaceAddress() {
    Answer("SetNetworkConfig", true);
    Answer("ReloadNetworkConfig", true);
  }

  void Answer(const std::string& method, bool success) {
    nm::Success reply;
    reply.set_success(success);
    device.network_manager->Script(NetworkManagerPath(method), support::Reply(reply));
  }

  // Sets the address of interface 7 and returns the request.
  nm::InterfaceConfig SentFor(const NetworkgRPC::InterfaceInfo& info) {
    device.BuildClients();
    EXPECT_TRUE(NetworkgRPC::SetGenericIP(7, info, false));
    const auto requests = device.TakeRequests();
    EXPECT_EQ(requests.size(), 1U);
    nm::InterfaceConfig sent;
    EXPECT_TRUE(!requests.empty() && sent.ParseFromString(requests[0].bytes));
    return sent;
  }

  std::vector<Request> Sent(const std::vector<std::pair<std::string, std::string>>& calls) {
    std::vector<Request> requests;
    for (const auto& [method, bytes] : calls)
      requests.push_back({NetworkManagerPath(method), bytes});
    return requests;
  }

  Device device;
  CapturedStderr captured;
};

// An InterfaceConfig with this id and nothing else: dynamic addressing.
std::string Dynamic(int id) {
  nm::InterfaceConfig config;
  config.set_id(id);
  return config.SerializeAsString();
}

TEST_F(InterfaceAddress, StaticWithoutGatewayAndDns_SendsNeither) {
  const auto sent = SentFor(Static("10.0.0.5", "255.0.0.0"));

  EXPECT_EQ(sent.id(), 7);
  EXPECT_EQ(sent.mode(), nm::STATIC);
  EXPECT_EQ(sent.ip(), "10.0.0.5");
  EXPECT_EQ(sent.netmask(), "255.0.0.0");
  EXPECT_EQ(sent.gateway(), "");
  EXPECT_EQ(sent.dns_size(), 0);
}

TEST_F(InterfaceAddress, StaticWithGatewayOnly_SendsIt) {
  auto info = Static("10.0.0.5", "255.0.0.0");
  info.gateway = "10.0.0.1";

  const auto sent = SentFor(info);

  EXPECT_EQ(sent.gateway(), "10.0.0.1");
  EXPECT_EQ(sent.dns_size(), 0);
}

TEST_F(InterfaceAddress, StaticWithDns_SendsAListOfOneWhateverTheTextHolds) {
  auto info = Static("not an address", "x");
  info.dns = "10.0.0.1, 10.0.0.2";

  const auto sent = SentFor(info);

  EXPECT_EQ(sent.ip(), "not an address");
  ASSERT_EQ(sent.dns_size(), 1);
  EXPECT_EQ(sent.dns(0), "10.0.0.1, 10.0.0.2");
}

TEST_F(InterfaceAddress, IncompleteStatic_IsSentAsDynamic) {
  auto without_netmask = Static("10.0.0.5", "");
  without_netmask.gateway = "10.0.0.1";
  without_netmask.dns = "10.0.0.2";

  EXPECT_EQ(SentFor(without_netmask).SerializeAsString(), Dynamic(7));
  EXPECT_EQ(SentFor(Static("", "255.0.0.0")).SerializeAsString(), Dynamic(7));
}

TEST_F(InterfaceAddress, EveryOtherMode_IsSentAsDynamic) {
  for (const int mode : {0, 2, 3, -1, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(mode);
    auto info = Static("10.0.0.5", "255.0.0.0");
    info.mode = mode;
    EXPECT_EQ(SentFor(info).SerializeAsString(), Dynamic(7));
  }
}

TEST_F(InterfaceAddress, OtherFieldsOfTheRecord_AreIgnored) {
  auto info = Static("10.0.0.5", "255.0.0.0");
  const auto plain = SentFor(info).SerializeAsString();
  info.name = "lan3";
  info.mac = "02:00:00:00:00:99";
  info.active = true;
  info.id = 99;

  EXPECT_EQ(SentFor(info).SerializeAsString(), plain);
}

TEST_F(InterfaceAddress, Generic_TakesAnyId) {
  device.BuildClients();
  for (const int id : {-1, 0, INT_MIN, INT_MAX}) {
    EXPECT_TRUE(NetworkgRPC::SetGenericIP(id, {}, false));
    EXPECT_EQ(device.TakeRequests(), Sent({{"SetNetworkConfig", Dynamic(id)}}));
  }
}

TEST_F(InterfaceAddress, Dante_ChoosesByTheArgument) {
  device.BuildClients();
  EXPECT_TRUE(NetworkgRPC::SetDanteIP({}, 0, false));
  EXPECT_TRUE(NetworkgRPC::SetDanteIP({}, 1, false));
  EXPECT_TRUE(NetworkgRPC::SetDanteIP({}, -1, false));

  EXPECT_EQ(device.TakeRequests(), Sent({{"SetNetworkConfig", Dynamic(support::kLan0)},
                                         {"SetNetworkConfig", Dynamic(support::kLan2)},
                                         {"SetNetworkConfig", Dynamic(support::kLan2)}}));
}

TEST_F(InterfaceAddress, Dante_RoleUnresolved_FailsSilentlyWithoutACall) {
  setenv("dante_secondary_interface_env", "lan9", 1);
  setenv("dante_primary_interface_env", "lan9", 1);
  device.BuildClients();

  EXPECT_FALSE(NetworkgRPC::SetDanteIP({}, 1, true));
  EXPECT_FALSE(NetworkgRPC::SetDanteIP({}, 0, true));
  EXPECT_EQ(captured.Take(), "");
  EXPECT_TRUE(device.TakeRequests().empty());
}

TEST_F(InterfaceAddress, Control_Unresolved_IsSentAsMinusOne) {
  setenv("control_interface_env", "lan9", 1);
  device.BuildClients();

  EXPECT_TRUE(NetworkgRPC::SetControlIP({}, false));
  EXPECT_EQ(device.TakeRequests(), Sent({{"SetNetworkConfig", Dynamic(-1)}}));
}

TEST_F(InterfaceAddress, SetFails_ReloadIsStillRequestedAndTheResultIsFalse) {
  device.BuildClients();
  Answer("SetNetworkConfig", false);

  for (const int id : {7, 0, -1, INT_MIN}) {
    EXPECT_FALSE(NetworkgRPC::SetGenericIP(id, {}, true));
    EXPECT_EQ(captured.Take(), "libNetworkgRPC: ERROR: error while setting interface " +
                                   std::to_string(id) + " network config in SetGenericIP\n");
    EXPECT_EQ(device.TakeRequests(),
              Sent({{"SetNetworkConfig", Dynamic(id)}, {"ReloadNetworkConfig", ""}}));
  }
}

TEST_F(InterfaceAddress, ReloadFails_IsPrintedAndTheResultIsTrue) {
  Answer("ReloadNetworkConfig", false);

  EXPECT_TRUE(NetworkgRPC::SetControlIP({}, true));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while reloading network config in SetControlIP\n");
}

TEST_F(InterfaceAddress, BothFail_PrintsBothLinesInOrder) {
  Answer("SetNetworkConfig", false);
  Answer("ReloadNetworkConfig", false);

  EXPECT_FALSE(NetworkgRPC::SetDanteIP({}, 0, true));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while setting dante network config in SetDanteIP\n"
            "libNetworkgRPC: ERROR: error while reloading network config in SetDanteIP\n");
}

TEST_F(InterfaceAddress, WithoutReload_RequestsNone) {
  device.BuildClients();

  EXPECT_TRUE(NetworkgRPC::SetControlIP({}, false));
  EXPECT_EQ(device.TakeRequests().size(), 1U);
}

}  // namespace
