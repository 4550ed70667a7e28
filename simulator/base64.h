// Bytes as base64 (RFC 4648).
#pragma once

#include <optional>
#include <string>

namespace simulator {

std::string ToBase64(const std::string& bytes);

/// None if the string is no base64.
std::optional<std::string> FromBase64(const std::string& string);

}  // namespace simulator
