#include "simulator/factory.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "simulator/network_rules.h"

namespace simulator {
namespace {

// Where a device's own two digits stand in its MAC addresses.
constexpr std::size_t kMacOfDevice = 12;

Addresses LinkLocal(std::string ip) { return {std::move(ip), "255.255.0.0", "", {}}; }

Interface Wired(std::int32_t id, std::string name, LinkSpeed speed, std::string link_local) {
  Interface interface;
  interface.id = id;
  interface.mac = "02:54:41:52:00:0" + std::to_string(id);  // locally administered
  interface.name = std::move(name);
  interface.speed = speed;
  interface.flag6 = true;
  interface.link_local = LinkLocal(std::move(link_local));
  return interface;
}

Network FactoryNetwork() {
  Network network;
  // Audio networks seldom have a DHCP server; the two others do.
  Interface primary = Wired(1, "lan0", LinkSpeed::k1000Mbs, "169.254.82.1");
  Interface control = Wired(2, "lan1", LinkSpeed::k1000Mbs, "169.254.82.2");
  control.lease = {"192.168.10.57", "255.255.255.0", "192.168.10.1", {"192.168.10.1"}};
  Interface secondary = Wired(3, "lan2", LinkSpeed::k1000Mbs, "169.254.82.3");
  Interface service = Wired(4, "lan3", LinkSpeed::k100Mbs, "169.254.82.4");
  service.lease = {"10.77.0.20", "255.255.0.0", "10.77.0.1", {}};
  network.interfaces = {primary, control, secondary, service};

  network.switch_modes = {{0, "Switched"}, {1, "Redundant"}, {2, "Separate control"}};
  return FactoryReset(network);
}

std::string TwoDigits(std::int32_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string TwoHexDigits(int number) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%02x", static_cast<unsigned>(number) & 0xFFU);
  return text.data();
}

// Adds to one of the four numbers of an address, the first being 0.
void MoveUp(std::string& address, int octet, int by) {
  std::size_t start = 0;
  for (int dot = 0; dot < octet; ++dot) start = address.find('.', start) + 1;
  const std::size_t size = std::min(address.find('.', start), address.size()) - start;
  address.replace(start, size, std::to_string(std::stoi(address.substr(start, size)) + by));
}

std::vector<Channel> Channels(int count) {
  std::vector<Channel> channels;
  for (int id = 1; id <= count; ++id) channels.push_back(FactoryChannel(id));
  return channels;
}

Dante FactoryDante(int tx_channels, int rx_channels) {
  Dante dante;
  dante.name = "Amplifier-520001";
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
  dante.tx = Channels(tx_channels);
  dante.rx = Channels(rx_channels);
  return dante;
}

}  // namespace

Device FactoryDevice(int tx_channels, int rx_channels) {
  return FactoryDevice(tx_channels, rx_channels, 1);
}

Device FactoryDevice(int tx_channels, int rx_channels, int number) {
  Device device{FactoryNetwork(), {}, FactoryDante(tx_channels, rx_channels)};
  if (number > 1) {
    for (Interface& interface : device.network.interfaces) {
      interface.mac.replace(kMacOfDevice, 2, TwoHexDigits(number - 1));
      if (interface.lease.has_value()) MoveUp(interface.lease->ip, 3, number - 1);
      MoveUp(interface.link_local.ip, 2, number - 1);
    }
    device.network.hostname += "-" + std::to_string(number);
    device.dante.name = "Amplifier-5200" + TwoDigits(number);
  }
  ApplyNetwork(device.network);
  device.factory_network = device.network;
  return device;
}

Interface FactoryInterface(const std::string& name) {
  for (const Interface& interface : FactoryNetwork().interfaces)
    if (interface.name == name) return interface;
  Interface interface;
  interface.id = kNoInterface;
  interface.name = name;
  interface.mac = "02:54:41:52:ff:00";
  interface.speed = LinkSpeed::k1000Mbs;
  interface.flag6 = true;
  return interface;
}

// "01", "02", ... "10", ...
Channel FactoryChannel(std::int32_t id) {
  const std::string label = TwoDigits(id);
  return {id, label, label};
}

Network FactoryReset(const Network& network) {
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
