#include "tools/ipv4.h"

#include <arpa/inet.h>

#include <array>

namespace tool {
namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;

std::uint32_t Mask(int prefix_length) {
  return prefix_length == 0 ? 0 : kAllOnes << static_cast<unsigned>(32 - prefix_length);
}

// Why no interface of a network can have this address.
std::string Unusable(std::uint32_t address, std::uint32_t mask) {
  const std::uint32_t first_byte = address >> 24U;
  if (first_byte == 0 || first_byte == 127 || first_byte >= 224)
    return "is not the address of an interface";
  const std::uint32_t host = address & ~mask;
  constexpr std::uint32_t kPointToPoint = 1;  // networks of two have no other addresses
  if (~mask <= kPointToPoint) return "";
  if (host == 0) return "is the address of the network itself";
  if (host == ~mask) return "is the broadcast address of its network";
  return "";
}

}  // namespace

std::optional<std::uint32_t> ParseIpv4(const std::string& text) {
  in_addr address{};
  if (inet_pton(AF_INET, text.c_str(), &address) != 1) return std::nullopt;
  return ntohl(address.s_addr);
}

std::string Ipv4Text(std::uint32_t address) {
  const in_addr wire{htonl(address)};
  std::array<char, INET_ADDRSTRLEN> text{};
  return inet_ntop(AF_INET, &wire, text.data(), text.size());
}

std::optional<int> PrefixLength(const std::string& netmask) {
  const auto mask = ParseIpv4(netmask);
  for (int length = 0; mask.has_value() && length <= 32; ++length)
    if (Mask(length) == *mask) return length;
  return std::nullopt;
}

std::string Netmask(int prefix_length) { return Ipv4Text(Mask(prefix_length)); }

std::string CheckAddresses(const std::string& ip, const std::string& netmask,
                           const std::string& gateway) {
  const auto address = ParseIpv4(ip);
  if (!address.has_value()) return "'" + ip + "' is not an IPv4 address such as 10.0.0.2";
  const auto length = PrefixLength(netmask);
  if (!length.has_value() || *length == 0)
    return "'" + netmask + "' is not a netmask such as 255.255.255.0";
  const std::uint32_t mask = Mask(*length);
  const std::string unusable = Unusable(*address, mask);
  if (!unusable.empty()) return "'" + ip + "' " + unusable;
  if (gateway.empty()) return "";
  const auto router = ParseIpv4(gateway);
  if (!router.has_value()) return "'" + gateway + "' is not an IPv4 address such as 10.0.0.1";
  if ((*router & mask) != (*address & mask))
    return "gateway '" + gateway + "' is outside the network " + Ipv4Text(*address & mask) + "/" +
           std::to_string(*length);
  const std::string useless = Unusable(*router, mask);
  if (!useless.empty()) return "gateway '" + gateway + "' " + useless;
  return *router == *address ? "gateway and address are both '" + ip + "'" : "";
}

}  // namespace tool
