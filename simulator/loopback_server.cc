#include "simulator/loopback_server.h"

#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace simulator {
namespace {

// How often a free port is searched: one that is free on one loopback address is
// seldom in use on the other, and seldom taken before this process listens on it.
constexpr int kAttempts = 20;

struct Loopback {
  int family;
  const char* address;
};
using Loopbacks = std::vector<Loopback>;

// Binds the address and releases it. Returns its port, or 0 with the reason in errno.
int TryBind(sockaddr* address, socklen_t size) {
  const int file = socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (file < 0) return 0;
  // As gRPC does: connections that have just ended do not hold the port.
  const int yes = 1;
  setsockopt(file, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  const bool bound = bind(file, address, size) == 0 && getsockname(file, address, &size) == 0;
  const int reason = errno;
  close(file);
  errno = reason;
  // The port has the same offset in both address families.
  return bound ? ntohs(reinterpret_cast<const sockaddr_in*>(address)->sin_port) : 0;
}

// The same for a port of a loopback address, 0 for any port.
int TryBind(int family, int port) {
  const auto wanted = htons(static_cast<std::uint16_t>(port));
  if (family == AF_INET6) {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    address.sin6_port = wanted;
    return TryBind(reinterpret_cast<sockaddr*>(&address), sizeof address);
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = wanted;
  return TryBind(reinterpret_cast<sockaddr*>(&address), sizeof address);
}

Loopbacks LoopbacksOfThisMachine() {
  Loopbacks loopbacks{{AF_INET, "127.0.0.1"}};
  if (TryBind(AF_INET6, 0) != 0) loopbacks.push_back({AF_INET6, "[::1]"});
  return loopbacks;
}

// Changes `port` from 0 to one that is free on all addresses. Returns the address
// on which it is not free, and the reason; "" if there is none. Another process may
// take the port before the caller does.
std::string FindFreePort(const Loopbacks& loopbacks, int& port) {
  for (const Loopback& loopback : loopbacks) {
    const int bound = TryBind(loopback.family, port);
    if (bound == 0)
      return loopback.address + (':' + std::to_string(port)) + ": " + std::strerror(errno);
    port = bound;
  }
  return "";
}

// Null if another process has taken the port.
std::unique_ptr<grpc::Server> Serve(grpc::CallbackGenericService& service,
                                    const Loopbacks& loopbacks, int port) {
  grpc::ServerBuilder builder;
  // Without this, two processes could share the port and each get half the calls.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  for (const Loopback& loopback : loopbacks)
    builder.AddListeningPort(loopback.address + (':' + std::to_string(port)),
                             grpc::InsecureServerCredentials());
  builder.RegisterCallbackGenericService(&service);
  return builder.BuildAndStart();
}

}  // namespace

LoopbackServer::LoopbackServer(grpc::CallbackGenericService& service, int wanted_port)
    : port(wanted_port) {
  const Loopbacks loopbacks = LoopbacksOfThisMachine();
  std::string failure;
  for (int attempt = 0; server == nullptr && attempt < kAttempts; ++attempt) {
    port = wanted_port;
    failure = FindFreePort(loopbacks, port);
    if (failure.empty()) server = Serve(service, loopbacks, port);
    if (wanted_port != 0) break;
  }
  if (server == nullptr)
    throw std::runtime_error("cannot listen on " +
                             (failure.empty() ? "port " + std::to_string(port) : failure) +
                             "; use another port, or 0 for a free port");
}

LoopbackServer::~LoopbackServer() {
  server->Shutdown(std::chrono::system_clock::now());
  server->Wait();
}

}  // namespace simulator
