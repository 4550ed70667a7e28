#include "tests/support/device.h"

#include <cstdlib>
#include <iterator>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"

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
  setenv("network_manager_url", network_manager->Url().c_str(), 1);
  setenv("grpc_dapi_url", dapi->Url().c_str(), 1);
  for (const char* role :
       {"dante_primary_interface_env", "dante_secondary_interface_env", "control_interface_env"})
    unsetenv(role);
}

void Device::BuildClients() {
  NetworkManagerClient::GetInstance();
  DAPIClient::GetInstance();
  TakeRequests();
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
