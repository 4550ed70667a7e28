// The bytes of the messages of the network-manager daemon.
#include <gtest/gtest.h>

#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/hex.h"

namespace {

using namespace ostrevan::networkmanager;  // every message of the package
using support::ParseHex;
using support::ToHex;

TEST(NetworkManagerWire, Id) {
  Id id;
  EXPECT_EQ(ToHex(id), "");
  id.set_id(2);
  EXPECT_EQ(ToHex(id), "08 02");
}

TEST(NetworkManagerWire, Ids_ArePacked) {
  Ids ids;
  ids.add_ids(1);
  ids.add_ids(3);
  EXPECT_EQ(ToHex(ids), "0A 02 01 03");
}

TEST(NetworkManagerWire, Ids_NegativeTakesTenBytes) {
  Ids ids;
  ids.add_ids(-1);
  EXPECT_EQ(ToHex(ids), "0A 0A FF FF FF FF FF FF FF FF FF 01");
}

TEST(NetworkManagerWire, Ids_UnpackedParsesLikePacked) {
  Ids ids;
  ASSERT_TRUE(ParseHex("08 01 08 03", ids));
  EXPECT_EQ(ToHex(ids), "0A 02 01 03");
}

TEST(NetworkManagerWire, InterfaceConfig_Static) {
  InterfaceConfig config;
  config.set_id(1);
  config.set_mode(STATIC);
  config.set_ip("10.0.0.2");
  EXPECT_EQ(ToHex(config), "08 01 10 01 1A 08 31 30 2E 30 2E 30 2E 32");
}

TEST(NetworkManagerWire, InterfaceConfig_DynamicWithoutAnythingIsEmpty) {
  InterfaceConfig config;
  config.set_mode(DYNAMIC);
  EXPECT_EQ(ToHex(config), "");
  ASSERT_TRUE(ParseHex("", config));
  EXPECT_EQ(config.mode(), DYNAMIC);
}

TEST(NetworkManagerWire, InterfaceConfig_EmptyWifiIsPresent) {
  InterfaceConfig config;
  config.mutable_wifi();
  EXPECT_EQ(ToHex(config), "4A 00");
  InterfaceConfig parsed;
  EXPECT_FALSE(parsed.has_wifi());
  ASSERT_TRUE(ParseHex("4A 00", parsed));
  EXPECT_TRUE(parsed.has_wifi());
}

TEST(NetworkManagerWire, InterfaceConfig_EveryField) {
  InterfaceConfig config;
  config.set_id(-1);
  config.set_mode(LINKLOCAL_ONLY);
  config.set_ip("a");
  config.set_netmask("b");
  config.set_gateway("c");
  config.add_dns("d");
  config.add_dns("");
  config.set_flag7(true);
  config.set_flag8(true);
  auto& wifi = *config.mutable_wifi();
  wifi.set_flag1(true);
  wifi.set_ssid("e");
  wifi.set_password("f");
  wifi.set_flag4(true);
  wifi.set_ap_region("g");
  wifi.set_value6(300);
  EXPECT_EQ(ToHex(config),
            "08 FF FF FF FF FF FF FF FF FF 01 10 03 1A 01 61 22 01 62 2A 01 63 32 01 64 32 00 "
            "38 01 40 01 4A 10 08 01 12 01 65 1A 01 66 20 01 2A 01 67 30 AC 02");
}

TEST(NetworkManagerWire, InterfaceStatus_EveryField) {
  InterfacesStatus list;
  auto& status = *list.add_status();
  status.set_id(1);
  status.set_ip("a");
  status.set_netmask("b");
  status.set_flag4(true);
  status.set_speed(SPEED_1000MBS);
  status.set_flag6(true);
  EXPECT_EQ(ToHex(list), "0A 0E 08 01 12 01 61 1A 01 62 20 01 28 03 30 01");
}

TEST(NetworkManagerWire, InterfaceStatus_UnlistedSpeedIsKept) {
  InterfaceStatus status;
  ASSERT_TRUE(ParseHex("28 07", status));
  EXPECT_EQ(static_cast<int>(status.speed()), 7);
  EXPECT_EQ(ToHex(status), "28 07");
}

TEST(NetworkManagerWire, Lists) {
  Interfaces interfaces;
  auto& one = *interfaces.add_interfaces();
  one.set_id(1);
  one.set_name("a");
  one.set_mac("b");
  EXPECT_EQ(ToHex(interfaces), "0A 08 08 01 12 01 61 1A 01 62");

  InterfacesConfig configs;
  configs.add_configs()->set_id(1);
  EXPECT_EQ(ToHex(configs), "0A 02 08 01");

  SwitchModes modes;
  modes.add_modes()->set_name("a");
  modes.mutable_modes(0)->set_id(1);
  EXPECT_EQ(ToHex(modes), "0A 05 08 01 12 01 61");
}

TEST(NetworkManagerWire, EmptyListParses) {
  Interfaces interfaces;
  ASSERT_TRUE(ParseHex("", interfaces));
  EXPECT_EQ(interfaces.interfaces_size(), 0);
}

TEST(NetworkManagerWire, Texts) {
  Hostname hostname;
  hostname.set_hostname("a");
  EXPECT_EQ(ToHex(hostname), "0A 01 61");
  NTPServer ntp;
  ntp.add_servers("");
  EXPECT_EQ(ToHex(ntp), "0A 00");
  Routing routing;
  routing.set_gateway("a");
  EXPECT_EQ(ToHex(routing), "0A 01 61");
  DNS dns;
  dns.add_dns("a");
  EXPECT_EQ(ToHex(dns), "0A 01 61");
}

TEST(NetworkManagerWire, Success) {
  ostrevan::networkmanager::Success success;
  EXPECT_EQ(ToHex(success), "");
  success.set_success(true);
  EXPECT_EQ(ToHex(success), "08 01");
}

TEST(NetworkManagerWire, InvalidUtf8_FailsToParse) {
  const support::CapturedStderr captured;
  Hostname hostname;
  EXPECT_FALSE(ParseHex("0A 01 FF", hostname));
}

TEST(NetworkManagerWire, InvalidUtf8_IsReportedUnderTheFieldsNameAndSent) {
  support::CapturedStderr captured;
  InterfaceConfig config;
  config.set_ip("\xFF");
  EXPECT_EQ(ToHex(config), "1A 01 FF");
  EXPECT_NE(captured.Take().find("ostrevan.networkmanager.InterfaceConfig.ip"), std::string::npos);
}

TEST(NetworkManagerWire, WrongWireTypeIsAnUnknownField) {
  Hostname hostname;
  ASSERT_TRUE(ParseHex("08 01", hostname));
  EXPECT_EQ(hostname.hostname(), "");
}

TEST(NetworkManagerWire, Truncated_FailsToParse) {
  Hostname hostname;
  EXPECT_FALSE(ParseHex("0A 05 61", hostname));
}

TEST(NetworkManagerWire, UnknownFieldsAreKept) {
  Hostname hostname;
  ASSERT_TRUE(ParseHex("0A 01 61 78 05", hostname));
  EXPECT_EQ(hostname.hostname(), "a");
  EXPECT_EQ(ToHex(hostname), "0A 01 61 78 05");
}

TEST(NetworkManagerWire, EnumNumbers) {
  EXPECT_EQ(DYNAMIC, 0);
  EXPECT_EQ(STATIC, 1);
  EXPECT_EQ(DHCP_ONLY, 2);
  EXPECT_EQ(LINKLOCAL_ONLY, 3);
  EXPECT_EQ(SPEED_INVALID, 0);
  EXPECT_EQ(SPEED_10MBS, 1);
  EXPECT_EQ(SPEED_100MBS, 2);
  EXPECT_EQ(SPEED_1000MBS, 3);
}

TEST(NetworkManagerWire, TypeNames) {
  EXPECT_EQ(Interface().GetTypeName(), "ostrevan.networkmanager.Interface");
  EXPECT_EQ(ostrevan::common::Empty().GetTypeName(), "ostrevan.common.Empty");
}

}  // namespace
