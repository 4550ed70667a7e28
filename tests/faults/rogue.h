// What may sit on a daemon's port instead of the daemon.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace faults {

struct Manners {
  std::string name;
  std::string says;            // written to every connection as soon as it stands
  bool closes = false;         // after that; else the connection stays open
  bool by_reset = false;       // closes with a reset
  bool after_reading = false;  // speaks only when something has been said to it
  std::string answers = {};    // written when a call has been heard
  bool rare = false;           // much like another: not for every run of the tests
};

std::vector<Manners> AllManners();

/// Listens on a loopback port and has bad manners. Never sends a gRPC reply.
class Rogue {
 public:
  Rogue(int port, Manners kind);
  /// Closes its port and all connections.
  ~Rogue();

  Rogue(const Rogue&) = delete;
  Rogue& operator=(const Rogue&) = delete;

  int Accepted() const { return accepted; }

 private:
  void Serve();
  void Greet(int connection);

  Manners manners;
  int listener;
  int stop;
  std::atomic<int> accepted = 0;
  std::vector<int> connections;
  std::thread server;
};

}  // namespace faults
