// Unix sockets by path.
#pragma once

#include <string>

#include "simulator/descriptor.h"

namespace simulator {

/// Listens on `path`, without blocking. The socket has this mode from the moment at
/// which anyone can connect to it, whatever the umask is. That of a process which was
/// killed is replaced. Throws std::runtime_error, "cannot listen on WHAT PATH: why",
/// also if another process listens on it.
Descriptor ListenOnUnixSocket(const std::string& path, unsigned mode, const std::string& what);

/// Throws std::runtime_error, "cannot use WHAT PATH: why" if the path is too long;
/// closed, with the reason in errno, if nothing listens there.
Descriptor ConnectToUnixSocket(const std::string& path, const std::string& what);

}  // namespace simulator
