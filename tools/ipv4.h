// IPv4 addresses as people type them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

/// Empty if `text` is not four decimal numbers with dots between them.
std::optional<std::uint32_t> ParseIpv4(const std::string& text);

std::string Ipv4Text(std::uint32_t address);

/// The length of a netmask's prefix; empty if it is no netmask, as 255.0.255.0.
std::optional<int> PrefixLength(const std::string& netmask);

/// The netmask of a prefix of 1 to 32 bits.
std::string Netmask(int prefix_length);

/// What is wrong with a host's address, netmask and gateway, which may be empty; ""
/// if nothing.
std::string CheckAddresses(const std::string& ip, const std::string& netmask,
                           const std::string& gateway);

}  // namespace tool
