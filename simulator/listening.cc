#include "simulator/listening.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "simulator/unix_socket.h"

namespace simulator {
namespace {

// How often a free port is searched: one that is free on one loopback address is
// seldom in use on the other.
constexpr int kAttempts = 20;

struct Loopback {
  int family;
  const char* address;
};

// Listens on a port of a loopback address, 0 for any port. Closed, with the reason in
// errno, if it cannot.
Descriptor Listen(int family, int port) {
  sockaddr_in6 in6{};
  in6.sin6_family = AF_INET6;
  in6.sin6_addr = in6addr_loopback;
  in6.sin6_port = htons(static_cast<std::uint16_t>(port));
  sockaddr_in in4{};
  in4.sin_family = AF_INET;
  in4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  in4.sin_port = in6.sin6_port;
  const bool is6 = family == AF_INET6;
  const auto* address = is6 ? reinterpret_cast<sockaddr*>(&in6) : reinterpret_cast<sockaddr*>(&in4);
  const auto size = static_cast<socklen_t>(is6 ? sizeof in6 : sizeof in4);

  Descriptor listening(socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // Connections that have just ended do not hold the port. Without SO_REUSEPORT, no
  // other process can listen on it, too, and get half the connections.
  const int yes = 1;
  setsockopt(listening.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (!listening.IsOpen() || bind(listening.Get(), address, size) != 0 ||
      listen(listening.Get(), SOMAXCONN) != 0)
    listening.Close();
  return listening;
}

int PortOf(const Descriptor& listening) {
  sockaddr_in6 address{};
  socklen_t size = sizeof address;
  getsockname(listening.Get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin6_port);  // at the same offset in both address families
}

bool IsAbsent(const Loopback& loopback) {
  return loopback.family == AF_INET6 && (errno == EAFNOSUPPORT || errno == EADDRNOTAVAIL);
}

// Listens on one port of all loopback addresses of this machine, 0 for one that is
// free on all. Otherwise returns none, and the address and the reason in `failure`.
std::vector<Descriptor> ListenOnAll(int port, std::string& failure) {
  static const std::array<Loopback, 2> kLoopbacks{{{AF_INET, "127.0.0.1"}, {AF_INET6, "[::1]"}}};
  std::vector<Descriptor> sockets;
  for (const Loopback& loopback : kLoopbacks) {
    Descriptor listening = Listen(loopback.family, port);
    if (listening.IsOpen()) {
      port = PortOf(listening);
      sockets.push_back(std::move(listening));
    } else if (!IsAbsent(loopback)) {
      failure = loopback.address + (':' + std::to_string(port)) + ": " + std::strerror(errno);
      return {};
    }
  }
  return sockets;
}

std::vector<Descriptor> ListenOnAll(int port) {
  std::string failure;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    std::vector<Descriptor> sockets = ListenOnAll(port, failure);
    if (!sockets.empty()) return sockets;
    if (port != 0) break;
  }
  throw std::runtime_error("cannot listen on " + failure +
                           "; use another port, or 0 for a free port");
}

// gRPC reads the path as part of a URI, and people copy it from a line of words.
constexpr const char* kCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~!$&'()*+,;=:@/";

std::vector<Descriptor> ListenOn(Endpoint& endpoint) {
  if (!endpoint.IsUnix()) {
    std::vector<Descriptor> sockets = ListenOnAll(endpoint.port);
    endpoint.port = PortOf(sockets.front());
    return sockets;
  }
  endpoint.path = std::filesystem::absolute(endpoint.path).lexically_normal();
  if (endpoint.path.find_first_not_of(kCharacters) != std::string::npos)
    throw std::runtime_error(
        "cannot listen on Unix socket " + endpoint.path +
        ": its absolute path may only have letters, digits and -._~!$&'()*+,;=:@/");
  std::vector<Descriptor> sockets;
  sockets.push_back(ListenOnUnixSocket(endpoint.path, endpoint.socket_mode, "Unix socket"));
  return sockets;
}

}  // namespace

std::string Endpoint::Url() const {
  return IsUnix() ? "unix:" + path : "127.0.0.1:" + std::to_string(port);
}

ListeningSockets::ListeningSockets(const Endpoint& wanted)
    : endpoint(wanted), sockets(ListenOn(endpoint)) {}

ListeningSockets::~ListeningSockets() {
  if (endpoint.IsUnix()) unlink(endpoint.path.c_str());
}

std::vector<int> ListeningSockets::Descriptors() const {
  std::vector<int> numbers;
  for (const Descriptor& socket : sockets) numbers.push_back(socket.Get());
  return numbers;
}

}  // namespace simulator
