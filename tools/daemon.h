// The two daemons that own the settings.
#pragma once

#include <string>

#include "client/environment.h"

namespace tool {

enum class Daemon { kNone, kNetworkManager, kDante };

/// As in a JSON error object: "network-manager", "dante-api", or "" for none.
const char* Name(Daemon daemon);

/// "the network-manager daemon"
std::string The(Daemon daemon);

/// The environment variable that configures where the library finds the daemon.
const client::Setting& EndpointSetting(Daemon daemon);

/// Where the library finds the daemon, as messages name it.
std::string Endpoint(Daemon daemon);

/// The library finds the daemon at `endpoint`; messages name it `name`.
void SetEndpoint(Daemon daemon, const std::string& endpoint, const std::string& name);

}  // namespace tool
