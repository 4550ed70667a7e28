// The network-manager daemon of the simulator, through raw stubs.
#include <gmock/gmock.h>

#include "tests/simulator/simulated_device.h"

namespace {

using namespace ostrevan::networkmanager;
using support::kControl;
using support::kPrimary;
using support::kSecondary;
using support::kService;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class NetworkService : public support::SimulatedDevice {
 protected:
  using Stub = NetworkStub;

  InterfaceConfig Config(int id) { return Ask(&Stub::GetNetworkConfig, OneOf(id)).configs(0); }
  InterfaceStatus Status(int id) { return Ask(&Stub::GetNetworkStatus, OneOf(id)).status(0); }
  bool Store(const InterfaceConfig& config) {
    return Ask(&Stub::SetNetworkConfig, config).success();
  }
  bool Reload() { return Ask(&Stub::ReloadNetworkConfig).success(); }
  bool SetMode(int id) { return Ask(&Stub::SetSwitchMode, Numbered(id)).success(); }
  bool SetHostname(const std::string& name) {
    Hostname request;
    request.set_hostname(name);
    return Ask(&Stub::SetHostname, request).success();
  }
  std::string GatewayOf(int id) {
    return Ask(&Stub::GetRoutingForInterface, Numbered(id)).gateway();
  }

  static Ids OneOf(int id) {
    Ids ids;
    ids.add_ids(id);
    return ids;
  }
  static Id Numbered(int number) {
    Id id;
    id.set_id(number);
    return id;
  }
  static InterfaceConfig Mode(int id, EnInterfaceMode mode) {
    InterfaceConfig config;
    config.set_id(id);
    config.set_mode(mode);
    return config;
  }
  static InterfaceConfig Static(int id) {
    InterfaceConfig config = Mode(id, STATIC);
    config.set_ip("10.1.2.3");
    config.set_netmask("255.255.0.0");
    config.set_gateway("10.1.0.1");
    config.add_dns("10.1.0.53");
    return config;
  }
};

TEST_F(NetworkService, GetAvailableInterfaces_FactoryDevice_ListsThreeRolesAndOneMore) {
  const auto reply = Ask(&Stub::GetAvailableInterfaces);

  std::vector<std::string> seen;
  for (const auto& interface : reply.interfaces())
    seen.push_back(std::to_string(interface.id()) + ' ' + interface.name() + ' ' + interface.mac());
  EXPECT_THAT(seen, ElementsAre("1 lan0 02:54:41:52:00:01", "2 lan1 02:54:41:52:00:02",
                                "3 lan2 02:54:41:52:00:03", "4 lan3 02:54:41:52:00:04"));
}

TEST_F(NetworkService, GetNetworkStatus_DynamicInterfaces_ShowLeasedOrLinkLocalAddresses) {
  Ids ids;
  for (const int id : {kService, kPrimary, kControl}) ids.add_ids(id);

  const auto reply = Ask(&Stub::GetNetworkStatus, ids);

  ASSERT_EQ(reply.status_size(), 3);
  EXPECT_EQ(reply.status(0).id(), kService);
  EXPECT_EQ(reply.status(0).ip(), "10.77.0.20");
  EXPECT_EQ(reply.status(1).id(), kPrimary);
  EXPECT_EQ(reply.status(1).ip(), "169.254.82.1");
  EXPECT_EQ(reply.status(1).netmask(), "255.255.0.0");
  EXPECT_EQ(reply.status(1).speed(), SPEED_1000MBS);
  EXPECT_EQ(reply.status(2).ip(), "192.168.10.57");
  for (const auto& status : reply.status()) EXPECT_TRUE(status.flag4()) << status.id();
}

TEST_F(NetworkService, GetNetworkConfigAndStatus_UnknownInterfaceAmongThem_ListTheKnownOnes) {
  Ids ids;
  for (const int id : {99, kPrimary, -1}) ids.add_ids(id);

  const auto config = Ask(&Stub::GetNetworkConfig, ids);
  const auto status = Ask(&Stub::GetNetworkStatus, ids);

  ASSERT_EQ(config.configs_size(), 1);
  EXPECT_EQ(config.configs(0).id(), kPrimary);
  ASSERT_EQ(status.status_size(), 1);
  EXPECT_EQ(status.status(0).id(), kPrimary);
}

TEST_F(NetworkService, SetNetworkConfig_Static_IsStoredAsSentAndNotYetInEffect) {
  InterfaceConfig config = Static(kControl);
  config.set_flag7(true);
  config.set_flag8(true);
  const InterfaceStatus before = Status(kControl);

  EXPECT_TRUE(Store(config));

  EXPECT_EQ(Config(kControl).SerializeAsString(), config.SerializeAsString());
  EXPECT_EQ(Status(kControl).SerializeAsString(), before.SerializeAsString());
  EXPECT_EQ(GatewayOf(kControl), "192.168.10.1");
}

TEST_F(NetworkService, ReloadNetworkConfig_StaticStored_IsInEffect) {
  ASSERT_TRUE(Store(Static(kControl)));

  EXPECT_TRUE(Reload());

  const InterfaceStatus live = Status(kControl);
  EXPECT_EQ(live.ip(), "10.1.2.3");
  EXPECT_EQ(live.netmask(), "255.255.0.0");
  EXPECT_TRUE(live.flag4());
  EXPECT_EQ(GatewayOf(kControl), "10.1.0.1");
  EXPECT_EQ(Ask(&Stub::GetRouting).gateway(), "10.1.0.1");
  EXPECT_THAT(Ask(&Stub::GetDNSList).dns(), ElementsAre("10.1.0.53"));
}

TEST_F(NetworkService, ReloadNetworkConfig_BackToDynamic_ShowsTheLeaseAgain) {
  ASSERT_TRUE(Store(Static(kControl)));
  ASSERT_TRUE(Reload());
  ASSERT_TRUE(Store(Mode(kControl, DYNAMIC)));

  EXPECT_TRUE(Reload());

  EXPECT_EQ(Status(kControl).ip(), "192.168.10.57");
  EXPECT_THAT(Ask(&Stub::GetDNSList).dns(), ElementsAre("192.168.10.1"));
}

TEST_F(NetworkService, ReloadNetworkConfig_DhcpOnlyWithoutServer_LeavesNoAddressInUse) {
  ASSERT_TRUE(Store(Mode(kPrimary, DHCP_ONLY)));
  ASSERT_TRUE(Store(Mode(kControl, DHCP_ONLY)));

  EXPECT_TRUE(Reload());

  EXPECT_EQ(Status(kPrimary).ip(), "");
  EXPECT_FALSE(Status(kPrimary).flag4());
  EXPECT_EQ(Status(kControl).ip(), "192.168.10.57");
}

TEST_F(NetworkService, ReloadNetworkConfig_LinkLocalOnly_LeavesTheLease) {
  ASSERT_TRUE(Store(Mode(kControl, LINKLOCAL_ONLY)));

  EXPECT_TRUE(Reload());

  EXPECT_EQ(Status(kControl).ip(), "169.254.82.2");
  EXPECT_EQ(GatewayOf(kControl), "");
}

TEST_F(NetworkService, GetRouting_TwoGateways_GivesTheFirstInterfaceThatHasOne) {
  EXPECT_EQ(GatewayOf(kPrimary), "");
  EXPECT_EQ(GatewayOf(kService), "10.77.0.1");
  EXPECT_EQ(Ask(&Stub::GetRouting).gateway(), "192.168.10.1");
}

TEST_F(NetworkService, GetRouting_NoInterfaceHasAGateway_IsEmpty) {
  for (const int id : {kControl, kService}) ASSERT_TRUE(Store(Mode(id, LINKLOCAL_ONLY)));

  ASSERT_TRUE(Reload());

  EXPECT_EQ(Ask(&Stub::GetRouting).gateway(), "");
  EXPECT_THAT(Ask(&Stub::GetDNSList).dns(), IsEmpty());
}

TEST_F(NetworkService, GetDNSList_SameServerOnTwoInterfaces_ListsItOnce) {
  for (const int id : {kPrimary, kSecondary}) ASSERT_TRUE(Store(Static(id)));

  ASSERT_TRUE(Reload());

  EXPECT_THAT(Ask(&Stub::GetDNSList).dns(), ElementsAre("10.1.0.53", "192.168.10.1"));
}

TEST_F(NetworkService, GetRoutingForInterface_UnknownInterface_IsNotFound) {
  Routing reply;

  const auto status =
      support::Call(*stubs.network, &Stub::GetRoutingForInterface, Numbered(99), reply);

  EXPECT_EQ(status.error_code(), grpc::StatusCode::NOT_FOUND);
}

TEST_F(NetworkService, GetAvailableSwitchModes_FactoryDevice_ListsIdsFromZeroWithNames) {
  const auto reply = Ask(&Stub::GetAvailableSwitchModes);

  ASSERT_EQ(reply.modes_size(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(reply.modes(i).id(), i);
    EXPECT_NE(reply.modes(i).name(), "");
  }
}

TEST_F(NetworkService, SetSwitchMode_ListedMode_IsStoredAndTakesEffectWithReload) {
  EXPECT_TRUE(SetMode(1));
  EXPECT_EQ(Ask(&Stub::GetSwitchMode).id(), 1);
  EXPECT_EQ(Ask(&Stub::GetSwitchMode).name(), "Redundant");
  EXPECT_EQ(Ask(&Stub::GetSwitchModeStatus).id(), 0);
  EXPECT_EQ(Ask(&Stub::GetSwitchModeStatus).name(), "Switched");

  EXPECT_TRUE(Reload());

  EXPECT_EQ(Ask(&Stub::GetSwitchModeStatus).id(), 1);
}

TEST_F(NetworkService, SetHostname_LongestName_IsRead) {
  const std::string longest(64, 'a');

  EXPECT_TRUE(SetHostname(longest));

  EXPECT_EQ(Ask(&Stub::GetHostname).hostname(), longest);
}

TEST_F(NetworkService, SetNTPServer_TwoServers_AreStoredAndTakeEffectWithReload) {
  NTPServer request;
  request.add_servers("time.example");
  request.add_servers("10.0.0.4");
  const auto in_effect = [](const simulator::Device& it) { return it.network.live_ntp; };
  const auto before = device.WithDevice(in_effect);

  EXPECT_TRUE(Ask(&Stub::SetNTPServer, request).success());
  EXPECT_THAT(Ask(&Stub::GetNTPServer).servers(), ElementsAre("time.example", "10.0.0.4"));
  EXPECT_EQ(device.WithDevice(in_effect), before);

  EXPECT_TRUE(Ask(&Stub::ReloadNTPConfig).success());
  EXPECT_THAT(device.WithDevice(in_effect), ElementsAre("time.example", "10.0.0.4"));
}

TEST_F(NetworkService, FactoryReset_EverythingChanged_RestoresNetworkAndLeavesDante) {
  const std::string before = device.StateJson();
  ASSERT_TRUE(Store(Static(kControl)));
  ASSERT_TRUE(SetMode(2));
  ASSERT_TRUE(Ask(&Stub::SetNTPServer).success());
  ASSERT_TRUE(SetHostname("stage"));
  ASSERT_TRUE(Reload());
  ASSERT_TRUE(Ask(&Stub::ReloadNTPConfig).success());
  ASSERT_NE(device.StateJson(), before);

  EXPECT_TRUE(Ask(&Stub::FactoryReset).success());

  EXPECT_EQ(device.StateJson(), before);
}

TEST_F(NetworkService, FactoryReset_DanteNameChanged_KeepsTheName) {
  ostrevan::grpcdapi::Name name;
  name.set_name("Stage left");
  ASSERT_TRUE(Ask(&DanteStub::SetName, name).success());

  EXPECT_TRUE(Ask(&Stub::FactoryReset).success());

  EXPECT_EQ(Ask(&DanteStub::GetName).name(), "Stage left");
}

// --- Rejected requests ---------------------------------------------------------

TEST_F(NetworkService, SetNetworkConfig_InvalidConfigs_AreRejectedAndChangeNothing) {
  const std::string before = device.StateJson();
  InterfaceConfig wireless = Static(kControl);
  wireless.mutable_wifi()->set_ssid("stage");
  InterfaceConfig bad_gateway = Static(kControl);
  bad_gateway.set_gateway("router");
  InterfaceConfig bad_second_dns = Static(kControl);
  bad_second_dns.add_dns("");

  EXPECT_FALSE(Store(Static(99)));
  EXPECT_FALSE(Store(Static(-1)));
  EXPECT_FALSE(Store(Mode(kControl, static_cast<EnInterfaceMode>(4))));
  EXPECT_FALSE(Store(wireless));
  EXPECT_FALSE(Store(bad_gateway));
  EXPECT_FALSE(Store(bad_second_dns));

  EXPECT_EQ(device.StateJson(), before);
}

TEST_F(NetworkService, SetNetworkConfig_InvalidAddressOrNetmask_IsRejected) {
  InterfaceConfig config = Static(kControl);
  for (const std::string& ip : {""s, "0.0.0.0"s, "10.1.2"s, "10.1.2.256"s, "10.1.2.3/16"s,
                                "10.1.2.3 "s, "::1"s, "10.1.2.3\0."s}) {
    config.set_ip(ip);
    EXPECT_FALSE(Store(config)) << ip;
  }
  config = Static(kControl);
  for (const char* mask : {"", "0.0.0.0", "255.0.255.0", "0.0.0.255", "16"}) {
    config.set_netmask(mask);
    EXPECT_FALSE(Store(config)) << mask;
  }
}

TEST_F(NetworkService, SettingsRejected_ChangeNothing) {
  const std::string before = device.StateJson();

  for (const int mode : {3, -1}) EXPECT_FALSE(SetMode(mode)) << mode;
  EXPECT_FALSE(SetHostname(std::string(65, 'a')));

  EXPECT_EQ(device.StateJson(), before);
}

}  // namespace
