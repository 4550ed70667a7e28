// What every command that deals with interfaces asks for and shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "tools/json.h"

namespace tool {

/// Every interface. Throws also where the library gives an empty list because
/// configuration or state cannot be had.
std::vector<NetworkgRPC::InterfaceInfo> AllInterfaces();

/// The first interface of this name, or of this id written in digits; throws
/// kNotFound.
NetworkgRPC::InterfaceInfo FindInterface(const std::string& name_or_id);

/// The stored configuration of an interface, as the daemon sends it.
ostrevan::networkmanager::InterfaceConfig StoredConfiguration(std::int32_t id);

/// "control", "dante-primary", "dante-secondary" or "".
std::string RoleOf(std::int32_t id);

/// The product's label of an interface with a role, else "".
std::string LabelOf(std::int32_t id);

/// An addressing mode by its name; by its number where it has no name.
Json ModeToJson(std::int32_t wire_mode);

Json ToJson(const NetworkgRPC::InterfaceInfo& interface);
std::string ShowInterfaces(const Json& interfaces);

}  // namespace tool
