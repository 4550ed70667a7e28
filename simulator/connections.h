// The TCP connections of this process, as the system sees them.
#pragma once

#include <string>

namespace simulator {

/// Cuts the connection whose other end is `peer`, as gRPC spells it:
/// "ipv4:127.0.0.1:PORT" or "ipv6:%5B::1%5D:PORT".
void CutConnectionOf(const std::string& peer);

/// Cuts every connection that clients have made to the port.
void CutConnectionsTo(int port);

}  // namespace simulator
