#include "simulator/relay.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace simulator {
namespace {

constexpr std::size_t kMostWaiting = 65536;  // on the way, each way

// What goes from one end to the other.
class Way {
 public:
  Way(int source, int sink) : from(source), to(sink) {}

  short Wanted(int end) const {
    if (end == from) return !has_ended && bytes.size() < kMostWaiting ? POLLIN : 0;
    return !bytes.empty() ? POLLOUT : 0;
  }
  bool IsDone() const { return has_ended && bytes.empty(); }

  /// Copies what can be copied without waiting. False if an end is gone.
  bool Copy() {
    if (!has_ended && bytes.size() < kMostWaiting && !Receive()) return false;
    return Send();
  }

 private:
  static bool WouldWait() { return errno == EAGAIN || errno == EINTR; }

  bool Receive() {
    std::array<char, kMostWaiting> part;  // NOLINT(cppcoreguidelines-pro-type-member-init)
    const ssize_t size = recv(from, part.data(), kMostWaiting - bytes.size(), MSG_DONTWAIT);
    if (size < 0) return WouldWait();
    has_ended = size == 0;
    bytes.append(part.data(), static_cast<std::size_t>(size));
    return true;
  }

  bool Send() {
    while (!bytes.empty()) {
      const ssize_t size = send(to, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
      if (size < 0) return WouldWait();
      bytes.erase(0, static_cast<std::size_t>(size));
    }
    return true;
  }

  int from;
  int to;
  std::string bytes;
  bool has_ended = false;
};

// Gives an end of a pair a name that the kernel chooses.
bool Name(int end) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  return bind(end, reinterpret_cast<const sockaddr*>(&address), sizeof address.sun_family) == 0;
}

}  // namespace

class Relay::Connection {
 public:
  Connection(Descriptor outside, Descriptor inside)
      : client(std::move(outside)),
        named(std::move(inside)),
        in(client.Get(), named.Get()),
        out(named.Get(), client.Get()) {}

  pollfd Awaited(bool is_client) const {
    const int end = is_client ? client.Get() : named.Get();
    return {end, static_cast<short>(in.Wanted(end) | out.Wanted(end)), 0};
  }
  /// gRPC closes no connection halfway: the end of one way is that of both.
  bool Continue() { return in.Copy() && out.Copy() && !in.IsDone() && !out.IsDone(); }

 private:
  Descriptor client;
  Descriptor named;
  Way in;
  Way out;
};

Relay::Relay() : thread([this] { Run(); }) {}

Relay::~Relay() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    ends = true;
  }
  Signal(changed);
  thread.join();
}

Descriptor Relay::Add(Descriptor client) {
  std::array<int, 2> pair{-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, pair.data()) != 0)
    return Descriptor();
  Descriptor inner(pair[0]);
  Descriptor named(pair[1]);
  if (!Name(named.Get())) return Descriptor();
  {
    const std::lock_guard<std::mutex> lock(mutex);
    added.emplace_back(std::move(client), std::move(named));
  }
  Signal(changed);
  return inner;
}

void Relay::Run() {
  std::list<Connection> connections;
  while (true) {
    std::vector<pollfd> awaited{{changed.Get(), POLLIN, 0}};
    for (const Connection& connection : connections)
      for (const bool is_client : {true, false}) awaited.push_back(connection.Awaited(is_client));
    if (poll(awaited.data(), awaited.size(), -1) < 0) continue;
    std::size_t i = 1;
    for (auto connection = connections.begin(); connection != connections.end(); i += 2) {
      const bool is_ready = (awaited[i].revents | awaited[i + 1].revents) != 0;
      const bool stays = !is_ready || connection->Continue();
      connection = stays ? std::next(connection) : connections.erase(connection);
    }
    if (awaited[0].revents == 0) continue;
    std::uint64_t times = 0;
    if (read(changed.Get(), &times, sizeof times) < 0) continue;
    const std::lock_guard<std::mutex> lock(mutex);
    if (ends) return;
    connections.splice(connections.end(), added);
  }
}

}  // namespace simulator
