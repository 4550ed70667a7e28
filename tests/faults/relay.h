// A TCP relay in front of a daemon: a link that can be slow, and that can be cut.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace faults {

/// Passes bytes on in slices of at most `slice`, with a pause after each.
struct LinkSpeed {
  std::size_t slice = 65536;
  std::chrono::microseconds pause{0};
};

enum class Direction { kRequests, kReplies };

class Relay {
 public:
  /// Listens on a free loopback port and connects to the daemon at `url`,
  /// "ipv4:127.0.0.1:PORT", for every connection.
  explicit Relay(const std::string& url, const LinkSpeed& wanted_speed = {});
  /// Closes all connections.
  ~Relay();

  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  std::string Url() const;

  /// Passes on this many bytes more in one direction, then closes all connections. New
  /// ones are not cut.
  void CutAfter(Direction direction, std::size_t bytes);
  /// Withdraws the cut if it has not happened. Returns whether it has.
  bool WithdrawCut();

 private:
  struct Connection {
    int library;
    int daemon;
  };

  void Serve();
  void Accept();
  bool PassOn(const Connection& connection, Direction direction);
  std::size_t Passing(Direction direction, std::size_t bytes);
  void CloseAll();

  const LinkSpeed speed;
  const int daemon_port;
  const int listener;
  const int stop;
  std::vector<Connection> connections;

  std::mutex mutex;
  Direction cut_direction = Direction::kReplies;
  std::optional<std::size_t> until_cut;  // bytes

  std::thread server;
};

}  // namespace faults
