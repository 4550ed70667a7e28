// The environment variables that configure the library, and their defaults.
//
// A variable that is set, even to an empty string, overrides the default. Each is
// read once, when the client that needs it is created.
#pragma once

#include <string>

namespace client {

struct Setting {
  const char* variable;
  const char* fallback;

  /// The value of the variable, or the default if it is not set.
  std::string Value() const;
};

inline constexpr Setting kNetworkManagerUrl{"network_manager_url", "localhost:50007"};
inline constexpr Setting kDapiUrl{"grpc_dapi_url", "localhost:50008"};
inline constexpr Setting kDantePrimaryInterface{"dante_primary_interface_env", "lan0"};
inline constexpr Setting kDanteSecondaryInterface{"dante_secondary_interface_env", "lan2"};
inline constexpr Setting kControlInterface{"control_interface_env", "lan1"};

}  // namespace client
