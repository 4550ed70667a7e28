// A gRPC server for one client that changes a few frames before it sends them.
#pragma once

#include <deque>
#include <random>
#include <string>

#include "tests/hostile_http2/http2_frames.h"

namespace hostile_http2 {

class HostilePeer {
 public:
  /// Listens on a loopback port chosen by the system. `replies` answer the calls in
  /// order; every call after the last reply gets an empty message.
  HostilePeer(std::uint32_t seed, std::deque<std::string> replies);
  ~HostilePeer();

  HostilePeer(const HostilePeer&) = delete;
  HostilePeer& operator=(const HostilePeer&) = delete;

  /// "ipv4:127.0.0.1:PORT"
  std::string Url() const;

  /// Serves one client until it disconnects, or is silent for 50 ms after a changed
  /// frame, or for 10 s otherwise. From then on every connection is rejected.
  void Serve();

  /// Whether a reply had more bytes than its one message.
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
  std::size_t change_at;  // index of the Send() whose frames are changed
  std::size_t sendings = 0;
  bool changed = false;
  bool more_than_a_message = false;
  bool open = true;
  int listener = -1;
  int connection = -1;
};

}  // namespace hostile_http2
