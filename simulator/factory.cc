#include "simulator/factory.h"

#include <utility>

#include "simulator/network_rules.h"

namespace simulator {
namespace {

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
  network.hostname = "amplifier";
  network.stored_ntp = {"pool.ntp.example"};
  ApplyNetwork(network);
  ApplyNtp(network);
  return network;
}

// "01", "02", ... "10", ...
std::vector<Channel> Channels(int count) {
  std::vector<Channel> channels;
  for (int id = 1; id <= count; ++id) {
    const std::string label = (id < 10 ? "0" : "") + std::to_string(id);
    channels.push_back({id, label, label});
  }
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
  const Network network = FactoryNetwork();
  return {network, network, FactoryDante(tx_channels, rx_channels)};
}

}  // namespace simulator
