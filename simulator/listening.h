// Where a daemon listens: on a port of the loopback addresses of this machine, IPv6
// included where there is any, because a client that resolves "localhost" tries "::1"
// first; or on a Unix socket.
#pragma once

#include <string>
#include <vector>

#include "simulator/descriptor.h"

namespace simulator {

struct Endpoint {
  int port = 0;           // 0: a free port
  std::string path = {};  // of a Unix socket; empty: listen on the port
  unsigned socket_mode = 0600;

  bool IsUnix() const { return !path.empty(); }
  /// What clients connect to: "127.0.0.1:PORT", or "unix:PATH".
  std::string Url() const;
};

class ListeningSockets {
 public:
  /// Throws std::runtime_error, which names the address and the reason, if it cannot
  /// listen there.
  explicit ListeningSockets(const Endpoint& wanted);
  /// Removes the Unix socket.
  ~ListeningSockets();

  ListeningSockets(const ListeningSockets&) = delete;
  ListeningSockets& operator=(const ListeningSockets&) = delete;

  /// With the port that the system chose.
  const Endpoint& Where() const { return endpoint; }
  std::vector<int> Descriptors() const;

 private:
  Endpoint endpoint;
  std::vector<Descriptor> sockets;
};

}  // namespace simulator
