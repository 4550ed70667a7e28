#include "tools/daemon.h"

namespace tool {

const char* Name(Daemon daemon) {
  return daemon == Daemon::kNone ? "" : EndpointSetting(daemon).role;
}

std::string The(Daemon daemon) { return std::string("the ") + Name(daemon) + " daemon"; }

const client::Setting& EndpointSetting(Daemon daemon) {
  return daemon == Daemon::kDante ? client::kDapiUrl : client::kNetworkManagerUrl;
}

std::string Endpoint(Daemon daemon) { return EndpointSetting(daemon).Value(); }

}  // namespace tool
