#include "simulator/network_rules.h"

#include <algorithm>
#include <utility>

#include "simulator/ipv4.h"

namespace simulator {
namespace {

constexpr std::size_t kLongestHostname = 64;  // HOST_NAME_MAX, bytes

template <class List>
auto Find(List& list, std::int32_t id) -> decltype(&*list.begin()) {
  const auto found =
      std::find_if(list.begin(), list.end(), [id](const auto& entry) { return entry.id == id; });
  return found != list.end() ? &*found : nullptr;
}

bool IsKnown(Addressing mode) {
  switch (mode) {
    case Addressing::kDynamic:
    case Addressing::kStatic:
    case Addressing::kDhcpOnly:
    case Addressing::kLinkLocalOnly:
      return true;
  }
  return false;
}

bool IsUsable(const Addresses& addresses) {
  return IsHostAddress(addresses.ip) && IsNetmask(addresses.netmask) &&
         (addresses.gateway.empty() || IsHostAddress(addresses.gateway)) &&
         std::all_of(addresses.dns.begin(), addresses.dns.end(), IsHostAddress);
}

}  // namespace

const Interface* FindInterface(const Network& network, std::int32_t id) {
  return Find(network.interfaces, id);
}

SwitchMode DescribeSwitchMode(const Network& network, std::int32_t id) {
  const SwitchMode* mode = Find(network.switch_modes, id);
  return mode != nullptr ? *mode : SwitchMode{id, ""};
}

bool StoreConfig(Network& network, std::int32_t id, const InterfaceConfig& config) {
  Interface* interface = Find(network.interfaces, id);
  if (interface == nullptr || !IsKnown(config.mode)) return false;
  if (config.mode == Addressing::kStatic && !IsUsable(config.addresses)) return false;
  interface->stored = config;
  return true;
}

bool StoreSwitchMode(Network& network, std::int32_t id) {
  if (Find(network.switch_modes, id) == nullptr) return false;
  network.stored_switch_mode = id;
  return true;
}

bool SetHostname(Network& network, const std::string& hostname) {
  if (hostname.size() > kLongestHostname) return false;
  network.hostname = hostname;
  return true;
}

void StoreNtp(Network& network, std::vector<std::string> servers) {
  network.stored_ntp = std::move(servers);
}

Addresses AddressesInUse(const Interface& interface) {
  switch (interface.stored.mode) {
    case Addressing::kStatic:
      return interface.stored.addresses;
    case Addressing::kDhcpOnly:
      return interface.lease.value_or(Addresses{});
    case Addressing::kLinkLocalOnly:
      return interface.link_local;
    case Addressing::kDynamic:
      break;
  }
  return interface.lease.value_or(interface.link_local);
}

void ApplyNetwork(Network& network) {
  for (Interface& interface : network.interfaces) interface.live = AddressesInUse(interface);
  network.live_switch_mode = network.stored_switch_mode;
}

void ApplyNtp(Network& network) { network.live_ntp = network.stored_ntp; }

void ResetNetwork(Device& device) { device.network = device.factory_network; }

std::string DefaultGateway(const Network& network) {
  for (const Interface& interface : network.interfaces)
    if (!interface.live.gateway.empty()) return interface.live.gateway;
  return "";
}

std::vector<std::string> DnsInUse(const Network& network) {
  std::vector<std::string> servers;
  for (const Interface& interface : network.interfaces)
    for (const std::string& server : interface.live.dns)
      if (std::find(servers.begin(), servers.end(), server) == servers.end())
        servers.push_back(server);
  return servers;
}

}  // namespace simulator
