#include "simulator/connections.h"

#include <dirent.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>

namespace simulator {
namespace {

constexpr rlim_t kMostDescriptors = 1 << 20;

// The name of one end of a connection: the port, or gRPC's notation for a Unix socket.
// Empty if there is none. gRPC gives no access to its sockets, so they are searched
// among all open descriptors.
std::string NameOf(int descriptor, decltype(getsockname)* end) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (end(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return "";
  // The port has the same offset in both address families.
  if (address.ss_family == AF_INET || address.ss_family == AF_INET6)
    return std::to_string(ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port));
  const std::size_t start = offsetof(sockaddr_un, sun_path);
  if (address.ss_family != AF_UNIX || size <= start) return "";
  const std::string path(reinterpret_cast<const char*>(&address) + start, size - start);
  return path[0] == '\0' ? "unix-abstract:" + path.substr(1) : "unix:" + std::string(path.c_str());
}

bool IsConnected(int descriptor) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  return getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0;
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

// Drops the connections of which this end has the name. Listening sockets stay.
void DropWhere(decltype(getsockname)* end, const std::string& name) {
  const int last = EndOfDescriptors();
  for (int descriptor = 0; descriptor < last; ++descriptor)
    if (NameOf(descriptor, end) == name && IsConnected(descriptor)) shutdown(descriptor, SHUT_RDWR);
}

// A Unix socket is its name, of an address only the port counts.
std::string NameIn(const std::string& url) {
  return url.compare(0, 4, "unix") == 0 ? url : url.substr(url.rfind(':') + 1);
}

}  // namespace

void DropConnectionOf(const std::string& peer) { DropWhere(getpeername, NameIn(peer)); }

void DropConnectionsTo(const std::string& url) { DropWhere(getsockname, NameIn(url)); }

}  // namespace simulator
