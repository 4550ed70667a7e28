#include "tools/daemon.h"

#include <cstdlib>

namespace tool {

const char* Name(Daemon daemon) {
  switch (daemon) {
    case Daemon::kNetworkManager:
      return "network-manager";
    case Daemon::kDante:
      return "dante-api";
    case Daemon::kNone:
      break;
  }
  return "";
}

const char* EndpointVariable(Daemon daemon) {
  return daemon == Daemon::kDante ? "grpc_dapi_url" : "network_manager_url";
}

std::string Endpoint(Daemon daemon) {
  const char* value = std::getenv(EndpointVariable(daemon));
  if (value != nullptr) return value;
  return daemon == Daemon::kDante ? "localhost:50008" : "localhost:50007";
}

}  // namespace tool
