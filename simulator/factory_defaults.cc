#include "simulator/factory_defaults.h"

#include <array>
#include <cstdio>

#include "simulator/network_rules.h"

namespace simulator {
namespace {

std::string TwoDigits(std::int32_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string TwoHexDigits(int number) {
  std::array<char, 8> digits{};
  std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(number) & 0xFFU);
  return digits.data();
}

// An interface of the device with this number; its addresses contain both numbers.
Interface Wired(int device, std::int32_t id, LinkSpeed speed) {
  Interface interface;
  interface.id = id;
  interface.name = "lan" + std::to_string(id - 1);
  // 02: locally administered
  interface.mac = "02:54:41:52:" + TwoHexDigits(device - 1) + ':' + TwoHexDigits(id);
  interface.speed = speed;
  interface.flag6 = true;
  interface.link_local = {
      "169.254." + std::to_string(81 + device) + '.' + std::to_string(id), "255.255.0.0", "", {}};
  return interface;
}

Network DefaultNetwork(int device) {
  Network network;
  // Audio networks seldom have a DHCP server; the two others do.
  const Interface primary = Wired(device, 1, LinkSpeed::k1000Mbs);
  Interface control = Wired(device, 2, LinkSpeed::k1000Mbs);
  control.lease = {"192.168.10." + std::to_string(56 + device),
                   "255.255.255.0",
                   "192.168.10.1",
                   {"192.168.10.1"}};
  const Interface secondary = Wired(device, 3, LinkSpeed::k1000Mbs);
  Interface service = Wired(device, 4, LinkSpeed::k100Mbs);
  service.lease = {"10.77.0." + std::to_string(19 + device), "255.255.0.0", "10.77.0.1", {}};
  network.interfaces = {primary, control, secondary, service};

  network.switch_modes = {{0, "Switched"}, {1, "Redundant"}, {2, "Separate control"}};
  network = FactoryDefaultNetwork(network);
  if (device > 1) network.hostname += '-' + std::to_string(device);
  return network;
}

std::vector<Channel> DefaultChannels(int count) {
  std::vector<Channel> channels;
  for (int id = 1; id <= count; ++id) channels.push_back(FactoryDefaultChannel(id));
  return channels;
}

Dante DefaultDante(int device, int tx_channels, int rx_channels) {
  Dante dante;
  dante.name = "Amplifier-5200" + TwoDigits(device);
  dante.manufacturer = "Ostrevan";
  dante.model_name = "Simulated amplifier";
  dante.model_version = "1.0.0";
  dante.software_version = "1.4.2";
  dante.firmware_version = "4.2.0.18";
  dante.sample_rates = {44100, 48000, 88200, 96000};
  dante.sample_rate = 48000;
  dante.latency = 1000;
  dante.min_latency = 250;
  dante.aes67_available = true;
  dante.ptp.config_value1 = 1;
  dante.ptp.config_value2 = 128;
  dante.ptp.status_value1 = 1;
  dante.ptp.clock = Clock::kDisciplined;
  dante.tx = DefaultChannels(tx_channels);
  dante.rx = DefaultChannels(rx_channels);
  return dante;
}

}  // namespace

Device FactoryDefaults(int tx_channels, int rx_channels, int number) {
  const Network network = DefaultNetwork(number);
  return {network, network, DefaultDante(number, tx_channels, rx_channels)};
}

Interface FactoryDefaultInterface(const std::string& name) {
  for (const Interface& interface : DefaultNetwork(1).interfaces)
    if (interface.name == name) return interface;
  Interface interface;
  interface.id = kNoInterface;
  interface.name = name;
  interface.mac = "02:54:41:52:ff:00";
  interface.speed = LinkSpeed::k1000Mbs;
  interface.flag6 = true;
  return interface;
}

Channel FactoryDefaultChannel(std::int32_t id) {
  const std::string label = TwoDigits(id);
  return {id, label, label};
}

Network FactoryDefaultNetwork(const Network& network) {
  Network reset = network;
  for (Interface& interface : reset.interfaces) interface.stored = {};
  reset.stored_switch_mode = reset.switch_modes.empty() ? 0 : reset.switch_modes.front().id;
  reset.hostname = "amplifier";
  reset.stored_ntp = {"pool.ntp.example"};
  ApplyNetwork(reset);
  ApplyNtp(reset);
  return reset;
}

}  // namespace simulator
