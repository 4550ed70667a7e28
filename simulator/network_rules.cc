#include "simulator/network_rules.h"

#include <arpa/inet.h>

#include <algorithm>
#include <optional>

#include "simulator/find_by_id.h"

namespace simulator {
namespace {

constexpr std::size_t kLongestHostname = 64;  // HOST_NAME_MAX, bytes

// An IPv4 address in host byte order.
std::optional<std::uint32_t> ParseAddress(const std::string& string) {
  // A NUL would hide what follows it.
  if (string.find('\0') != std::string::npos) return std::nullopt;
  in_addr address{};
  if (inet_pton(AF_INET, string.c_str(), &address) != 1) return std::nullopt;
  return ntohl(address.s_addr);
}

// "0.0.0.0" is no host's address.
bool IsHostAddress(const std::string& string) { return ParseAddress(string).value_or(0) != 0; }

// One bits from the left, at least one.
bool IsNetmask(const std::string& string) {
  const std::uint32_t mask = ParseAddress(string).value_or(0);
  // With the zeros at the right end, one more than their value is a power of two.
  const std::uint32_t zeros = ~mask;
  return mask != 0 && (zeros & (zeros + 1U)) == 0;
}

bool IsKnown(Addressing mode) {
  return mode >= Addressing::kDynamic && mode <= Addressing::kLinkLocalOnly;
}

bool IsUsable(const Addresses& addresses) {
  return IsHostAddress(addresses.ip) && IsNetmask(addresses.netmask) &&
         (addresses.gateway.empty() || IsHostAddress(addresses.gateway)) &&
         std::all_of(addresses.dns.begin(), addresses.dns.end(), IsHostAddress);
}

}  // namespace

SwitchMode DescribeSwitchMode(const Network& network, std::int32_t id) {
  const SwitchMode* mode = FindById(network.switch_modes, id);
  return mode != nullptr ? *mode : SwitchMode{id, ""};
}

bool StoreConfig(Network& network, std::int32_t id, const InterfaceConfig& config) {
  Interface* interface = FindById(network.interfaces, id);
  if (interface == nullptr || !IsKnown(config.mode)) return false;
  if (config.mode == Addressing::kStatic && !IsUsable(config.addresses)) return false;
  interface->stored = config;
  return true;
}

bool StoreSwitchMode(Network& network, std::int32_t id) {
  if (FindById(network.switch_modes, id) == nullptr) return false;
  network.stored_switch_mode = id;
  return true;
}

bool SetHostname(Network& network, const std::string& hostname) {
  if (hostname.size() > kLongestHostname) return false;
  network.hostname = hostname;
  return true;
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
