#include "NetworkManagerClient.h"

#include <algorithm>

#include "client/channel.h"

namespace nm = ostrevan::networkmanager;
using client::Call;

namespace {

void Resolve(const client::Setting& role, const nm::Interfaces& known, std::int32_t& id,
             std::string& mac) {
  const std::string name = role.Value();
  // An empty name disables the role, even if an interface has an empty name.
  if (name.empty()) return;
  const auto& list = known.interfaces();
  const auto found = std::find_if(list.begin(), list.end(), [&](const nm::Interface& candidate) {
    return candidate.name() == name;
  });
  if (found == list.end()) return;
  id = found->id();
  mac = found->mac();
}

}  // namespace

// If the request fails, the roles stay unresolved: ids must not change once an
// application uses them.
NetworkManagerClient::NetworkManagerClient()
    : stub(nm::NetworkManager::NewStub(client::MakeChannel(client::kNetworkManagerUrl))) {
  nm::Interfaces known;
  if (!GetAvailableInterfaces(&known).ok()) return;
  Resolve(client::kDantePrimaryInterface, known, dante_primary_id, dante_primary_mac);
  Resolve(client::kDanteSecondaryInterface, known, dante_secondary_id, dante_secondary_mac);
  Resolve(client::kControlInterface, known, control_id, control_mac);
}

NetworkManagerClient::~NetworkManagerClient() = default;

// Defined here and not in the header, because a module that hides its own symbols would
// otherwise compile an instance of its own. Inline and used, because the instance and its
// guard are then exported, as data that debuggers and the record of the binary interface see.
[[gnu::used, gnu::visibility("default")]] inline NetworkManagerClient&
NetworkManagerClient::GetInstance() {
  static NetworkManagerClient instance;
  return instance;
}

grpc::Status NetworkManagerClient::GetAvailableInterfaces(nm::Interfaces* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetAvailableInterfaces, reply);
}

grpc::Status NetworkManagerClient::GetNetworkConfig(const nm::Ids& request,
                                                    nm::InterfacesConfig* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetNetworkConfig, request, reply);
}

grpc::Status NetworkManagerClient::GetNetworkStatus(const nm::Ids& request,
                                                    nm::InterfacesStatus* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetNetworkStatus, request, reply);
}

grpc::Status NetworkManagerClient::SetNetworkConfig(const nm::InterfaceConfig& request,
                                                    nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::SetNetworkConfig, request, reply);
}

grpc::Status NetworkManagerClient::GetAvailableSwitchModes(nm::SwitchModes* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetAvailableSwitchModes, reply);
}

// The service names the two readers differently: "status" is the mode in effect.
grpc::Status NetworkManagerClient::GetCurrentSwitchMode(nm::SwitchMode* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetSwitchModeStatus, reply);
}

grpc::Status NetworkManagerClient::GetConfiguredSwitchMode(nm::SwitchMode* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetSwitchMode, reply);
}

grpc::Status NetworkManagerClient::SetSwitchMode(const nm::Id& request, nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::SetSwitchMode, request, reply);
}

grpc::Status NetworkManagerClient::GetHostname(nm::Hostname* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetHostname, reply);
}

grpc::Status NetworkManagerClient::SetHostname(const nm::Hostname& request, nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::SetHostname, request, reply);
}

grpc::Status NetworkManagerClient::GetNTPServer(nm::NTPServer* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetNTPServer, reply);
}

grpc::Status NetworkManagerClient::SetNTPServer(const nm::NTPServer& request, nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::SetNTPServer, request, reply);
}

grpc::Status NetworkManagerClient::GetRouting(nm::Routing* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetRouting, reply);
}

grpc::Status NetworkManagerClient::GetDNSList(nm::DNS* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::GetDNSList, reply);
}

grpc::Status NetworkManagerClient::ReloadNetworkConfig(nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::ReloadNetworkConfig, reply);
}

grpc::Status NetworkManagerClient::ReloadNTPConfig(nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::ReloadNTPConfig, reply);
}

grpc::Status NetworkManagerClient::FactoryReset(nm::Success* reply) {
  return Call(*stub, &nm::NetworkManager::Stub::FactoryReset, reply);
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
