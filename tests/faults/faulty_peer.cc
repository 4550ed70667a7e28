#include "tests/faults/faulty_peer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <utility>

namespace faults {

std::vector<PeerBehaviour> AllPeerBehaviours() {
  using namespace std::string_literals;
  const std::string garbage = "\x00\xff\x13garbage\x80\x7f garbage\r\n\r\n\x01\x02"s;
  // The header of a SETTINGS frame whose payload is cut off.
  const std::string half_a_frame = "\x00\x00\x0c\x04\x00\x00\x00\x00\x00\x00\x03"s;
  const std::string http1 = "HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n";
  return {
      {"Garbage", garbage, true, false, false},
      {"GarbageThenSilence", garbage, false, false, false, "", true},
      {"Http1", http1, true, false, true},
      {"SshBanner", "SSH-2.0-none\r\n", false, false, false},
      {"ClosesAtOnce", "", true, false, false},
      {"Resets", "", true, true, false},
      {"ResetsAfterThePreface", "", true, true, true, "", true},
      {"HalfAFrameThenClose", half_a_frame, true, false, true},
      {"HalfAFrameThenSilence", half_a_frame, false, false, true, "", true},
      {"SilentListener", "", false, false, false},
  };
}

namespace {

// The next data received, "" after ten seconds without any.
std::string Receive(int connection) {
  std::array<char, 4096> block{};
  pollfd waiting{connection, POLLIN, 0};
  poll(&waiting, 1, 10000);
  const ssize_t size = recv(connection, block.data(), block.size(), MSG_DONTWAIT);
  return {block.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

}  // namespace

int ListenOnLoopback(int port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 128) != 0)
    throw std::runtime_error("cannot listen on a loopback port");
  return listener;
}

FaultyPeer::FaultyPeer(int port, PeerBehaviour wanted_behaviour)
    : behaviour(std::move(wanted_behaviour)),
      listener(ListenOnLoopback(port)),
      stop(eventfd(0, EFD_CLOEXEC)),
      server([this] { Serve(); }) {}

FaultyPeer::~FaultyPeer() {
  const std::uint64_t one = 1;
  if (write(stop, &one, sizeof one) < 0) std::terminate();
  server.join();
  for (const int connection : connections) close(connection);
  close(listener);
  close(stop);
}

void FaultyPeer::Serve() {
  for (;;) {
    std::array<pollfd, 2> waiting = {pollfd{listener, POLLIN, 0}, pollfd{stop, POLLIN, 0}};
    poll(waiting.data(), waiting.size(), -1);
    if (waiting[1].revents != 0) return;
    const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    ++accepted;
    ServeConnection(connection);
  }
}

void FaultyPeer::ServeConnection(int connection) {
  if (behaviour.reads_first) Receive(connection);
  send(connection, behaviour.greeting.data(), behaviour.greeting.size(), MSG_NOSIGNAL);
  if (!behaviour.reply.empty()) {
    // The path of a call contains the name of its package.
    std::string all;
    for (std::string more; all.find("ostrevan") == std::string::npos; all += more)
      if ((more = Receive(connection)).empty()) break;
    send(connection, behaviour.reply.data(), behaviour.reply.size(), MSG_NOSIGNAL);
  }
  if (!behaviour.closes) {
    connections.push_back(connection);
    return;
  }
  if (behaviour.resets) {
    const linger at_once{1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  }
  close(connection);
}

}  // namespace faults
