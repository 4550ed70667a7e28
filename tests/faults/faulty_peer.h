// A process other than the daemon that listens on the daemon's port.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace faults {

struct PeerBehaviour {
  std::string name;
  std::string greeting;      // sent on every new connection
  bool closes = false;       // then closes the connection, which otherwise stays open
  bool resets = false;       // closes with a TCP reset
  bool reads_first = false;  // sends the greeting only after it has received data
  std::string reply = {};    // sent after a gRPC call has been received
  bool full_only = false;    // similar to another: runs only with NETWORKGRPC_FULL=1
};

std::vector<PeerBehaviour> AllPeerBehaviours();

/// Returns a listening socket on this loopback port, 0 for a free one.
int ListenOnLoopback(int port);

/// Listens on a loopback port and never sends a valid gRPC reply.
class FaultyPeer {
 public:
  FaultyPeer(int port, PeerBehaviour wanted_behaviour);
  /// Closes its port and all connections.
  ~FaultyPeer();

  FaultyPeer(const FaultyPeer&) = delete;
  FaultyPeer& operator=(const FaultyPeer&) = delete;

  int Accepted() const { return accepted; }

 private:
  void Serve();
  void ServeConnection(int connection);

  PeerBehaviour behaviour;
  int listener;
  int stop;
  std::atomic<int> accepted = 0;
  std::vector<int> connections;
  std::thread server;
};

}  // namespace faults
