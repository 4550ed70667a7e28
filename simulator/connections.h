// The connections of this process, as the kernel sees them.
#pragma once

#include <string>

namespace simulator {

/// Drops the connection to `peer`, in gRPC's notation: "ipv4:127.0.0.1:PORT",
/// "ipv6:%5B::1%5D:PORT" or "unix-abstract:NAME" (relay.h).
void DropConnectionOf(const std::string& peer);

/// Drops every connection that clients have made to this URL of a daemon.
void DropConnectionsTo(const std::string& url);

}  // namespace simulator
