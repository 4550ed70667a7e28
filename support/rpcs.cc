#include "support/rpcs.h"

#include <algorithm>

namespace support {

DaemonStubs::DaemonStubs(const std::shared_ptr<grpc::Channel>& network_manager,
                         const std::shared_ptr<grpc::Channel>& dapi)
    : network(ostrevan::networkmanager::NetworkManager::NewStub(network_manager)),
      dante(ostrevan::grpcdapi::DAPI::NewStub(dapi)) {}

std::ostream& operator<<(std::ostream& out, const Rpc& rpc) { return out << rpc.path; }

const std::vector<Rpc>& AllRpcs() {
  static const std::vector<Rpc> all = [] {
    std::vector<Rpc> both = NetworkManagerRpcs();
    for (Rpc& rpc : DapiRpcs()) both.push_back(std::move(rpc));
    return both;
  }();
  return all;
}

const Rpc& RpcAt(const std::string& path) {
  const std::vector<Rpc>& all = AllRpcs();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Rpc& rpc) { return rpc.path == path; });
  if (found == all.end()) throw std::out_of_range("no RPC " + path);
  return *found;
}

}  // namespace support
