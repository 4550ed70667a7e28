// Gives every connection to a Unix socket a name, by which gRPC reports it and
// connections.h finds it: the clients' ends have none. gRPC is given one end of a pair
// of sockets instead, whose other end has a name; a thread copies between that and the
// client.
#pragma once

#include <list>
#include <mutex>
#include <thread>

#include "simulator/acceptor.h"
#include "simulator/descriptor.h"

namespace simulator {

class Relay {
 public:
  Relay();
  /// Closes the connections.
  ~Relay();

  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  /// Returns the end for gRPC, which does not block; closed if no file descriptor is
  /// left for it. For several threads.
  Descriptor Add(Descriptor client);

 private:
  class Connection;

  void Run();

  Descriptor changed = MakeEvent();  // readable when a connection is added or all is to end
  std::mutex mutex;                  // guards the two below
  std::list<Connection> added;
  bool ends = false;
  std::thread thread;
};

}  // namespace simulator
