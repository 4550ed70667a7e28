// Translation between the network-manager daemon's messages and the records
// that applications see.
#pragma once

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"

namespace network {

/// The id of a role interface that the client could not resolve.
inline constexpr std::int32_t kUnresolved = -1;

/// Merges the stored and the live state of interface `id` into `record`. False,
/// and the record untouched, when either list lacks the interface.
bool fillInterfaceInfo(std::int32_t id, NetworkgRPC::InterfaceInfo& record,
                       const ostrevan::networkmanager::InterfacesConfig& config,
                       const ostrevan::networkmanager::InterfacesStatus& status);

/// Appends one record per interface of `known`, in its order. Unlike
/// fillInterfaceInfo it takes the live addresses also while they are not
/// flagged as in use, and a stored static address only when there is none.
void AppendInterfaces(const ostrevan::networkmanager::Interfaces& known,
                      const ostrevan::networkmanager::InterfacesConfig& config,
                      const ostrevan::networkmanager::InterfacesStatus& status,
                      std::vector<NetworkgRPC::InterfaceInfo>& out);

/// Static addressing when the record is complete enough for it, else dynamic.
void ToWire(std::int32_t id, const NetworkgRPC::InterfaceInfo& record,
            ostrevan::networkmanager::InterfaceConfig& request);

NetworkgRPC::SwitchMode ToRecord(const ostrevan::networkmanager::SwitchMode& mode);

}  // namespace network
