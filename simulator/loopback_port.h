// Ports of this machine's loopback addresses.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace simulator {

/// A port on which the simulator cannot listen; what() says which and why.
class PortUnavailable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "127.0.0.1" and, where this machine has it, "[::1]": a client that resolves
/// "localhost" tries the latter first.
std::vector<std::string> LoopbackAddresses();

/// A port that is free on all of them. Another process may take it before the
/// caller does. Throws PortUnavailable.
int FindFreePort();

/// Throws PortUnavailable when one of them has the port taken.
void RequireFreePort(int port);

}  // namespace simulator
