#include "tools/daemon.h"

#include <cstdlib>
#include <map>

namespace tool {
namespace {

std::map<Daemon, std::string>& Names() {
  static std::map<Daemon, std::string> names;
  return names;
}

}  // namespace

const char* Name(Daemon daemon) {
  return daemon == Daemon::kNone ? "" : EndpointSetting(daemon).role;
}

std::string The(Daemon daemon) { return std::string("the ") + Name(daemon) + " daemon"; }

const client::Setting& EndpointSetting(Daemon daemon) {
  return daemon == Daemon::kDante ? client::kDapiUrl : client::kNetworkManagerUrl;
}

std::string Endpoint(Daemon daemon) {
  const auto found = Names().find(daemon);
  return found != Names().end() ? found->second : EndpointSetting(daemon).Value();
}

void SetEndpoint(Daemon daemon, const std::string& endpoint, const std::string& name) {
  setenv(EndpointSetting(daemon).variable, endpoint.c_str(), 1);
  Names()[daemon] = name;
}

}  // namespace tool
