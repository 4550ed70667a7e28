#include "simulator/connections.h"

#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <cstdlib>
#include <memory>

namespace simulator {
namespace {

// The port of one end of a connection; 0 when the file is none. gRPC itself
// offers no way to its sockets, so that they are found among all open files.
int PortOf(int file, decltype(getsockname)* end) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (end(file, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  // The port stands at the same place in both kinds of address.
  if (address.ss_family != AF_INET && address.ss_family != AF_INET6) return 0;
  return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

// A file whose end has that port. Only connections have another end, which
// leaves listening sockets alone.
void CutWhere(decltype(getsockname)* end, int port) {
  const std::unique_ptr<DIR, int (*)(DIR*)> files(opendir("/proc/self/fd"), closedir);
  if (files == nullptr || port == 0) return;
  while (const dirent* entry = readdir(files.get())) {
    const int file = std::atoi(entry->d_name);
    if (PortOf(file, end) == port && PortOf(file, getpeername) != 0) shutdown(file, SHUT_RDWR);
  }
}

}  // namespace

void CutConnectionOf(const std::string& peer) {
  CutWhere(getpeername, std::atoi(peer.substr(peer.rfind(':') + 1).c_str()));
}

void CutConnectionsTo(int port) { CutWhere(getsockname, port); }

}  // namespace simulator
