#include "bench/peers/tcp_echo.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t kSize = 40;  // about the size of a name's message

sockaddr* Raw(sockaddr_in& address) { return reinterpret_cast<sockaddr*>(&address); }

void SendAtOnce(int descriptor) {
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool Receive(int descriptor, std::array<char, kSize>& bytes) {
  return recv(descriptor, bytes.data(), bytes.size(), MSG_WAITALL) ==
         static_cast<ssize_t>(bytes.size());
}

bool Send(int descriptor, const std::array<char, kSize>& bytes) {
  return send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(bytes.size());
}

void Serve(int listener) {
  const int connection = accept(listener, nullptr, nullptr);
  SendAtOnce(connection);
  std::array<char, kSize> bytes{};
  while (Receive(connection, bytes) && Send(connection, bytes)) continue;
}

int Listen() {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(listener, Raw(address), sizeof address) != 0 || listen(listener, 1) != 0)
    throw std::runtime_error("cannot listen on loopback");
  return listener;
}

int Connect(int listener) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(listener, Raw(address), &size);
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(connection, Raw(address), size) != 0)
    throw std::runtime_error("cannot connect on loopback");
  SendAtOnce(connection);
  return connection;
}

}  // namespace

TcpEcho::TcpEcho()
    : listener(Listen()), server([this] { Serve(listener); }), connection(Connect(listener)) {}

TcpEcho::~TcpEcho() {
  close(connection);
  close(listener);
}

bool TcpEcho::Exchange() const {
  std::array<char, kSize> bytes{};
  return Send(connection, bytes) && Receive(connection, bytes);
}

}  // namespace bench
