#include "support/device.h"

#include <cstdlib>
#include <iterator>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "client/environment.h"

namespace support {
namespace {

void Add(ostrevan::networkmanager::Interfaces& list, int id, const char* name, const char* mac) {
  auto& added = *list.add_interfaces();
  added.set_id(id);
  added.set_name(name);
  added.set_mac(mac);
}

}  // namespace

std::string NetworkManagerPath(const std::string& method) {
  return "/ostrevan.networkmanager.NetworkManager/" + method;
}

std::string DapiPath(const std::string& method) { return "/ostrevan.grpcdapi.DAPI/" + method; }

std::string MethodOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

Answer Reply(const google::protobuf::MessageLite& message) { return {message.SerializeAsString()}; }

Device::Device(const std::string& network_manager_address, const std::string& dapi_address)
    : network_manager(std::make_unique<ScriptedDaemon>(network_manager_address)),
      dapi(std::make_unique<ScriptedDaemon>(dapi_address)) {
  ostrevan::networkmanager::Interfaces list;
  Add(list, kLan0, "lan0", kLan0Mac);
  Add(list, kLan1, "lan1", kLan1Mac);
  Add(list, kLan2, "lan2", kLan2Mac);
  Add(list, kLan3, "lan3", kLan3Mac);
  interfaces = Reply(list);
  network_manager->Script(NetworkManagerPath("GetAvailableInterfaces"), interfaces);
  for (const client::Setting& it : client::kSettings) unsetenv(it.variable);
  setenv(client::kNetworkManagerUrl.variable, network_manager->Url().c_str(), 1);
  setenv(client::kDapiUrl.variable, dapi->Url().c_str(), 1);
}

void Device::BuildClients() {
  NetworkManagerClient::GetInstance();
  DAPIClient::GetInstance();
  TakeRequests();
}

ScriptedDaemon& Device::DaemonOf(const std::string& path) {
  return path.rfind(NetworkManagerPath(""), 0) == 0 ? *network_manager : *dapi;
}

std::vector<Request> Device::TakeRequests() {
  std::vector<Request> all;
  for (auto* daemon : {network_manager.get(), dapi.get()}) {
    if (daemon == nullptr) continue;
    auto requests = daemon->TakeRequests();
    all.insert(all.end(), std::make_move_iterator(requests.begin()),
               std::make_move_iterator(requests.end()));
  }
  return all;
}

}  // namespace support
