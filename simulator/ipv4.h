// Which texts are IPv4 addresses.
#pragma once

#include <string>

namespace simulator {

/// Four decimal numbers that a host can have as its address, so not "0.0.0.0".
bool IsHostAddress(const std::string& text);

/// A dotted netmask: ones from the left, at least one.
bool IsNetmask(const std::string& text);

}  // namespace simulator
