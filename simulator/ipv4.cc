#include "simulator/ipv4.h"

#include <arpa/inet.h>

#include <cstdint>
#include <optional>

namespace simulator {
namespace {

// In host byte order.
std::optional<std::uint32_t> Parse(const std::string& text) {
  // A NUL would hide what follows it.
  if (text.find('\0') != std::string::npos) return std::nullopt;
  in_addr address{};
  if (inet_pton(AF_INET, text.c_str(), &address) != 1) return std::nullopt;
  return ntohl(address.s_addr);
}

}  // namespace

bool IsHostAddress(const std::string& text) { return Parse(text).value_or(0) != 0; }

bool IsNetmask(const std::string& text) {
  const std::uint32_t mask = Parse(text).value_or(0);
  // The zeros of a netmask are at its right end, so that one more than them is
  // a power of two.
  const std::uint32_t zeros = ~mask;
  return mask != 0 && (zeros & (zeros + 1U)) == 0;
}

}  // namespace simulator
