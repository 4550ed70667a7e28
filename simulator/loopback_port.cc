#include "simulator/loopback_port.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace simulator {
namespace {

// A port free on one loopback address is seldom taken on the other.
constexpr int kAttempts = 20;

constexpr const char* kRemedy = "; choose another port, or 0 for a free one";

struct Bound {
  int error = 0;  // errno, 0 when the port could be had
  int port = 0;   // the port that it was
};

// Takes the port of one address, 0 for any, and gives it back at once.
template <class Address>
Bound TryBind(Address address) {
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const int file = socket(generic->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (file < 0) return {errno, 0};
  // As gRPC does: connections that have just ended do not hold the port.
  const int yes = 1;
  setsockopt(file, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  Bound bound;
  socklen_t size = sizeof address;
  if (bind(file, generic, size) != 0 || getsockname(file, generic, &size) != 0) bound.error = errno;
  close(file);
  // The port stands at the same place in both kinds of address.
  bound.port = ntohs(reinterpret_cast<const sockaddr_in*>(generic)->sin_port);
  return bound;
}

Bound TryIpv4(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return TryBind(address);
}

Bound TryIpv6(int port) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_addr = in6addr_loopback;
  address.sin6_port = htons(static_cast<std::uint16_t>(port));
  return TryBind(address);
}

bool HasIpv6() { return TryIpv6(0).error == 0; }

[[noreturn]] void Throw(const std::string& address, int port, int error) {
  throw PortUnavailable("cannot listen on " + address + ':' + std::to_string(port) + ": " +
                        std::strerror(error) + kRemedy);
}

}  // namespace

std::vector<std::string> LoopbackAddresses() {
  if (HasIpv6()) return {"127.0.0.1", "[::1]"};
  return {"127.0.0.1"};
}

int FindFreePort() {
  const bool ipv6 = HasIpv6();
  Bound bound;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    bound = TryIpv4(0);
    if (bound.error != 0) break;
    const int port = bound.port;
    if (ipv6) bound = TryIpv6(port);
    if (bound.error == 0) return port;
  }
  Throw("127.0.0.1", 0, bound.error);
}

void RequireFreePort(int port) {
  if (const int error = TryIpv4(port).error) Throw("127.0.0.1", port, error);
  if (!HasIpv6()) return;
  if (const int error = TryIpv6(port).error) Throw("[::1]", port, error);
}

}  // namespace simulator
