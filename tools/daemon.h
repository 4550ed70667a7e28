// The two daemons that own the settings, and where they are.
#pragma once

#include <string>

namespace tool {

enum class Daemon { kNone, kNetworkManager, kDante };

/// As in a JSON error object: "network-manager", "dante-api", or "".
const char* Name(Daemon daemon);

/// The environment variable that tells the library where the daemon is.
const char* EndpointVariable(Daemon daemon);

/// Where the library looks for the daemon: the variable, or its default.
std::string Endpoint(Daemon daemon);

}  // namespace tool
