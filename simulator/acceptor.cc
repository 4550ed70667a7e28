#include "simulator/acceptor.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

// Of a kind that needs no file: an empty root has no /dev/null.
Descriptor OpenReserve() { return Descriptor(eventfd(0, EFD_CLOEXEC)); }

// The errors of a process or a system that has used up something.
bool IsShortage(int error) {
  return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

// The errors after which poll does not report the same connection again.
bool IsGone(int error) { return error == EAGAIN || error == EINTR || error == ECONNABORTED; }

}  // namespace

Acceptor::Acceptor(std::string given_name) : name(std::move(given_name)), reserve(OpenReserve()) {}

Descriptor Acceptor::Accept(int listening) {
  const auto accept = [listening] {
    return Descriptor(accept4(listening, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  };
  Descriptor connection = accept();
  if (connection.IsOpen()) {
    Report(false, 0);
  } else if (IsShortage(errno)) {
    Report(true, errno);
    reserve.Close();
    connection = accept();
  }
  pauses = !connection.IsOpen() && !IsGone(errno);
  return connection;
}

bool Acceptor::IsReady() {
  if (std::exchange(pauses, false)) return false;
  if (!reserve.IsOpen()) reserve = OpenReserve();
  return reserve.IsOpen();
}

void Acceptor::Report(bool is_short, int error) {
  if (is_short == has_reported_shortage) return;
  has_reported_shortage = is_short;
  std::cerr << (is_short ? "networkgrpc-simulator: no file descriptor left for connections: " +
                               name + ": " + std::strerror(error) +
                               "; close some, or raise the limit (ulimit -n)\n"
                         : "networkgrpc-simulator: file descriptors left again: " + name + '\n');
}

AcceptingThread::AcceptingThread(std::string name, std::vector<int> listening, Handler handle)
    : acceptor(std::move(name)),
      sockets(std::move(listening)),
      handler(std::move(handle)),
      ending(MakeEvent()),
      thread([this] { Run(); }) {}

AcceptingThread::~AcceptingThread() {
  Signal(ending);
  thread.join();
}

void AcceptingThread::Run() {
  std::vector<pollfd> awaited{{ending.Get(), POLLIN, 0}};
  for (const int socket : sockets) awaited.push_back({socket, POLLIN, 0});
  while (true) {
    const bool is_ready = acceptor.IsReady();
    const int found =
        poll(awaited.data(), is_ready ? awaited.size() : 1, is_ready ? -1 : Acceptor::kRetryMs);
    if (awaited[0].revents != 0) return;
    for (std::size_t i = 1; found > 0 && is_ready && i < awaited.size(); ++i) {
      if (awaited[i].revents == 0) continue;
      Descriptor connection = acceptor.Accept(awaited[i].fd);
      if (acceptor.IsShort()) break;  // and closes it
      if (connection.IsOpen()) handler(awaited[i].fd, std::move(connection));
    }
  }
}

Descriptor MakeEvent() {
  Descriptor event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!event.IsOpen())
    throw std::runtime_error(std::string("cannot make an event: ") + std::strerror(errno));
  return event;
}

void Signal(const Descriptor& event) {
  const std::uint64_t one = 1;
  // Fails only if it is readable already.
  if (write(event.Get(), &one, sizeof one) < 0) return;
}

}  // namespace simulator
