// The environment variables that configure the library: the only place in code
// that names them, their defaults and the roles.
//
// A variable that is set, even to an empty string, overrides the default. Each is
// read once, when the client that needs it is created.
#pragma once

#include <array>
#include <string>

namespace client {

struct Setting {
  const char* variable;
  const char* fallback;
  const char* role;     // the daemon's or the interface's, as programs print it
  const char* meaning;  // for help

  /// The value of the variable, or the default if it is not set.
  std::string Value() const;
};

inline constexpr Setting kNetworkManagerUrl{"network_manager_url", "localhost:50007",
                                            "network-manager",
                                            "endpoint of the network-manager daemon"};
inline constexpr Setting kDapiUrl{"grpc_dapi_url", "localhost:50008", "dante-api",
                                  "endpoint of the Dante API daemon"};
inline constexpr Setting kDantePrimaryInterface{
    "dante_primary_interface_env", "lan0", "dante-primary", "name of the Dante primary interface"};
inline constexpr Setting kDanteSecondaryInterface{"dante_secondary_interface_env", "lan2",
                                                  "dante-secondary",
                                                  "name of the Dante secondary interface"};
inline constexpr Setting kControlInterface{"control_interface_env", "lan1", "control",
                                           "name of the control interface"};

inline constexpr std::array<Setting, 5> kSettings{kNetworkManagerUrl, kDapiUrl,
                                                  kDantePrimaryInterface, kDanteSecondaryInterface,
                                                  kControlInterface};

}  // namespace client
