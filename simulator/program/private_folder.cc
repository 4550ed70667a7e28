#include "simulator/program/private_folder.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace simulator {

PrivateFolder::PrivateFolder() {
  const char* const chosen = std::getenv("TMPDIR");
  const std::string parent = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
  path = parent + "/networkgrpc-simulator.XXXXXX";
  if (mkdtemp(path.data()) == nullptr)
    throw std::runtime_error("cannot create a folder for the control socket: " + parent + ": " +
                             std::strerror(errno));
}

PrivateFolder::~PrivateFolder() { rmdir(path.c_str()); }

}  // namespace simulator
