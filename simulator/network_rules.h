// Which requests the network-manager daemon accepts, and what they change.
//
// A function that changes something and can reject the request returns true if
// it changed it, false if it rejected; a rejected request changes nothing. Stored
// settings take effect with ApplyNetwork and ApplyNtp, as on the device.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// The mode with this id. An unknown id gives a mode of that id without a name.
SwitchMode DescribeSwitchMode(const Network& network, std::int32_t id);

/// Rejects an unknown interface, an unknown addressing mode, and static addressing
/// if address or netmask is missing or malformed or if the gateway or a DNS server
/// is malformed.
bool StoreConfig(Network& network, std::int32_t id, const InterfaceConfig& config);

/// Rejects a mode that the device does not offer.
bool StoreSwitchMode(Network& network, std::int32_t id);

/// Takes effect at once. Rejects a name longer than 64 bytes, the limit of Linux.
bool SetHostname(Network& network, const std::string& hostname);

/// The addresses that the stored configuration results in, on the network that
/// the interface is connected to.
Addresses AddressesInUse(const Interface& interface);

/// Puts the stored configuration of every interface and the stored switch mode
/// into effect.
void ApplyNetwork(Network& network);

/// Puts the stored NTP servers into effect.
void ApplyNtp(Network& network);

/// Restores the factory defaults of the network settings, stored and in effect.
/// The settings of the Dante module stay.
void ResetNetwork(Device& device);

/// The default gateway of the host: that of the first interface which has one,
/// empty if none has.
std::string DefaultGateway(const Network& network);

/// The DNS servers in use on all interfaces, without duplicates.
std::vector<std::string> DnsInUse(const Network& network);

}  // namespace simulator
