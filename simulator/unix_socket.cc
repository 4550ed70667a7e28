#include "simulator/unix_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace simulator {
namespace {

sockaddr_un AddressOf(const std::string& path, const std::string& what) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path)
    throw std::runtime_error("cannot use " + what + ' ' + path +
                             ": its path must have 1 to 107 bytes");
  std::memcpy(static_cast<char*>(address.sun_path), path.data(), path.size());
  return address;
}

Descriptor MakeSocket(int flags = 0) {
  return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

bool IsSocket(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISSOCK(found.st_mode);
}

}  // namespace

Descriptor ListenOnUnixSocket(const std::string& path, unsigned mode, const std::string& what) {
  const sockaddr_un address = AddressOf(path, what);
  const auto fail = [&](const std::string& why) {
    throw std::runtime_error("cannot listen on " + what + ' ' + path + ": " + why);
  };
  const Descriptor other = ConnectToUnixSocket(path, what);
  if (other.IsOpen()) fail("another process listens on it");
  if (errno == ECONNREFUSED && IsSocket(path)) unlink(path.c_str());

  Descriptor listening = MakeSocket(SOCK_NONBLOCK);
  // The umask belongs to all threads, so it stays. bind gives the file the mode of the
  // socket less the umask; before listen, nobody can connect.
  const bool is_listening =
      listening.IsOpen() && fchmod(listening.Get(), mode) == 0 &&
      bind(listening.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      chmod(path.c_str(), mode) == 0 && listen(listening.Get(), SOMAXCONN) == 0;
  if (!is_listening) fail(std::strerror(errno));
  return listening;
}

Descriptor ConnectToUnixSocket(const std::string& path, const std::string& what) {
  const sockaddr_un address = AddressOf(path, what);
  Descriptor connection = MakeSocket();
  if (connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    connection.Close();
  return connection;
}

}  // namespace simulator
