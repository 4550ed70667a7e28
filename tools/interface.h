// The network interfaces, as several commands read and show them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ostrevan/networkmanager.pb.h"
#include "tools/json.h"
#include "tools/tool.h"

namespace tool {

/// An interface: what is stored for it, and what is in effect. A daemon may lack either.
struct Interface {
  std::int32_t id = 0;
  std::string name;
  std::string mac;
  std::string role;   // of client/environment.h; empty if it has none
  std::string label;  // the product's name for an interface with that role
  std::optional<ostrevan::networkmanager::InterfaceConfig> stored;
  std::optional<ostrevan::networkmanager::InterfaceStatus> status;

  bool IsActive() const { return status.has_value() && status->flag4(); }
  /// Whether the stored addresses are not those in effect. Empty if that cannot be told:
  /// daemons do not report what a dynamic mode has made of an interface.
  std::optional<bool> IsPending() const;
};

std::vector<Interface> ReadInterfaces();

/// The first interface of this name, or of this id written in digits; throws kNotFound.
Interface FindInterface(const std::string& name_or_id);

/// The interface with a role of client/environment.h; throws kNotFound.
Interface FindRole(const std::string& role);

/// Also of a mode without a name: its number.
Json ModeToJson(std::int32_t mode);

/// {"mode", "ip", "netmask", "gateway", "dns"}
Json ToJson(const ostrevan::networkmanager::InterfaceConfig& stored);

/// What is stored for an interface, with the addresses of `entry` instead, which has the
/// members that ToJson makes. The daemon's other settings stay.
ostrevan::networkmanager::InterfaceConfig WithAddresses(const Interface& interface,
                                                        const Json& entry);
void StoreConfiguration(const Interface& interface,
                        const ostrevan::networkmanager::InterfaceConfig& config);

/// "10.0.0.2/8"; the netmask behind a space if it is not a prefix, "" without address.
std::string AddressText(const std::string& ip, const std::string& netmask);

Json ToJson(const Interface& interface);
std::string ShowInterfaces(const Json& interfaces);

/// networkgrpc interface set.
void AddInterfaceSet(Tool& tool, const Command& noun);

}  // namespace tool
