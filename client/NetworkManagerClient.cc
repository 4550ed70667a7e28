#include "client/NetworkManagerClient.h"

#include <algorithm>

#include "client/channel.h"

using client::Call;
using ostrevan::networkmanager::DNS;
using ostrevan::networkmanager::Hostname;
using ostrevan::networkmanager::Id;
using ostrevan::networkmanager::Ids;
using ostrevan::networkmanager::Interface;
using ostrevan::networkmanager::InterfaceConfig;
using ostrevan::networkmanager::Interfaces;
using ostrevan::networkmanager::InterfacesConfig;
using ostrevan::networkmanager::InterfacesStatus;
using ostrevan::networkmanager::NetworkManager;
using ostrevan::networkmanager::NTPServer;
using ostrevan::networkmanager::Routing;
using ostrevan::networkmanager::Success;
using ostrevan::networkmanager::SwitchMode;
using ostrevan::networkmanager::SwitchModes;
using Stub = NetworkManager::Stub;

namespace {

void Resolve(const client::Setting& role, const Interfaces& known, std::int32_t& id,
             std::string& mac) {
  const std::string name = role.Value();
  // An empty name switches the role off; it does not look for a nameless interface.
  if (name.empty()) return;
  const auto& list = known.interfaces();
  const auto found = std::find_if(list.begin(), list.end(), [&](const Interface& candidate) {
    return candidate.name() == name;
  });
  if (found == list.end()) return;
  id = found->id();
  mac = found->mac();
}

}  // namespace

// A failed call leaves the roles unresolved for good: the ids must not change
// under an application that has begun to use them.
NetworkManagerClient::NetworkManagerClient()
    : stub(NetworkManager::NewStub(client::MakeChannel(client::kNetworkManagerUrl))) {
  Interfaces known;
  if (!GetAvailableInterfaces(&known).ok()) return;
  Resolve(client::kDantePrimaryInterface, known, dante_primary_id, dante_primary_mac);
  Resolve(client::kDanteSecondaryInterface, known, dante_secondary_id, dante_secondary_mac);
  Resolve(client::kControlInterface, known, control_id, control_mac);
}

NetworkManagerClient::~NetworkManagerClient() = default;

grpc::Status NetworkManagerClient::GetAvailableInterfaces(Interfaces* reply) {
  return Call(*stub, &Stub::GetAvailableInterfaces, reply);
}

grpc::Status NetworkManagerClient::GetNetworkConfig(const Ids& request, InterfacesConfig* reply) {
  return Call(*stub, &Stub::GetNetworkConfig, request, reply);
}

grpc::Status NetworkManagerClient::GetNetworkStatus(const Ids& request, InterfacesStatus* reply) {
  return Call(*stub, &Stub::GetNetworkStatus, request, reply);
}

grpc::Status NetworkManagerClient::SetNetworkConfig(const InterfaceConfig& request,
                                                    Success* reply) {
  return Call(*stub, &Stub::SetNetworkConfig, request, reply);
}

grpc::Status NetworkManagerClient::GetAvailableSwitchModes(SwitchModes* reply) {
  return Call(*stub, &Stub::GetAvailableSwitchModes, reply);
}

// The service's own names for the two switch-mode readers run the other way
// round: its "status" is the mode in effect.
grpc::Status NetworkManagerClient::GetCurrentSwitchMode(SwitchMode* reply) {
  return Call(*stub, &Stub::GetSwitchModeStatus, reply);
}

grpc::Status NetworkManagerClient::GetConfiguredSwitchMode(SwitchMode* reply) {
  return Call(*stub, &Stub::GetSwitchMode, reply);
}

grpc::Status NetworkManagerClient::SetSwitchMode(const Id& request, Success* reply) {
  return Call(*stub, &Stub::SetSwitchMode, request, reply);
}

grpc::Status NetworkManagerClient::GetHostname(Hostname* reply) {
  return Call(*stub, &Stub::GetHostname, reply);
}

grpc::Status NetworkManagerClient::SetHostname(const Hostname& request, Success* reply) {
  return Call(*stub, &Stub::SetHostname, request, reply);
}

grpc::Status NetworkManagerClient::GetNTPServer(NTPServer* reply) {
  return Call(*stub, &Stub::GetNTPServer, reply);
}

grpc::Status NetworkManagerClient::SetNTPServer(const NTPServer& request, Success* reply) {
  return Call(*stub, &Stub::SetNTPServer, request, reply);
}

grpc::Status NetworkManagerClient::GetRouting(Routing* reply) {
  return Call(*stub, &Stub::GetRouting, reply);
}

grpc::Status NetworkManagerClient::GetDNSList(DNS* reply) {
  return Call(*stub, &Stub::GetDNSList, reply);
}

grpc::Status NetworkManagerClient::ReloadNetworkConfig(Success* reply) {
  return Call(*stub, &Stub::ReloadNetworkConfig, reply);
}

grpc::Status NetworkManagerClient::ReloadNTPConfig(Success* reply) {
  return Call(*stub, &Stub::ReloadNTPConfig, reply);
}

grpc::Status NetworkManagerClient::FactoryReset(Success* reply) {
  return Call(*stub, &Stub::FactoryReset, reply);
}

std::int32_t NetworkManagerClient::GetDantePrimaryInterfaceID() const { return dante_primary_id; }

std::int32_t NetworkManagerClient::GetDanteSecondaryInterfaceID() const {
  return dante_secondary_id;
}

std::int32_t NetworkManagerClient::GetControlInterfaceID() const { return control_id; }

std::string NetworkManagerClient::GetDantePrimaryInterfaceMAC() const { return dante_primary_mac; }

std::string NetworkManagerClient::GetDanteSecondaryInterfaceMAC() const {
  return dante_secondary_mac;
}

std::string NetworkManagerClient::GetControlInterfaceMAC() const { return control_mac; }
