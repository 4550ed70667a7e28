// The list of interfaces: how stored and live state are merged when answers are unusual.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/show.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::CapturedStderr;
using support::Device;
using support::NetworkManagerPath;
using support::Request;
using support::Show;
using Records = std::vector<NetworkgRPC::InterfaceInfo>;

const std::string kNothing = "{mode=0 name= ip= netmask= gateway= mac= dns= active=0 id=0}";

nm::InterfaceConfig Stored(int id, nm::EnInterfaceMode mode, const std::string& ip) {
  nm::InterfaceConfig config;
  config.set_id(id);
  config.set_mode(mode);
  config.set_ip(ip);
  config.set_netmask("stored mask");
  config.set_gateway("stored gateway");
  config.add_dns("stored dns");
  return config;
}

nm::InterfaceStatus Live(int id, bool flag, const std::string& ip) {
  nm::InterfaceStatus status;
  status.set_id(id);
  status.set_flag4(flag);
  status.set_ip(ip);
  status.set_netmask("live mask");
  return status;
}

class InterfaceInfo : public testing::Test {
 protected:
  void Script(const std::vector<nm::InterfaceConfig>& stored,
              const std::vector<nm::InterfaceStatus>& live) {
    nm::InterfacesConfig config;
    for (const auto& entry : stored) *config.add_configs() = entry;
    nm::InterfacesStatus status;
    for (const auto& entry : live) *status.add_status() = entry;
    Answer("GetNetworkConfig", support::Reply(config));
    Answer("GetNetworkStatus", support::Reply(status));
  }

  void ScriptSwitchMode(int id) {
    nm::SwitchMode mode;
    mode.set_id(id);
    Answer("GetSwitchModeStatus", support::Reply(mode));
  }

  void Answer(const std::string& method, const support::Answer& answer) {
    device.network_manager->Script(NetworkManagerPath(method), answer);
  }

  std::vector<std::string> Paths() {
    std::vector<std::string> paths;
    for (const Request& request : device.TakeRequests())
      paths.push_back(request.path.substr(request.path.rfind('/') + 1));
    return paths;
  }

  // The interface ids in the requests of the last two calls.
  std::string IdsAskedFor() {
    const auto requests = device.TakeRequests();
    EXPECT_GE(requests.size(), 2U);
    EXPECT_EQ(requests[requests.size() - 2].path, NetworkManagerPath("GetNetworkConfig"));
    EXPECT_EQ(requests.back().path, NetworkManagerPath("GetNetworkStatus"));
    EXPECT_EQ(requests[requests.size() - 2].bytes, requests.back().bytes);
    nm::Ids ids;
    EXPECT_TRUE(ids.ParseFromString(requests.back().bytes));
    std::string text;
    for (const int id : ids.ids()) text += std::to_string(id) + ' ';
    return text;
  }

  Device device;
  Records out;
};

TEST_F(InterfaceInfo, Dante_ModeInEffectIsNotOne_AsksForThePrimaryOnly) {
  for (const int mode : {0, 2, -1}) {
    SCOPED_TRACE(mode);
    out.clear();
    ScriptSwitchMode(mode);
    Script({Stored(support::kLan0, nm::STATIC, "a"), Stored(support::kLan2, nm::STATIC, "b")},
           {Live(support::kLan0, true, "c"), Live(support::kLan2, true, "d")});

    EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
    EXPECT_EQ(out.size(), 1U);
    EXPECT_EQ(IdsAskedFor(), "10 ");
  }
}

TEST_F(InterfaceInfo, Dante_ModeInEffectIsOne_AsksForBoth) {
  ScriptSwitchMode(1);
  Script({Stored(support::kLan2, nm::DYNAMIC, ""), Stored(support::kLan0, nm::STATIC, "")},
         {Live(support::kLan2, true, "d"), Live(support::kLan0, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
  EXPECT_EQ(Show(out),
            "[{mode=1 name= ip=c netmask=live mask gateway= mac=02:00:00:00:00:10 dns= active=1 "
            "id=0}"
            "{mode=0 name= ip=d netmask=live mask gateway= mac=02:00:00:00:00:12 dns= active=1 "
            "id=0}]");
  EXPECT_EQ(IdsAskedFor(), "10 12 ");
}

TEST_F(InterfaceInfo, Dante_SecondaryUnresolved_IsLeftOutInModeOne) {
  setenv("dante_secondary_interface_env", "lan9", 1);
  ScriptSwitchMode(1);
  Script({Stored(support::kLan0, nm::STATIC, "a")}, {Live(support::kLan0, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
  EXPECT_EQ(out.size(), 1U);
  EXPECT_EQ(IdsAskedFor(), "10 ");
}

TEST_F(InterfaceInfo, Dante_PrimaryUnresolved_IsLeftOut) {
  setenv("dante_primary_interface_env", "lan9", 1);
  ScriptSwitchMode(1);
  Script({Stored(support::kLan2, nm::STATIC, "a")}, {Live(support::kLan2, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
  ASSERT_EQ(out.size(), 1U);
  EXPECT_EQ(out[0].mac, support::kLan2Mac);
  EXPECT_EQ(IdsAskedFor(), "12 ");
}

TEST_F(InterfaceInfo, Dante_NoRoleResolved_AsksForNoneAndAppendsNone) {
  setenv("dante_primary_interface_env", "", 1);
  setenv("dante_secondary_interface_env", "", 1);
  ScriptSwitchMode(1);
  Script({Stored(-1, nm::STATIC, "a")}, {Live(-1, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(IdsAskedFor(), "");
}

TEST_F(InterfaceInfo, Dante_BothRolesAreOneInterface_IsListedTwice) {
  setenv("dante_secondary_interface_env", "lan0", 1);
  ScriptSwitchMode(1);
  Script({Stored(support::kLan0, nm::STATIC, "a")}, {Live(support::kLan0, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetDanteInterfacesInfo(out));
  ASSERT_EQ(out.size(), 2U);
  EXPECT_EQ(Show(out[0]), Show(out[1]));
  EXPECT_EQ(IdsAskedFor(), "10 10 ");
}

TEST_F(InterfaceInfo, Dante_EmptyConfigList_FailsWithItsLineAndAsksNoFurther) {
  ScriptSwitchMode(1);
  Script({}, {Live(support::kLan0, true, "c")});
  CapturedStderr captured;

  EXPECT_FALSE(NetworkgRPC::GetDanteInterfacesInfo(out));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while requesting network config in "
            "GetDanteInterfacesInfo\n");
  EXPECT_EQ(Paths(), (std::vector<std::string>{"GetAvailableInterfaces", "GetSwitchModeStatus",
                                               "GetNetworkConfig"}));
}

TEST_F(InterfaceInfo, Dante_EmptyStatusList_FailsWithItsLine) {
  ScriptSwitchMode(0);
  Script({Stored(support::kLan0, nm::STATIC, "a")}, {});
  CapturedStderr captured;

  EXPECT_FALSE(NetworkgRPC::GetDanteInterfacesInfo(out));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while requesting network status in "
            "GetDanteInterfacesInfo\n");
  EXPECT_TRUE(out.empty());
}

TEST_F(InterfaceInfo, Control_EmptyLists_FailWithTheirLines) {
  CapturedStderr captured;
  Script({}, {});
  EXPECT_FALSE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while requesting network config in "
            "GetControlInterfacesInfo\n");

  Script({Stored(support::kLan1, nm::STATIC, "a")}, {});
  EXPECT_FALSE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: ERROR: error while requesting network status in "
            "GetControlInterfacesInfo\n");
}

TEST_F(InterfaceInfo, Control_Unresolved_FailsSilentlyWithoutACall) {
  setenv("control_interface_env", "lan9", 1);
  CapturedStderr captured;

  EXPECT_FALSE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(captured.Take(), "");
  EXPECT_EQ(Paths(), std::vector<std::string>{"GetAvailableInterfaces"});
}

TEST_F(InterfaceInfo, Control_StaticAndNotLive_ShowsTheStoredAddress) {
  Script({Stored(support::kLan1, nm::STATIC, "192.168.1.10")},
         {Live(support::kLan1, false, "10.9.9.9")});

  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(Show(out),
            "[{mode=1 name= ip=192.168.1.10 netmask=stored mask gateway= mac=02:00:00:00:00:11 "
            "dns= active=0 id=0}]");
}

TEST_F(InterfaceInfo, Control_DynamicAndNotLive_ShowsNoAddress) {
  for (const auto mode :
       {nm::DYNAMIC, nm::DHCP_ONLY, nm::LINKLOCAL_ONLY, static_cast<nm::EnInterfaceMode>(17)}) {
    SCOPED_TRACE(mode);
    out.clear();
    Script({Stored(support::kLan1, mode, "192.168.1.10")},
           {Live(support::kLan1, false, "10.9.9.9")});

    EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
    EXPECT_EQ(Show(out),
              "[{mode=0 name= ip= netmask= gateway= mac=02:00:00:00:00:11 dns= active=0 id=0}]");
  }
}

TEST_F(InterfaceInfo, Control_LiveWithoutAddress_ShowsNoneAlthoughOneIsStored) {
  Script({Stored(support::kLan1, nm::STATIC, "a")}, {Live(support::kLan1, true, "")});

  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(out[0].ip, "");
  EXPECT_EQ(out[0].netmask, "live mask");
}

TEST_F(InterfaceInfo, Control_MissingInOneOfTheLists_IsAppendedWithNothing) {
  Script({Stored(99, nm::STATIC, "a")}, {Live(support::kLan1, true, "c")});
  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  Script({Stored(support::kLan1, nm::STATIC, "a")}, {Live(99, true, "c")});
  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));

  EXPECT_EQ(Show(out), "[" + kNothing + kNothing + "]");
}

TEST_F(InterfaceInfo, Control_TwiceInTheLists_TakesTheFirst) {
  Script({Stored(support::kLan1, nm::STATIC, "a"), Stored(support::kLan1, nm::DYNAMIC, "b")},
         {Live(support::kLan1, true, "c"), Live(support::kLan1, true, "d")});

  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(out[0].mode, 1);
  EXPECT_EQ(out[0].ip, "c");
}

TEST_F(InterfaceInfo, AllIPv4_AddressesOfTheStatusComeFirstThenTheStoredStaticOne) {
  Script({Stored(support::kLan0, nm::STATIC, "s0"), Stored(support::kLan1, nm::STATIC, "s1"),
          Stored(support::kLan2, nm::DHCP_ONLY, "s2"), Stored(support::kLan3, nm::STATIC, "s3")},
         {Live(support::kLan0, false, "l0"), Live(support::kLan1, true, ""),
          Live(support::kLan2, true, "")});

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  ASSERT_EQ(out.size(), 4U);
  EXPECT_EQ(Show(out[0]),
            "{mode=1 name=lan0 ip=l0 netmask=live mask gateway= mac=02:00:00:00:00:10 dns= "
            "active=0 id=10}");
  EXPECT_EQ(Show(out[1]),
            "{mode=1 name=lan1 ip=s1 netmask=stored mask gateway= mac=02:00:00:00:00:11 dns= "
            "active=1 id=11}");
  EXPECT_EQ(Show(out[2]),
            "{mode=0 name=lan2 ip= netmask=live mask gateway= mac=02:00:00:00:00:12 dns= "
            "active=1 id=12}");
  EXPECT_EQ(Show(out[3]),
            "{mode=1 name=lan3 ip=s3 netmask=stored mask gateway= mac=02:00:00:00:00:13 dns= "
            "active=0 id=13}");
}

TEST_F(InterfaceInfo, AllIPv4_WithoutStoredConfig_KeepsNameMacAndIdOnly) {
  Script({Stored(support::kLan1, nm::STATIC, "s1")}, {Live(support::kLan0, true, "l0")});

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  ASSERT_EQ(out.size(), 4U);
  EXPECT_EQ(Show(out[0]),
            "{mode=0 name=lan0 ip= netmask= gateway= mac=02:00:00:00:00:10 dns= active=0 id=10}");
}

TEST_F(InterfaceInfo, AllIPv4_RepeatedIds_TakeTheFirstOfEachList) {
  nm::Interfaces interfaces;
  for (const char* name : {"a", "b"}) {
    auto& added = *interfaces.add_interfaces();
    added.set_id(5);
    added.set_name(name);
  }
  Answer("GetAvailableInterfaces", support::Reply(interfaces));
  Script({Stored(5, nm::STATIC, "first"), Stored(5, nm::DYNAMIC, "second")},
         {Live(5, true, "third"), Live(5, false, "fourth")});

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  EXPECT_EQ(Show(out),
            "[{mode=1 name=a ip=third netmask=live mask gateway= mac= dns= active=1 id=5}"
            "{mode=1 name=b ip=third netmask=live mask gateway= mac= dns= active=1 id=5}]");
  EXPECT_EQ(IdsAskedFor(), "5 5 ");
}

TEST_F(InterfaceInfo, AllIPv4_AnyIds_AreAskedForInTheOrderOfTheList) {
  nm::Interfaces interfaces;
  for (const int id : {7, 0, -1, INT_MAX, 7, INT_MIN}) interfaces.add_interfaces()->set_id(id);
  Answer("GetAvailableInterfaces", support::Reply(interfaces));
  Script({}, {});

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  EXPECT_EQ(IdsAskedFor(), "7 0 -1 2147483647 7 -2147483648 ");
}

TEST_F(InterfaceInfo, AllIPv4_DescribedInAnotherOrder_MatchesById) {
  Script({Stored(support::kLan2, nm::STATIC, "s2"), Stored(support::kLan1, nm::STATIC, "s1"),
          Stored(support::kLan2, nm::DYNAMIC, "late"), Stored(support::kLan0, nm::STATIC, "s0")},
         {Live(support::kLan2, true, "l2"), Live(support::kLan0, true, "l0"),
          Live(support::kLan0, false, "late")});

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  ASSERT_EQ(out.size(), 4U);
  EXPECT_EQ(Show(out[0]),
            "{mode=1 name=lan0 ip=l0 netmask=live mask gateway= mac=02:00:00:00:00:10 dns= "
            "active=1 id=10}");
  EXPECT_EQ(Show(out[1]),
            "{mode=1 name=lan1 ip=s1 netmask=stored mask gateway= mac=02:00:00:00:00:11 dns= "
            "active=0 id=11}");
  EXPECT_EQ(Show(out[2]),
            "{mode=1 name=lan2 ip=l2 netmask=live mask gateway= mac=02:00:00:00:00:12 dns= "
            "active=1 id=12}");
}

TEST_F(InterfaceInfo, AllIPv4_NoInterfaces_AsksForNoneAndAppendsNone) {
  Answer("GetAvailableInterfaces", {""});
  Script({}, {});
  CapturedStderr captured;

  EXPECT_TRUE(NetworkgRPC::GetAllIPv4(out));
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(captured.Take(), "");
  EXPECT_EQ(Paths(), (std::vector<std::string>{"GetAvailableInterfaces", "GetAvailableInterfaces",
                                               "GetNetworkConfig", "GetNetworkStatus"}));
}

TEST_F(InterfaceInfo, CalledTwice_DoublesTheEntries) {
  Script({Stored(support::kLan1, nm::STATIC, "a")}, {Live(support::kLan1, true, "c")});

  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_TRUE(NetworkgRPC::GetControlInterfacesInfo(out));
  EXPECT_EQ(out.size(), 2U);
}

TEST(MacAddress, NameDiffersInCase_FailsWithNotFound) {
  Device device;
  CapturedStderr captured;
  std::string mac = "before";

  for (const std::string& name : {std::string("LAN0"), std::string("lan0\0x", 6),
                                  std::string("lan00"), std::string(), std::string(" lan0")})
    EXPECT_FALSE(NetworkgRPC::GetMACAddress(name, mac));

  EXPECT_EQ(mac, "before");
  const std::string line =
      "libNetworkgRPC: GetMACAddress: error while requesting informations via gRPC, interface "
      "not found\n";
  EXPECT_EQ(captured.Take(), line + line + line + line + line);
}

TEST(MacAddress, InterfaceWithoutOne_IsEmpty) {
  Device device;
  nm::Interfaces interfaces;
  interfaces.add_interfaces()->set_name("lan0");
  device.network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"),
                                 support::Reply(interfaces));
  std::string mac = "before";

  EXPECT_TRUE(NetworkgRPC::GetMACAddress("lan0", mac));
  EXPECT_EQ(mac, "");
}

TEST(MacAddress, EmptyList_FailsWithNotFound) {
  Device device;
  device.network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"), {""});
  CapturedStderr captured;
  std::string mac;

  EXPECT_FALSE(NetworkgRPC::GetMACAddress("lan0", mac));
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: GetMACAddress: error while requesting informations via gRPC, "
            "interface not found\n");
}

TEST(MacAddress, NameTwiceInTheList_TakesTheFirst) {
  Device device;
  nm::Interfaces interfaces;
  for (const char* mac : {"first", "second"}) {
    auto& added = *interfaces.add_interfaces();
    added.set_name("");
    added.set_mac(mac);
  }
  device.network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"),
                                 support::Reply(interfaces));
  std::string mac;

  EXPECT_TRUE(NetworkgRPC::GetMACAddress("", mac));
  EXPECT_EQ(mac, "first");
}

TEST(TarvoName, EveryRole_HasItsLabelWithoutACall) {
  Device device;
  device.BuildClients();
  std::string control;
  std::string primary;
  std::string secondary;

  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(support::kLan1, control));
  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(support::kLan0, primary));
  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(support::kLan2, secondary));

  EXPECT_EQ(control + ' ' + primary + ' ' + secondary, "eth0 dante-0 dante-1");
  EXPECT_TRUE(device.TakeRequests().empty());
}

TEST(TarvoName, IdWithoutARole_FailsAndPrintsTheId) {
  Device device;
  CapturedStderr captured;
  std::string label = "before";

  EXPECT_FALSE(NetworkgRPC::GetTarvoInterfaceName(support::kLan3, label));
  EXPECT_FALSE(NetworkgRPC::GetTarvoInterfaceName(-1, label));
  EXPECT_EQ(label, "before");
  EXPECT_EQ(captured.Take(),
            "libNetworkgRPC: wrong interface ID while getting tarvo name: 13\n"
            "libNetworkgRPC: wrong interface ID while getting tarvo name: -1\n");
}

TEST(TarvoName, MinusOneWithUnresolvedRoles_IsTheFirstOfThem) {
  Device device;
  setenv("dante_primary_interface_env", "", 1);
  setenv("control_interface_env", "", 1);
  std::string label;

  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(-1, label));
  EXPECT_EQ(label, "eth0");
}

class TarvoNameOfMinusOne : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(TarvoNameOfMinusOne, OneRoleIsUnresolved_IsThatRole) {
  Device device;
  setenv(GetParam().first, "", 1);
  std::string label;

  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(-1, label));
  EXPECT_EQ(label, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Roles, TarvoNameOfMinusOne,
                         testing::Values(std::pair("control_interface_env", "eth0"),
                                         std::pair("dante_primary_interface_env", "dante-0"),
                                         std::pair("dante_secondary_interface_env", "dante-1")),
                         [](const auto& test) { return std::string(test.param.first); });

TEST(TarvoName, InterfaceWithTwoRoles_IsTheControlInterface) {
  Device device;
  setenv("control_interface_env", "lan0", 1);
  std::string label;

  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(support::kLan0, label));
  EXPECT_EQ(label, "eth0");
}

TEST(TarvoName, InterfaceWithBothDanteRoles_IsThePrimary) {
  Device device;
  setenv("dante_secondary_interface_env", "lan0", 1);
  std::string label;

  EXPECT_TRUE(NetworkgRPC::GetTarvoInterfaceName(support::kLan0, label));
  EXPECT_EQ(label, "dante-0");
}

}  // namespace
