#include "tests/faults/relay.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <utility>

#include "tests/faults/faulty_peer.h"

namespace faults {
namespace {

// Otherwise the system would put slices together.
void SendAtOnce(int connection) {
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// If nothing listens there, the first recv fails.
int Connect(int port) {
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  static_cast<void>(
      connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  return connection;
}

}  // namespace

Relay::Relay(const std::string& url, const LinkSpeed& wanted_speed)
    : speed(wanted_speed),
      daemon_port(std::stoi(url.substr(url.rfind(':') + 1))),
      listener(ListenOnLoopback(0)),
      stop(eventfd(0, EFD_CLOEXEC)),
      server([this] { Serve(); }) {}

Relay::~Relay() {
  const std::uint64_t one = 1;
  if (write(stop, &one, sizeof one) < 0) std::terminate();
  server.join();
  CloseAll();
  close(listener);
  close(stop);
}

std::string Relay::Url() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  return "ipv4:127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

void Relay::CutAfter(Direction direction, std::size_t bytes) {
  const std::lock_guard<std::mutex> lock(mutex);
  cut_direction = direction;
  until_cut = bytes;
}

bool Relay::WithdrawCut() {
  const std::lock_guard<std::mutex> lock(mutex);
  return !std::exchange(until_cut, std::nullopt).has_value();
}

void Relay::Serve() {
  for (;;) {
    std::vector<pollfd> waiting = {{listener, POLLIN, 0}, {stop, POLLIN, 0}};
    for (const Connection& one : connections) {
      waiting.push_back({one.library, POLLIN, 0});
      waiting.push_back({one.daemon, POLLIN, 0});
    }
    poll(waiting.data(), waiting.size(), -1);
    if (waiting[1].revents != 0) return;
    bool all_are_open = true;
    for (std::size_t i = 0; i < connections.size() && all_are_open; ++i) {
      if (waiting[2 + 2 * i].revents != 0)
        all_are_open = PassOn(connections[i], Direction::kRequests);
      if (waiting[3 + 2 * i].revents != 0 && all_are_open)
        all_are_open = PassOn(connections[i], Direction::kReplies);
    }
    if (!all_are_open) CloseAll();
    if (waiting[0].revents != 0) Accept();
  }
}

void Relay::Accept() {
  const int library = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  if (library < 0) return;
  connections.push_back({library, Connect(daemon_port)});
  SendAtOnce(library);
  SendAtOnce(connections.back().daemon);
}

// False if the connection has ended, or is to be cut.
bool Relay::PassOn(const Connection& connection, Direction direction) {
  const bool is_request = direction == Direction::kRequests;
  std::vector<char> bytes(speed.slice);
  const ssize_t size =
      recv(is_request ? connection.library : connection.daemon, bytes.data(), bytes.size(), 0);
  if (size <= 0) return false;
  const auto received = static_cast<std::size_t>(size);
  const std::size_t passing = Passing(direction, received);
  send(is_request ? connection.daemon : connection.library, bytes.data(), passing, MSG_NOSIGNAL);
  if (speed.pause.count() > 0) std::this_thread::sleep_for(speed.pause);
  return passing == received;
}

// How many of these bytes come before the cut.
std::size_t Relay::Passing(Direction direction, std::size_t bytes) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!until_cut || direction != cut_direction) return bytes;
  const std::size_t passing = std::min(bytes, *until_cut);
  until_cut = passing < bytes ? std::nullopt : std::optional(*until_cut - passing);
  return passing;
}

void Relay::CloseAll() {
  for (const Connection& one : std::exchange(connections, {})) {
    close(one.library);
    close(one.daemon);
  }
}

}  // namespace faults
