// The TCP connections of this process, as the kernel sees them.
#pragma once

#include <string>

namespace simulator {

/// Drops the connection to `peer`, in gRPC's notation: "ipv4:127.0.0.1:PORT" or
/// "ipv6:%5B::1%5D:PORT".
void DropConnectionOf(const std::string& peer);

/// Drops every connection that clients have made to the port.
void DropConnectionsTo(int port);

}  // namespace simulator
