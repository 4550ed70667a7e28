// One connection to a gRPC client, played honestly but for a few frames that are
// changed before they are sent.
#pragma once

#include <deque>
#include <random>
#include <string>

#include "tests/fuzz/http2_frames.h"

namespace fuzz {

class HostileConnection {
 public:
  /// Listens on a loopback port that the system chooses. `replies` answer the
  /// calls in their order; calls after the last one get an empty message.
  HostileConnection(std::uint32_t seed, std::deque<std::string> replies);
  ~HostileConnection();

  HostileConnection(const HostileConnection&) = delete;
  HostileConnection& operator=(const HostileConnection&) = delete;

  /// "ipv4:127.0.0.1:PORT"
  std::string Url() const;

  /// Serves one client until it goes, or is silent for a moment after something
  /// changed was sent, or never comes. Then every connection is refused.
  void Serve();

  /// Whether an answer had bytes behind its one message.
  bool SentMoreThanAMessage() const { return more_than_a_message; }

 private:
  void Receive(const Frame& frame);
  void Send(std::vector<Frame> frames);
  void Remember(std::string bytes);
  void ChangeFrames(std::vector<Frame>& frames);
  std::string Change(std::vector<Frame> frames);
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

  std::mt19937 random;
  std::deque<std::string> replies;
  std::size_t change_at;  // the number of the sending that is changed
  std::size_t sendings = 0;
  bool changed = false;
  bool more_than_a_message = false;
  bool open = true;
  int listener = -1;
  int peer = -1;
};

}  // namespace fuzz
