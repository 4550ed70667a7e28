// The factory defaults, which differ between devices.
#include "simulator/factory_defaults.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace {

using simulator::Device;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> AddressesOf(const Device& device) {
  std::vector<std::string> addresses;
  for (const auto& interface : device.network.interfaces) {
    addresses.push_back(interface.mac);
    addresses.push_back(interface.link_local.ip);
    if (interface.lease.has_value()) addresses.push_back(interface.lease->ip);
  }
  return addresses;
}

TEST(FactoryDefaults, ManyDevices_HaveDifferentNamesAndAddresses) {
  std::set<std::string> seen;
  for (int number = 1; number <= 64; ++number) {
    const Device device = simulator::FactoryDefaults(0, 0, number);
    for (const std::string& address : AddressesOf(device)) seen.insert(address);
    seen.insert(device.dante.name);
    seen.insert(device.network.hostname);
  }
  EXPECT_THAT(seen, SizeIs(64 * (4 + 4 + 2 + 2)));
  EXPECT_THAT(
      seen,
      Contains("02:54:41:52:3f:04"));  // the last interface of the last device, in hexadecimal
}

TEST(FactoryDefaults, ThirdDevice_HasItsNumberInNamesAndAddresses) {
  const Device device = simulator::FactoryDefaults(1, 12, 3);

  EXPECT_THAT(AddressesOf(device),
              ElementsAre("02:54:41:52:02:01", "169.254.84.1", "02:54:41:52:02:02", "169.254.84.2",
                          "192.168.10.59", "02:54:41:52:02:03", "169.254.84.3", "02:54:41:52:02:04",
                          "169.254.84.4", "10.77.0.22"));
  EXPECT_EQ(device.network.interfaces[1].live.ip, "192.168.10.59");
  EXPECT_EQ(device.network.interfaces[2].live.ip, "169.254.84.3");
  EXPECT_EQ(device.network.hostname, "amplifier-3");
  EXPECT_EQ(device.dante.name, "Amplifier-520003");
  EXPECT_EQ(device.dante.rx.front().name, "01");
  EXPECT_EQ(device.dante.rx.back().default_name, "12");
  EXPECT_THAT(device.dante.tx, SizeIs(1));
  EXPECT_THAT(device.dante.links, IsEmpty());
}

TEST(FactoryDefaults, NetworkAfterChanges_IsThatOfTheDeviceAsDelivered) {
  const Device device = simulator::FactoryDefaults(0, 0, 2);
  simulator::Network used = device.network;
  used.interfaces[1].stored = {simulator::Addressing::kStatic,
                               {"10.0.0.2", "255.0.0.0", "10.0.0.1", {"10.0.0.3"}},
                               true,
                               true};
  used.stored_switch_mode = used.live_switch_mode = 2;
  used.stored_ntp = used.live_ntp = {};
  used.interfaces[1].live = {};

  const simulator::Network reset = FactoryDefaultNetwork(used);

  EXPECT_EQ(reset.interfaces[1].stored.mode, simulator::Addressing::kDynamic);
  EXPECT_EQ(reset.interfaces[1].stored.addresses.ip, "");
  EXPECT_FALSE(reset.interfaces[1].stored.flag7);
  EXPECT_EQ(reset.interfaces[1].live.ip, "192.168.10.58");
  EXPECT_EQ(reset.interfaces[1].mac, used.interfaces[1].mac);
  EXPECT_EQ(reset.stored_switch_mode, 0);
  EXPECT_EQ(reset.live_switch_mode, 0);
  EXPECT_THAT(reset.stored_ntp, ElementsAre("pool.ntp.example"));
  EXPECT_THAT(reset.live_ntp, ElementsAre("pool.ntp.example"));
  EXPECT_EQ(device.factory_network.hostname, "amplifier-2");
}

TEST(FactoryDefaults, InterfaceOfAnotherName_HasNoIdYet) {
  EXPECT_EQ(simulator::FactoryDefaultInterface("lan3").id, 4);
  EXPECT_EQ(simulator::FactoryDefaultInterface("eth7").id, simulator::kNoInterface);
  EXPECT_EQ(simulator::FactoryDefaultInterface("eth7").name, "eth7");
}

}  // namespace
