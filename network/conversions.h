// Conversions between the network-manager daemon's messages and the public
// records.
#pragma once

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"

namespace network {

/// The id of an unresolved role interface.
inline constexpr std::int32_t kUnresolved = -1;

/// Fills mode, active and addresses of `record` from the stored configuration and
/// the present state of interface `id`. Returns false and leaves the record
/// unchanged if either list lacks the interface.
bool fillInterfaceInfo(std::int32_t id, NetworkgRPC::InterfaceInfo& record,
                       const ostrevan::networkmanager::InterfacesConfig& config,
                       const ostrevan::networkmanager::InterfacesStatus& status);

/// Appends one record per interface of `known`, in its order. Unlike
/// fillInterfaceInfo, it copies the addresses of the status even if they are not
/// flagged as in use, and a stored static address only if the status has none.
void AppendInterfaces(const ostrevan::networkmanager::Interfaces& known,
                      const ostrevan::networkmanager::InterfacesConfig& config,
                      const ostrevan::networkmanager::InterfacesStatus& status,
                      std::vector<NetworkgRPC::InterfaceInfo>& out);

/// Fills a request for static addressing if mode, ip and netmask of the record
/// allow it, otherwise for dynamic addressing.
void ToWire(std::int32_t id, const NetworkgRPC::InterfaceInfo& record,
            ostrevan::networkmanager::InterfaceConfig& request);

NetworkgRPC::SwitchMode ToRecord(const ostrevan::networkmanager::SwitchMode& mode);

}  // namespace network
