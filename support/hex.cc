#include "support/hex.h"

namespace support {

std::string ToHex(const std::string& bytes) {
  constexpr const char* digits = "0123456789ABCDEF";
  std::string hex;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (!hex.empty()) hex += ' ';
    hex += digits[byte >> 4U];
    hex += digits[byte & 0xFU];
  }
  return hex;
}

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 3)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

std::string ToHex(const google::protobuf::MessageLite& message) {
  return ToHex(message.SerializeAsString());
}

bool ParseHex(const std::string& hex, google::protobuf::MessageLite& message) {
  return message.ParseFromString(FromHex(hex));
}

}  // namespace support
