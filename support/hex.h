// Bytes and serialized messages in hexadecimal digits.
#pragma once

#include <google/protobuf/message_lite.h>

#include <string>

namespace support {

/// Bytes as "0A 02", and back.
std::string ToHex(const std::string& bytes);
std::string FromHex(const std::string& hex);

/// The serialized message as "0A 02", and back; false when it cannot be parsed.
std::string ToHex(const google::protobuf::MessageLite& message);
bool ParseHex(const std::string& hex, google::protobuf::MessageLite& message);

}  // namespace support
