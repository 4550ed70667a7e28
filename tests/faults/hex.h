// Bytes as one word: "x0801"; "x" for no bytes.
#pragma once

#include <string>

namespace faults {

inline std::string ToHex(const std::string& bytes) {
  const char* const digits = "0123456789abcdef";
  std::string text = "x";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

inline std::string FromHex(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 1; i + 1 < text.size(); i += 2)
    bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
  return bytes;
}

}  // namespace faults
