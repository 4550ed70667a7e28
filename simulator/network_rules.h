// What the network-manager daemon accepts, and what it does when it accepts.
//
// A function that changes something returns whether it was carried out; a
// refusal changes nothing. What is stored takes effect with ApplyNetwork and
// ApplyNtp, as on the device.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// Null for an unknown id.
const Interface* FindInterface(const Network& network, std::int32_t id);

/// The mode with this id. An unknown id gives a mode of that id without a name.
SwitchMode DescribeSwitchMode(const Network& network, std::int32_t id);

/// Refuses an unknown interface, an unknown way of addressing, and static
/// addressing whose address or netmask is missing or malformed or whose gateway
/// or DNS servers are malformed.
bool StoreConfig(Network& network, std::int32_t id, const InterfaceConfig& config);

/// Refuses a mode that the device does not offer.
bool StoreSwitchMode(Network& network, std::int32_t id);

/// Takes effect at once. Refuses a name longer than the 64 bytes that Linux
/// takes.
bool SetHostname(Network& network, const std::string& hostname);

void StoreNtp(Network& network, std::vector<std::string> servers);

/// What the stored configuration leads to on the network that the interface is
/// plugged into.
Addresses AddressesInUse(const Interface& interface);

/// Puts the stored configuration of every interface and the stored switch mode
/// into effect.
void ApplyNetwork(Network& network);

/// Puts the stored NTP servers into effect.
void ApplyNtp(Network& network);

/// Brings back the network settings, stored and in effect, that the device came
/// with. The Dante module keeps its own.
void ResetNetwork(Device& device);

/// The host's default gateway: that of the first interface which has one, empty
/// when none has.
std::string DefaultGateway(const Network& network);

/// The DNS servers in use on all interfaces, each once.
std::vector<std::string> DnsInUse(const Network& network);

}  // namespace simulator
