// The network interfaces, as several commands read and show them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "tools/json.h"
#include "tools/tool.h"

namespace tool {

/// Every interface. Unlike the library's function, throws if configuration or
/// status cannot be read.
std::vector<NetworkgRPC::InterfaceInfo> AllInterfaces();

/// The first interface of this name, or of this id written in digits; throws
/// kNotFound.
NetworkgRPC::InterfaceInfo FindInterface(const std::string& name_or_id);

/// The stored configuration of an interface, as the daemon sends it.
ostrevan::networkmanager::InterfaceConfig StoredConfiguration(std::int32_t id);

/// "control", "dante-primary", "dante-secondary" or "".
std::string RoleOf(std::int32_t id);

/// The addressing modes that the library can set.
inline constexpr std::int32_t kDynamic = 0;
inline constexpr std::int32_t kStatic = 1;

/// The name of an addressing mode, of the library or of the daemon, which has the
/// same numbers and more; the number itself if it has no name.
Json ModeToJson(std::int32_t mode);

Json ToJson(const NetworkgRPC::InterfaceInfo& interface);
std::string ShowInterfaces(const Json& interfaces);

/// networkgrpc interface set.
void AddInterfaceSet(Tool& tool, CLI::App& noun);

}  // namespace tool
