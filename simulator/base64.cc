#include "simulator/base64.h"

#include <cstdint>
#include <cstring>

namespace simulator {
namespace {

constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string ToBase64(const std::string& bytes) {
  std::string string;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t j = i; j < i + 3; ++j)
      group = group << 8U | (j < bytes.size() ? static_cast<std::uint8_t>(bytes[j]) : 0U);
    for (std::size_t j = 0; j < 4; ++j)
      string += i + j <= bytes.size() ? kDigits[group >> (18U - 6U * j) & 63U] : '=';
  }
  return string;
}

std::optional<std::string> FromBase64(const std::string& string) {
  if (string.size() % 4 != 0) return std::nullopt;
  std::size_t size = string.size();
  while (size + 2 > string.size() && size > 0 && string[size - 1] == '=') --size;
  std::string bytes;
  std::uint32_t group = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const char* const digit = string[i] != '\0' ? std::strchr(kDigits, string[i]) : nullptr;
    if (digit == nullptr) return std::nullopt;
    group = group << 6U | static_cast<std::uint32_t>(digit - kDigits);
    if (i % 4 != 0) bytes += static_cast<char>(group >> (6U - i % 4 * 2U) & 255U);
  }
  return bytes;
}

}  // namespace simulator
