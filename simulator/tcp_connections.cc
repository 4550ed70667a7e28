#include "simulator/tcp_connections.h"

#include <dirent.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace simulator {
namespace {

constexpr rlim_t kMostDescriptors = 1 << 20;

// The port of one end of a connection; 0 if the descriptor is none. gRPC gives no
// access to its sockets, so they are searched among all open descriptors.
int PortOf(int descriptor, decltype(getsockname)* end) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (end(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  // The port has the same offset in both address families.
  if (address.ss_family != AF_INET && address.ss_family != AF_INET6) return 0;
  return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

// One more than the highest descriptor that can be open.
int EndOfDescriptors() {
  int end = 0;
  const std::unique_ptr<DIR, int (*)(DIR*)> descriptors(opendir("/proc/self/fd"), closedir);
  if (descriptors != nullptr) {
    while (const dirent* entry = readdir(descriptors.get()))
      end = std::max(end, std::atoi(entry->d_name) + 1);
    return end;
  }
  // No descriptor is left for the folder: every number up to the limit is in use.
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, kMostDescriptors));
}

// Drops the connections of which this end has the port. Listening sockets have no
// peer and stay.
void DropWhere(decltype(getsockname)* end, int port) {
  if (port == 0) return;
  const int last = EndOfDescriptors();
  for (int descriptor = 0; descriptor < last; ++descriptor)
    if (PortOf(descriptor, end) == port && PortOf(descriptor, getpeername) != 0)
      shutdown(descriptor, SHUT_RDWR);
}

}  // namespace

void DropConnectionOf(const std::string& peer) {
  DropWhere(getpeername, std::atoi(peer.substr(peer.rfind(':') + 1).c_str()));
}

void DropConnectionsTo(int port) { DropWhere(getsockname, port); }

}  // namespace simulator
