// Messages as the bytes that they are on the wire.
#pragma once

#include <google/protobuf/message_lite.h>

#include <string>

/// "0A 02" as two bytes.
inline std::string FromHex(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 3)
    bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
  return bytes;
}

/// The serialized message as "0A 02".
inline std::string ToHex(const google::protobuf::MessageLite& message) {
  constexpr const char* digits = "0123456789ABCDEF";
  std::string text;
  for (const char c : message.SerializeAsString()) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text += ' ';
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

template <class Message>
bool ParseHex(const std::string& text, Message& message) {
  return message.ParseFromString(FromHex(text));
}
